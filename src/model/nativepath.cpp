#include "model/nativepath.h"

#include <QHashFunctions>
#include <QStringDecoder>

#include <string_view>

namespace quillfern {

namespace {

/// A byte that is not part of valid UTF-8 (0x80 to 0xFF) is carried in text as the lone low surrogate
/// U+DC00 + byte, which no valid UTF-8 decodes to; a surrogate pair is a character, never an escape.
constexpr char16_t escapeBase = 0xDC00;

bool isEscapedByte(QStringView text, qsizetype position)
{
    const char16_t unit = text[position].unicode();
    return unit >= escapeBase + 0x80 && unit <= escapeBase + 0xFF
        && (position == 0 || !text[position - 1].isHighSurrogate());
}

#ifndef Q_OS_WIN
constexpr char separator = '/';

/// The bytes as UTF-8 text, every character kept (bytes that are not UTF-8 read as U+FFFD). QString::fromUtf8
/// drops a byte order mark at the start, which would rename "\uFEFFnote.txt" to "note.txt" on the way.
QString decoded(QByteArrayView bytes)
{
    QStringDecoder decoder(QStringDecoder::Utf8,
        QStringDecoder::Flag::Stateless | QStringDecoder::Flag::ConvertInitialBom);
    return decoder.decode(bytes);
}

/// The length of the well-formed UTF-8 sequence that starts the bytes, by Unicode's table of well-formed byte
/// sequences (no overlong forms, no surrogates, nothing above U+10FFFF); 0 when the first byte starts none.
qsizetype wellFormedLength(QByteArrayView bytes)
{
    const auto isIn = [](uchar byte, uchar low, uchar high) {
        return byte >= low && byte <= high;
    };
    const auto lead = uchar(bytes[0]);
    if (lead < 0x80)
        return 1;
    qsizetype length = 0;
    uchar secondLow = 0x80;
    uchar secondHigh = 0xBF;
    if (isIn(lead, 0xC2, 0xDF)) {
        length = 2;
    } else if (isIn(lead, 0xE0, 0xEF)) {
        length = 3;
        secondLow = lead == 0xE0 ? 0xA0 : 0x80;
        secondHigh = lead == 0xED ? 0x9F : 0xBF;
    } else if (isIn(lead, 0xF0, 0xF4)) {
        length = 4;
        secondLow = lead == 0xF0 ? 0x90 : 0x80;
        secondHigh = lead == 0xF4 ? 0x8F : 0xBF;
    } else {
        return 0;
    }
    if (bytes.size() < length || !isIn(uchar(bytes[1]), secondLow, secondHigh))
        return 0;
    for (qsizetype i = 2; i < length; ++i) {
        if (!isIn(uchar(bytes[i]), 0x80, 0xBF))
            return 0;
    }
    return length;
}

/// The bytes as text for the rules: UTF-8 decoded, every character kept, each byte that is not part of a
/// well-formed sequence escaped. Qt's decoder shows such a byte as one U+FFFD, so it shows the same text.
QString escaped(QByteArrayView bytes)
{
    QString text = decoded(bytes);
    // Nearly every name is valid UTF-8, and only one that contains U+FFFD can hold a byte to escape.
    if (!text.contains(QChar::ReplacementCharacter))
        return text;
    text.clear();
    for (qsizetype i = 0; i < bytes.size();) {
        const qsizetype length = wellFormedLength(bytes.sliced(i));
        if (length == 0) {
            text += QChar(char16_t(escapeBase + uchar(bytes[i])));
            ++i;
            continue;
        }
        char32_t codePoint = length == 1 ? uchar(bytes[i]) : uchar(bytes[i]) & (0x7F >> length);
        for (qsizetype k = 1; k < length; ++k)
            codePoint = (codePoint << 6) | (uchar(bytes[i + k]) & 0x3F);
        if (QChar::requiresSurrogates(codePoint)) {
            text += QChar(QChar::highSurrogate(codePoint));
            text += QChar(QChar::lowSurrogate(codePoint));
        } else {
            text += QChar(char16_t(codePoint));
        }
        i += length;
    }
    return text;
}
#endif

} // namespace

#ifdef Q_OS_WIN

NativePath::NativePath(const value_type *native)
    : m_native(QString::fromWCharArray(native))
{
}

NativePath::NativePath(const std::filesystem::path &path)
    : m_native(QString::fromStdWString(path.native()))
{
}

NativePath NativePath::fromText(const QString &text)
{
    return NativePath(text);
}

const NativePath::value_type *NativePath::c_str() const
{
    return reinterpret_cast<const wchar_t *>(m_native.utf16());
}

std::filesystem::path NativePath::toStdPath() const
{
    return m_native.toStdWString();
}

QString NativePath::toText() const
{
    return m_native;
}

#else

NativePath::NativePath(const value_type *native)
    : m_native(native)
{
}

NativePath::NativePath(const std::filesystem::path &path)
    : m_native(path.native().data(), qsizetype(path.native().size()))
{
}

NativePath NativePath::fromText(const QString &text)
{
    return NativePath(text.toUtf8());
}

const NativePath::value_type *NativePath::c_str() const
{
    return m_native.constData();
}

std::filesystem::path NativePath::toStdPath() const
{
    return m_native.toStdString();
}

QString NativePath::toText() const
{
    return decoded(m_native);
}

#endif

// Windows names are UTF-16 units, which text holds as they are: there is nothing to escape.

QString NativePath::toEscapedText() const
{
#ifdef Q_OS_WIN
    return toText();
#else
    return escaped(m_native);
#endif
}

QString NativePath::fileNameEscapedText() const
{
#ifdef Q_OS_WIN
    return fileNameText();
#else
    return escaped(QByteArrayView(m_native).sliced(fileNameOffset()));
#endif
}

NativePath NativePath::fromEscapedText(const QString &text)
{
#ifdef Q_OS_WIN
    return fromText(text);
#else
    // The text between two escaped bytes never splits a surrogate pair: an escape is a low surrogate no high
    // one pairs.
    QByteArray bytes;
    qsizetype pieceStart = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (!isEscapedByte(text, i))
            continue;
        bytes += QStringView(text).sliced(pieceStart, i - pieceStart).toUtf8();
        bytes += char(text[i].unicode() - escapeBase);
        pieceStart = i + 1;
    }
    if (pieceStart == 0)
        return fromText(text);
    bytes += QStringView(text).sliced(pieceStart).toUtf8();
    return NativePath(std::move(bytes));
#endif
}

QString NativePath::displayText(const QString &escapedText)
{
    QString shown;
    for (qsizetype i = 0; i < escapedText.size(); ++i) {
        if (!isEscapedByte(escapedText, i))
            continue;
        // Copied only once an escape is found: most names have none and are shown as they are.
        if (shown.isNull())
            shown = escapedText;
        shown[i] = QChar::ReplacementCharacter;
    }
    return shown.isNull() ? escapedText : shown;
}

std::optional<NativePath> NativePath::fromLocalFileUrl(const QUrl &url)
{
    if (!url.isLocalFile())
        return std::nullopt;
#ifdef Q_OS_WIN
    return fromText(url.toLocalFile());
#else
    // Decoding the URL into text would turn bytes that are not UTF-8 into U+FFFD (or leave them escaped), so
    // the bytes are taken from the percent-encoded path itself.
    QByteArray bytes = QByteArray::fromPercentEncoding(url.path(QUrl::FullyEncoded).toLatin1());
    if (bytes.isEmpty())
        return std::nullopt;
    return NativePath(std::move(bytes));
#endif
}

// Windows paths have drive letters, two separators and network shares; there the standard library's rules are
// used as they are. On POSIX systems the only separator is "/" and the rules are short enough to keep here,
// without building the component list of a std::filesystem::path.

NativePath NativePath::fileName() const
{
#ifdef Q_OS_WIN
    return toStdPath().filename();
#else
    return NativePath(m_native.sliced(fileNameOffset()));
#endif
}

QString NativePath::fileNameText() const
{
#ifdef Q_OS_WIN
    return fileName().toText();
#else
    return decoded(QByteArrayView(m_native).sliced(fileNameOffset()));
#endif
}

qsizetype NativePath::fileNameOffset() const
{
#ifdef Q_OS_WIN
    qsizetype last = m_native.size() - 1;
    while (last >= 0 && m_native[last] != u'\\' && m_native[last] != u'/' && m_native[last] != u':')
        --last;
    return last + 1;
#else
    // QByteArray's own search is a general substring search, several times slower for one byte.
    const std::size_t last = std::string_view(m_native.constData(), std::size_t(m_native.size())).rfind(separator);
    return last == std::string_view::npos ? 0 : qsizetype(last) + 1;
#endif
}

NativePath NativePath::parent() const
{
#ifdef Q_OS_WIN
    return toStdPath().parent_path();
#else
    qsizetype end = fileNameOffset();
    while (end > 1 && m_native[end - 1] == separator)
        --end;
    return NativePath(m_native.first(end));
#endif
}

NativePath NativePath::operator/(const NativePath &name) const
{
#ifdef Q_OS_WIN
    return toStdPath() / name.toStdPath();
#else
    if (m_native.isEmpty() || m_native.endsWith(separator))
        return NativePath(QByteArray(m_native + name.m_native));
    return NativePath(QByteArray(m_native + separator + name.m_native));
#endif
}

NativePath NativePath::withFileName(const NativePath &name) const
{
#ifdef Q_OS_WIN
    return toStdPath().replace_filename(name.toStdPath());
#else
    const qsizetype offset = fileNameOffset();
    QByteArray bytes;
    bytes.reserve(offset + name.m_native.size());
    bytes.append(m_native.constData(), offset).append(name.m_native);
    return NativePath(std::move(bytes));
#endif
}

NativePath NativePath::withoutTrailingSeparator() const &
{
    return NativePath(*this).withoutTrailingSeparator();
}

NativePath NativePath::withoutTrailingSeparator() &&
{
#ifdef Q_OS_WIN
    std::filesystem::path path = toStdPath();
    while (!path.has_filename() && path.has_relative_path())
        path = path.parent_path();
    return path;
#else
    // Read without writing access, which would copy a shared string; most paths have nothing to drop.
    qsizetype size = m_native.size();
    while (size > 1 && m_native.at(size - 1) == separator)
        --size;
    if (size < m_native.size())
        m_native.truncate(size);
    return std::move(*this);
#endif
}

bool NativePath::isWithin(const NativePath &folder) const
{
    if (!m_native.startsWith(folder.m_native))
        return false;
    if (m_native.size() == folder.m_native.size())
        return true;
#ifdef Q_OS_WIN
    const auto isSeparator = [](QChar unit) {
        return unit == u'/' || unit == u'\\';
    };
#else
    const auto isSeparator = [](char unit) {
        return unit == separator;
    };
#endif
    return isSeparator(m_native[folder.m_native.size()]) || (!folder.isEmpty() && isSeparator(folder.m_native.back()));
}

size_t qHash(const NativePath &path, size_t seed) noexcept
{
    return qHash(path.native(), seed);
}

} // namespace quillfern
