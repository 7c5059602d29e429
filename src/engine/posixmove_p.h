#pragma once

#include "engine/moveerror.h"

#include <QtGlobal>

#include <optional>

#ifndef Q_OS_WIN

namespace quillfern {

/// The POSIX ways to move an item within its folder without ever replacing what is at the destination.
namespace posixmove {

/// An item named relative to an open folder descriptor; AT_FDCWD with a whole path names any item.
struct Location
{
    int folder;
    const char *name;
};

/// The best available: the atomic no-replace rename, then, where the file system refuses its flag (NFS, many
/// FUSE file systems), linking for files and check-then-rename for folders.
std::optional<MoveError> move(Location from, Location to);

/// A hard link to the new name, then removal of the old one: a link never replaces anything. Not for folders.
std::optional<MoveError> moveByLinking(Location from, Location to);

/// Checks that nothing is at the destination, then renames; racy, the last resort for folders.
std::optional<MoveError> moveAfterChecking(Location from, Location to);

} // namespace posixmove
} // namespace quillfern

#endif
