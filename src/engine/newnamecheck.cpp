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
        return u"the control character U+%1"_s.arg(character.unicode(), 4, 16, u'0');
    return u"“%1”"_s.arg(character);
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
    const qsizetype bytes = name.toUtf8().size();
    if (bytes > maximumNameBytes)
        return u"The new name is %1 bytes long; a file name can have at most %2."_s.arg(bytes).arg(maximumNameBytes);
    return {};
}

} // namespace quillfern::newnamecheck
