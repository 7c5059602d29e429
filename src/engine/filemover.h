#pragma once

#include "engine/itemidentity.h"
#include "engine/moveerror.h"
#include "model/nativepath.h"

#include <optional>

namespace quillfern {

/// The move primitive of a batch rename. Implementations never replace an existing destination and never copy
/// data. Tests install their own to simulate failures the real file system cannot produce on demand.
class FileMover
{
public:
    FileMover() = default;
    FileMover(const FileMover &) = delete;
    FileMover &operator=(const FileMover &) = delete;
    virtual ~FileMover() = default;

    /// Moves `from` to `to` within the same folder; no value on success. Fails with DestinationExists, and
    /// leaves both items as they were, when anything exists at `to`.
    [[nodiscard]] virtual std::optional<MoveError> move(const NativePath &from, const NativePath &to) = 0;

    /// Whether both paths name the very same item on disk (as a case-only rename does on a case-insensitive
    /// file system).
    [[nodiscard]] virtual bool isSameItem(const NativePath &first, const NativePath &second) = 0;

    /// Whether anything exists at the path (a dangling link counts).
    [[nodiscard]] virtual bool exists(const NativePath &path) = 0;

    /// What the item at the path is (a link is the link itself, not its target); none when nothing is there or
    /// it cannot be read.
    [[nodiscard]] virtual std::optional<ItemIdentity> identity(const NativePath &path) = 0;

    /// Removes the name `name` of a file when `otherName` is another name of the very same file (a second hard
    /// link, as an interrupted link-and-unlink move leaves); fails, removing nothing, when they are not two
    /// links of one file.
    [[nodiscard]] virtual std::optional<MoveError> removeSecondName(const NativePath &name, const NativePath &otherName)
    {
        Q_UNUSED(name);
        Q_UNUSED(otherName);
        return MoveError{MoveError::Kind::Other, QStringLiteral("This move primitive cannot remove names.")};
    }

    /// Whether the last successful move had no atomic protection against an item appearing at the destination
    /// while it ran (a file system that offers neither a no-replace rename nor hard links). Such a move checked
    /// the destination as late as it could, but another program could still have won the race.
    [[nodiscard]] virtual bool lastMoveWasUnprotected() const { return false; }

    /// Called when a batch of moves ends. A mover that kept folders open for the batch closes them here:
    /// before the next batch they may have moved, and a kept descriptor would follow them.
    virtual void finishBatch() {}
};

} // namespace quillfern
