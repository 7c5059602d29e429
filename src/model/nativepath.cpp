#include "model/nativepath.h"

namespace quillfern::nativepath {

QString toText(const std::filesystem::path &path)
{
#ifdef Q_OS_WIN
    return QString::fromStdWString(path.native());
#else
    const std::string &bytes = path.native();
    return QString::fromUtf8(bytes.data(), qsizetype(bytes.size()));
#endif
}

std::filesystem::path fromText(const QString &text)
{
#ifdef Q_OS_WIN
    return std::filesystem::path(text.toStdWString());
#else
    return std::filesystem::path(text.toStdString());
#endif
}

std::optional<std::filesystem::path> fromLocalFileUrl(const QUrl &url)
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
    return std::filesystem::path(bytes.toStdString());
#endif
}

std::filesystem::path withoutTrailingSeparator(std::filesystem::path path)
{
    while (!path.has_filename() && path.has_relative_path())
        path = path.parent_path();
    return path;
}

} // namespace quillfern::nativepath
