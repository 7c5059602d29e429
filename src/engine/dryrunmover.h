#pragma once

#include "engine/filemover.h"

#include <QHash>

namespace quillfern {

/// A move primitive that moves nothing: it answers from the disk as it is, with the moves made so far laid over
/// it, so that running a batch with it tells, move by move, which renames of the batch would fail and why.
/// Reads the disk through another mover, never writes.
class DryRunMover final : public FileMover
{
public:
    explicit DryRunMover(FileMover &disk);

    [[nodiscard]] std::optional<MoveError> move(const NativePath &from, const NativePath &to) override;
    [[nodiscard]] bool isSameItem(const NativePath &first, const NativePath &second) override;
    [[nodiscard]] bool exists(const NativePath &path) override;
    [[nodiscard]] std::optional<ItemIdentity> identity(const NativePath &path) override;

private:
    /// Where the item now at `path` is on the disk; none when nothing is there now.
    [[nodiscard]] std::optional<NativePath> itemAt(const NativePath &path);

    FileMover &m_disk;
    /// The locations the moves so far have changed: what is there now, by its location on the disk, or none
    /// when they left it empty.
    QHash<NativePath, std::optional<NativePath>> m_changed;
    /// Locations a move of this batch has filled.
    QHash<NativePath, bool> m_isFilledByBatch;
};

} // namespace quillfern
