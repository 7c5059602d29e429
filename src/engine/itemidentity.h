#pragma once

#include <QtGlobal>

namespace quillfern {

/// What identifies an item on disk across renames: the device and inode of its directory entry, with the size
/// and modification time that tell whether a file was changed since. Recorded before a batch moves anything,
/// so that recovery and undo find each item by what it is, not by the name it happens to have.
struct ItemIdentity
{
    quint64 device = 0;
    quint64 inode = 0;
    qint64 size = 0;
    /// Nanoseconds since the epoch.
    qint64 modifiedNanoseconds = 0;
    bool isDirectory = false;

    /// Whether both name the same item (device and inode); says nothing of its content.
    [[nodiscard]] bool isSameItemAs(const ItemIdentity &other) const
    {
        return device == other.device && inode == other.inode;
    }

    /// Whether the item is the same and, for a file, unchanged since. A folder's size and time change whenever
    /// an item inside it is renamed, so for folders only the item counts.
    [[nodiscard]] bool isUnchangedSince(const ItemIdentity &earlier) const
    {
        return isSameItemAs(earlier) && isDirectory == earlier.isDirectory
            && (isDirectory || (size == earlier.size && modifiedNanoseconds == earlier.modifiedNanoseconds));
    }

    friend bool operator==(const ItemIdentity &, const ItemIdentity &) = default;
};

} // namespace quillfern
