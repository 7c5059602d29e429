#include "engine/posixmove_p.h"

#ifndef Q_OS_WIN

#include "engine/moveerrors_p.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

namespace quillfern::posixmove {

namespace {

std::optional<MoveError> lastError(Location to)
{
    if (errno == EEXIST)
        return moveerrors::destinationExists(NativePath(to.name));
    return moveerrors::systemError(std::error_code(errno, std::generic_category()));
}

/// Whether the file system refused the no-replace flag itself rather than the move. EEXIST never counts.
bool refusedFlag(int error)
{
    return error == EINVAL || error == ENOSYS || error == EOPNOTSUPP || error == ENOTSUP;
}

/// Whether a failed link says the file system cannot link at all, rather than that this link failed.
bool hasNoHardLinks(int error)
{
    return error == EPERM || error == EOPNOTSUPP || error == ENOTSUP || error == ENOSYS;
}

/// The atomic no-replace rename; -1 with errno set on failure.
int renameExclusive(Location from, Location to)
{
#if defined(Q_OS_LINUX)
    return renameat2(from.folder, from.name, to.folder, to.name, RENAME_NOREPLACE);
#elif defined(Q_OS_DARWIN)
    return renameatx_np(from.folder, from.name, to.folder, to.name, RENAME_EXCL);
#else
    errno = ENOSYS;
    return -1;
#endif
}

} // namespace

std::optional<MoveError> moveByLinking(Location from, Location to)
{
    if (linkat(from.folder, from.name, to.folder, to.name, 0) != 0) {
        // Some file systems have no hard links at all (exFAT, SMB, many FUSE ones); there only the
        // check-then-rename is left.
        if (hasNoHardLinks(errno))
            return moveAfterChecking(from, to);
        return lastError(to);
    }
    if (unlinkat(from.folder, from.name, 0) != 0) {
        const auto error = lastError(from);
        unlinkat(to.folder, to.name, 0);
        return error;
    }
    return std::nullopt;
}

std::optional<MoveError> moveAfterChecking(Location from, Location to)
{
    struct stat status = {};
    if (fstatat(to.folder, to.name, &status, AT_SYMLINK_NOFOLLOW) == 0)
        return moveerrors::destinationExists(NativePath(to.name));
    if (renameat(from.folder, from.name, to.folder, to.name) != 0)
        return lastError(to);
    return std::nullopt;
}

std::optional<MoveError> move(Location from, Location to)
{
    if (renameExclusive(from, to) == 0)
        return std::nullopt;
    if (!refusedFlag(errno))
        return lastError(to);
    struct stat status = {};
    if (fstatat(from.folder, from.name, &status, AT_SYMLINK_NOFOLLOW) != 0)
        return lastError(from);
    if (S_ISDIR(status.st_mode))
        return moveAfterChecking(from, to);
    return moveByLinking(from, to);
}

} // namespace quillfern::posixmove

#endif
