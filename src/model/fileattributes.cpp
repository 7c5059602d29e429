#include "model/fileattributes.h"

#include <chrono>
#include <system_error>

namespace quillfern::fileattributes {

namespace fs = std::filesystem;

bool isDirectory(const NativePath &path)
{
    std::error_code error;
    return fs::is_directory(path.toStdPath(), error);
}

std::optional<QDateTime> modificationDate(const NativePath &path)
{
    std::error_code error;
    const fs::file_time_type fileTime = fs::last_write_time(path.toStdPath(), error);
    if (error)
        return std::nullopt;
    const auto systemTime = std::chrono::file_clock::to_sys(fileTime);
    const auto milliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(systemTime.time_since_epoch());
    return QDateTime::fromMSecsSinceEpoch(milliseconds.count(), Qt::UTC);
}

std::optional<qint64> fileSize(const NativePath &path)
{
    const fs::path location = path.toStdPath();
    std::error_code error;
    const fs::file_status status = fs::status(location, error);
    // Directories report the size of their own records on some systems; that is not a size a user means.
    if (error || fs::is_directory(status) || !fs::exists(status))
        return std::nullopt;
    const std::uintmax_t size = fs::file_size(location, error);
    if (error)
        return std::nullopt;
    return qint64(size);
}

} // namespace quillfern::fileattributes
