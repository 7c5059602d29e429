#pragma once

#include "model/nativepath.h"

#include <optional>
#include <unordered_map>

namespace quillfern {

/// Where items went in a batch of moves, so that the locations of everything inside a moved folder can be
/// followed: after "a" moved to "b", "a/c/d" is found at "b/c/d".
class MovedLocations final
{
public:
    /// Records that the item listed at `from` is now at `to`.
    void record(const NativePath &from, const NativePath &to);

    /// Where the item listed at `location` is now: below the deepest moved folder that holds it, or where it
    /// was when no folder above it moved. The item's own move is not considered.
    [[nodiscard]] NativePath currentLocation(const NativePath &location) const;
    /// The same, but none when no folder above the item moved.
    [[nodiscard]] std::optional<NativePath> newLocation(const NativePath &location) const;

    [[nodiscard]] bool isEmpty() const { return m_moves.empty(); }

private:
    std::unordered_map<NativePath, NativePath> m_moves;
};

} // namespace quillfern
