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

/// How a successful move was protected against an item appearing at the destination while it ran.
enum class Protection {
    /// The kernel refused to replace anything (a no-replace rename, a link, or a folder renamed onto the empty
    /// folder that claimed its name).
    Atomic,
    /// The destination was claimed with an empty file and checked right before the rename; another program
    /// replacing that claim in the moment between could still lose its file.
    Unprotected,
};

/// The best available: the atomic no-replace rename; where the file system refuses its flag (NFS, many FUSE
/// file systems), a link for files and, for folders, an empty folder that claims the name and is then renamed
/// over; where there are no links either, an empty file that claims the name.
std::optional<MoveError> move(Location from, Location to, Protection &protection);

/// A hard link to the new name, then removal of the old one: a link never replaces anything. Not for folders.
std::optional<MoveError> moveByLinking(Location from, Location to, Protection &protection);

/// Claims the destination by creating an empty item there exclusively (a folder for a folder, a file for a
/// file), then renames over that claim: nothing another program made can be at the name when the claim
/// succeeds. A folder claim stays atomic (only an empty folder can be renamed over, so one another program
/// has put something in makes the rename fail); a file claim is checked once more right before the rename.
std::optional<MoveError> moveOntoClaim(Location from, Location to, bool isFolder, Protection &protection);

} // namespace posixmove
} // namespace quillfern

#endif
