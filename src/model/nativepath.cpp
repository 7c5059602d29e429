#include "model/nativepath.h"

#include <QHashFunctions>

namespace quillfern {

namespace {

#ifndef Q_OS_WIN
constexpr char separator = '/';

QString textOf(const char *bytes, std::size_t size)
{
    return QString::fromUtf8(bytes, qsizetype(size));
}
#endif

} // namespace

NativePath NativePath::fromText(const QString &text)
{
#ifdef Q_OS_WIN
    return NativePath(text.toStdWString());
#else
    return NativePath(text.toStdString());
#endif
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
    const QByteArray bytes = QByteArray::fromPercentEncoding(url.path(QUrl::FullyEncoded).toLatin1());
    if (bytes.isEmpty())
        return std::nullopt;
    return NativePath(bytes.toStdString());
#endif
}

QString NativePath::toText() const
{
#ifdef Q_OS_WIN
    return QString::fromStdWString(m_native);
#else
    return textOf(m_native.data(), m_native.size());
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
    return NativePath(m_native.substr(fileNameOffset()));
#endif
}

QString NativePath::fileNameText() const
{
#ifdef Q_OS_WIN
    return fileName().toText();
#else
    const std::size_t start = fileNameOffset();
    return textOf(m_native.data() + start, m_native.size() - start);
#endif
}

std::size_t NativePath::fileNameOffset() const
{
#ifdef Q_OS_WIN
    const std::size_t last = m_native.find_last_of(L"\\/:");
#else
    const std::size_t last = m_native.rfind(separator);
#endif
    return last == string_type::npos ? 0 : last + 1;
}

NativePath NativePath::parent() const
{
#ifdef Q_OS_WIN
    return toStdPath().parent_path();
#else
    std::size_t end = fileNameOffset();
    while (end > 1 && m_native[end - 1] == separator)
        --end;
    return NativePath(m_native.substr(0, end));
#endif
}

NativePath NativePath::operator/(const NativePath &name) const
{
#ifdef Q_OS_WIN
    return toStdPath() / name.toStdPath();
#else
    if (m_native.empty() || m_native.back() == separator)
        return NativePath(m_native + name.m_native);
    return NativePath(m_native + separator + name.m_native);
#endif
}

NativePath NativePath::withFileName(const NativePath &name) const
{
#ifdef Q_OS_WIN
    return toStdPath().replace_filename(name.toStdPath());
#else
    return NativePath(m_native.substr(0, fileNameOffset()) + name.m_native);
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
    while (m_native.size() > 1 && m_native.back() == separator)
        m_native.pop_back();
    return std::move(*this);
#endif
}

bool NativePath::isWithin(const NativePath &folder) const
{
    if (!m_native.starts_with(folder.m_native))
        return false;
    if (m_native.size() == folder.m_native.size())
        return true;
#ifdef Q_OS_WIN
    const auto isSeparator = [](wchar_t unit) {
        return unit == L'/' || unit == L'\\';
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
#ifdef Q_OS_WIN
    return qHash(QStringView(path.native()), seed);
#else
    return qHash(QByteArrayView(path.native()), seed);
#endif
}

} // namespace quillfern
