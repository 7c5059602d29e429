#include "engine/newnamecheck_p.h"

using namespace Qt::StringLiterals;

namespace quillfern::newnamecheck {

namespace {

// The longest name the common file systems (ext4, APFS, NTFS in UTF-16 units, which this bounds) accept.
constexpr qsizetype maximumNameBytes = 255;

#ifdef Q_OS_WIN
bool isForbidden(QChar character)
{
    return character.unicode() < 0x20 || QStringView(u"\\/:*?\"<>|").contains(character);
}
#else
bool isForbidden(QChar character)
{
    return character == u'/' || character == QChar(0);
}
#endif

QString describe(QChar character)
{
    if (character.unicode() < 0x20)
        return u"the control character U+%1"_s.arg(uint(character.unicode()), 4, 16, QChar(u'0'));
    return u"“%1”"_s.arg(character);
}

/// The number of bytes NativePath::fromEscapedText() writes for the text, without encoding it.
qsizetype writtenLength(QStringView text)
{
    qsizetype bytes = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar unit = text[i];
        if (unit.isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate()) {
            bytes += 4;
            ++i;
        } else if (unit.unicode() >= 0xDC80 && unit.unicode() <= 0xDCFF) {
            // A byte of the name that is not UTF-8, written back as itself.
            bytes += 1;
        } else if (unit.isSurrogate()) {
            // The encoder decides what it writes for any other lone surrogate.
            bytes += QStringView(text).sliced(i, 1).toUtf8().size();
        } else {
            bytes += unit.unicode() < 0x80 ? 1 : unit.unicode() < 0x800 ? 2 : 3;
        }
    }
    return bytes;
}

} // namespace

QString whyInvalid(const QString &name)
{
    if (name.isEmpty())
        return u"The new name is empty."_s;
    if (name == u"." || name == u"..")
        return u"The name “%1” is reserved by the file system."_s.arg(name);
    for (const QChar character : name) {
        if (isForbidden(character))
            return u"The new name contains %1, which a file name cannot contain."_s.arg(describe(character));
    }
    const qsizetype bytes = writtenLength(name);
    if (bytes > maximumNameBytes)
        return u"The new name is %1 bytes long; a file name can have at most %2."_s.arg(bytes).arg(maximumNameBytes);
    return {};
}

} // namespace quillfern::newnamecheck
