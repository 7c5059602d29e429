#include "engine/systemfilemover.h"

#include "model/nativepath.h"

#include <system_error>

#if defined(Q_OS_WIN)
#include <windows.h>
#else
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

using namespace Qt::StringLiterals;

namespace quillfern {

namespace fs = std::filesystem;

namespace {

MoveError destinationExists(const fs::path &to)
{
    return MoveError{MoveError::Kind::DestinationExists,
                     u"A file named “%1” already exists."_s.arg(nativepath::toText(to.filename()))};
}

MoveError systemError(const std::error_code &code)
{
    return MoveError{MoveError::Kind::Other, QString::fromStdString(code.message())};
}

#if defined(Q_OS_WIN)

std::optional<MoveError> moveWithoutReplacing(const fs::path &from, const fs::path &to)
{
    // Neither MOVEFILE_REPLACE_EXISTING nor MOVEFILE_COPY_ALLOWED: the call fails rather than replace or copy.
    if (MoveFileExW(from.c_str(), to.c_str(), 0))
        return std::nullopt;
    const DWORD error = GetLastError();
    if (error == ERROR_ALREADY_EXISTS || error == ERROR_FILE_EXISTS)
        return destinationExists(to);
    return systemError(std::error_code(int(error), std::system_category()));
}

#else

std::optional<MoveError> lastError(const fs::path &to)
{
    if (errno == EEXIST)
        return destinationExists(to);
    return systemError(std::error_code(errno, std::generic_category()));
}

/// Whether the file system refused the no-replace flag itself, rather than the move.
bool refusedFlag(int error)
{
    return error == EINVAL || error == ENOSYS || error == EOPNOTSUPP || error == ENOTSUP;
}

/// The atomic no-replace rename; -1 with errno set on failure.
int renameExclusive(const fs::path &from, const fs::path &to)
{
#if defined(Q_OS_LINUX)
    return renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE);
#elif defined(Q_OS_DARWIN)
    return renamex_np(from.c_str(), to.c_str(), RENAME_EXCL);
#else
    errno = ENOSYS;
    return -1;
#endif
}

/// For file systems without a no-replace rename (NFS, many FUSE file systems): a hard link cannot replace
/// anything either, and removing the old link completes the move of a regular file or a symbolic link.
std::optional<MoveError> moveByLinking(const fs::path &from, const fs::path &to)
{
    if (linkat(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), 0) != 0)
        return lastError(to);
    if (unlinkat(AT_FDCWD, from.c_str(), 0) != 0) {
        const auto error = lastError(from);
        unlinkat(AT_FDCWD, to.c_str(), 0);
        return error;
    }
    return std::nullopt;
}

/// The last resort for folders on such file systems: check, then rename. A race with another program creating
/// the destination in between is possible here and nowhere else.
std::optional<MoveError> moveAfterChecking(const fs::path &from, const fs::path &to)
{
    struct stat status = {};
    if (lstat(to.c_str(), &status) == 0)
        return destinationExists(to);
    if (std::rename(from.c_str(), to.c_str()) != 0)
        return lastError(to);
    return std::nullopt;
}

std::optional<MoveError> moveWithoutReplacing(const fs::path &from, const fs::path &to)
{
    if (renameExclusive(from, to) == 0)
        return std::nullopt;
    if (!refusedFlag(errno))
        return lastError(to);
    struct stat status = {};
    if (lstat(from.c_str(), &status) != 0)
        return lastError(from);
    if (S_ISDIR(status.st_mode))
        return moveAfterChecking(from, to);
    return moveByLinking(from, to);
}

#endif

} // namespace

std::optional<MoveError> SystemFileMover::move(const fs::path &from, const fs::path &to)
{
    return moveWithoutReplacing(from, to);
}

bool SystemFileMover::isSameItem(const fs::path &first, const fs::path &second)
{
#if defined(Q_OS_WIN)
    std::error_code error;
    return fs::equivalent(first, second, error);
#else
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
