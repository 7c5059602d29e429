#pragma once

#include "engine/moveerror.h"

#include <filesystem>
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
    [[nodiscard]] virtual std::optional<MoveError> move(const std::filesystem::path &from,
                                                        const std::filesystem::path &to)
        = 0;

    /// Whether both paths name the very same item on disk (as a case-only rename does on a case-insensitive
    /// file system).
    [[nodiscard]] virtual bool isSameItem(const std::filesystem::path &first, const std::filesystem::path &second)
        = 0;

    /// Whether anything exists at the path (a dangling link counts).
    [[nodiscard]] virtual bool exists(const std::filesystem::path &path) = 0;
};

} // namespace quillfern
