#include "model/movedlocations.h"

namespace quillfern {

namespace fs = std::filesystem;

void MovedLocations::record(const fs::path &from, const fs::path &to)
{
    m_moves.insert_or_assign(from.native(), to);
}

fs::path MovedLocations::currentLocation(const fs::path &location) const
{
    if (m_moves.empty())
        return location;
    // The map is keyed by listed locations, so the deepest listed folder above the item already knows where
    // every folder above it went.
    fs::path below = location.filename();
    for (fs::path folder = location.parent_path(); folder.has_relative_path(); folder = folder.parent_path()) {
        if (const auto moved = m_moves.find(folder.native()); moved != m_moves.end())
            return moved->second / below;
        below = folder.filename() / below;
    }
    return location;
}

} // namespace quillfern
