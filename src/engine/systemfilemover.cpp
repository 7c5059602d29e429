#include "engine/systemfilemover.h"

#include "engine/moveerrors_p.h"
#include "engine/posixmove_p.h"

#if defined(Q_OS_WIN)
#include <windows.h>
#else
#include <sys/stat.h>
#endif

namespace quillfern {

namespace fs = std::filesystem;

std::optional<MoveError> SystemFileMover::move(const fs::path &from, const fs::path &to)
{
#if defined(Q_OS_WIN)
    // Neither MOVEFILE_REPLACE_EXISTING nor MOVEFILE_COPY_ALLOWED: the call fails rather than replace or copy.
    if (MoveFileExW(from.c_str(), to.c_str(), 0))
        return std::nullopt;
    const DWORD error = GetLastError();
    if (error == ERROR_ALREADY_EXISTS || error == ERROR_FILE_EXISTS)
        return moveerrors::destinationExists(to);
    return moveerrors::systemError(std::error_code(int(error), std::system_category()));
#else
    return posixmove::move(from, to);
#endif
}

bool SystemFileMover::isSameItem(const fs::path &first, const fs::path &second)
{
#if defined(Q_OS_WIN)
    std::error_code error;
    return fs::equivalent(first, second, error);
#else
    // lstat: a symbolic link is the item itself, not what it points to.
    struct stat firstStatus = {};
    struct stat secondStatus = {};
    return lstat(first.c_str(), &firstStatus) == 0 && lstat(second.c_str(), &secondStatus) == 0
        && firstStatus.st_dev == secondStatus.st_dev && firstStatus.st_ino == secondStatus.st_ino;
#endif
}

bool SystemFileMover::exists(const fs::path &path)
{
    std::error_code error;
    return fs::exists(fs::symlink_status(path, error));
}

} // namespace quillfern
