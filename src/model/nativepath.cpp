#include "model/nativepath.h"

#include <QHashFunctions>
#include <QStringDecoder>

#include <string_view>

namespace quillfern {

namespace {

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
