#pragma once

#include <filesystem>
#include <unordered_map>

namespace quillfern {

/// Where items went in a batch of moves, so that the locations of everything inside a moved folder can be
/// followed: after "a" moved to "b", "a/c/d" is found at "b/c/d".
class MovedLocations final
{
public:
    /// Records that the item listed at `from` is now at `to`.
    void record(const std::filesystem::path &from, const std::filesystem::path &to);

    /// Where the item listed at `location` is now: below the deepest moved folder that holds it, or where it
    /// was when no folder above it moved. The item's own move is not considered.
    [[nodiscard]] std::filesystem::path currentLocation(const std::filesystem::path &location) const;

    [[nodiscard]] bool isEmpty() const { return m_moves.empty(); }

private:
    std::unordered_map<std::filesystem::path::string_type, std::filesystem::path> m_moves;
};

} // namespace quillfern
