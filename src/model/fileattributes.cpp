#include "model/fileattributes.h"

#include <chrono>
#include <system_error>

#ifndef Q_OS_WIN
#include <sys/stat.h>
#endif

namespace quillfern::fileattributes {

namespace fs = std::filesystem;

bool isDirectory(const NativePath &path)
{
    std::error_code error;
    return fs::is_directory(path.toStdPath(), error);
}

std::optional<fs::file_time_type> modificationTime(const NativePath &path)
{
    std::error_code error;
    const fs::file_time_type time = fs::last_write_time(path.toStdPath(), error);
    if (error)
        return std::nullopt;
    return time;
}

std::optional<QDateTime> modificationDate(const NativePath &path)
{
    const std::optional<fs::file_time_type> time = modificationTime(path);
    if (!time)
        return std::nullopt;
    const auto systemTime = std::chrono::file_clock::to_sys(*time);
    const auto milliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(systemTime.time_since_epoch());
    return QDateTime::fromMSecsSinceEpoch(milliseconds.count(), Qt::UTC);
}

std::optional<qint64> fileSize(const NativePath &path)
{
    // Directories report the size of their own records on some systems; that is not a size a user means.
#ifdef Q_OS_WIN
    const fs::path location = path.toStdPath();
    std::error_code error;
    const fs::file_status status = fs::status(location, error);
    if (error || fs::is_directory(status) || !fs::exists(status))
        return std::nullopt;
    const std::uintmax_t size = fs::file_size(location, error);
    if (error)
        return std::nullopt;
    return qint64(size);
#else
    // The standard library reads the status once for the kind and once more for the size; one stat gives both.
    // Only a regular file has a size of its own, as the standard library has it.
    struct stat status = {};
    if (stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode))
        return std::nullopt;
    return qint64(status.st_size);
#endif
}

} // namespace quillfern::fileattributes
