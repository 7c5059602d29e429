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

std::optional<MoveError> moveByLinking(Location from, Location to, Protection &protection)
{
    if (linkat(from.folder, from.name, to.folder, to.name, 0) != 0) {
        // Some file systems have no hard links at all (exFAT, SMB, many FUSE ones); there only a claim is left.
        if (hasNoHardLinks(errno))
            return moveOntoClaim(from, to, false, protection);
        return lastError(to);
    }
    if (unlinkat(from.folder, from.name, 0) != 0) {
        const auto error = lastError(from);
        unlinkat(to.folder, to.name, 0);
        return error;
    }
    protection = Protection::Atomic;
    return std::nullopt;
}

namespace {

/// Removes a claim made by this move, only while it is still the one made.
void dropClaim(Location to, const struct stat &claim, bool isFolder)
{
    struct stat now = {};
    if (fstatat(to.folder, to.name, &now, AT_SYMLINK_NOFOLLOW) == 0 && now.st_dev == claim.st_dev
        && now.st_ino == claim.st_ino)
        unlinkat(to.folder, to.name, isFolder ? AT_REMOVEDIR : 0);
}

} // namespace

std::optional<MoveError> moveOntoClaim(Location from, Location to, bool isFolder, Protection &protection)
{
    struct stat claim = {};
    if (isFolder) {
        if (mkdirat(to.folder, to.name, 0700) != 0 || fstatat(to.folder, to.name, &claim, AT_SYMLINK_NOFOLLOW) != 0)
            return lastError(to);
    } else {
        const int descriptor = openat(to.folder, to.name, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
        if (descriptor < 0)
            return lastError(to);
        const bool isRead = fstat(descriptor, &claim) == 0;
        close(descriptor);
        if (!isRead) {
            const auto error = lastError(to);
            unlinkat(to.folder, to.name, 0);
            return error;
        }
    }
    // A file claim could have been replaced since it was made: it must still be the empty file made here.
    struct stat now = {};
    if (!isFolder
        && (fstatat(to.folder, to.name, &now, AT_SYMLINK_NOFOLLOW) != 0 || now.st_dev != claim.st_dev
            || now.st_ino != claim.st_ino || now.st_size != 0))
        return moveerrors::destinationExists(NativePath(to.name));
    if (renameat(from.folder, from.name, to.folder, to.name) != 0) {
        const auto error =
            errno == ENOTEMPTY || errno == EEXIST ? moveerrors::destinationExists(NativePath(to.name)) : lastError(to);
        dropClaim(to, claim, isFolder);
        return error;
    }
    protection = isFolder ? Protection::Atomic : Protection::Unprotected;
    return std::nullopt;
}

std::optional<MoveError> move(Location from, Location to, Protection &protection)
{
    protection = Protection::Atomic;
    if (renameExclusive(from, to) == 0)
        return std::nullopt;
    if (!refusedFlag(errno))
        return lastError(to);
    struct stat status = {};
    if (fstatat(from.folder, from.name, &status, AT_SYMLINK_NOFOLLOW) != 0)
        return lastError(from);
    if (S_ISDIR(status.st_mode))
        return moveOntoClaim(from, to, true, protection);
    return moveByLinking(from, to, protection);
}

} // namespace quillfern::posixmove

#endif
