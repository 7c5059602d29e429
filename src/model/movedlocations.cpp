#include "model/movedlocations.h"

namespace quillfern {

void MovedLocations::record(const NativePath &from, const NativePath &to)
{
    m_moves.insert_or_assign(from, to);
}

NativePath MovedLocations::currentLocation(const NativePath &location) const
{
    return newLocation(location).value_or(location);
}

std::optional<NativePath> MovedLocations::newLocation(const NativePath &location) const
{
    if (m_moves.empty())
        return std::nullopt;
    // The map is keyed by listed locations, so the deepest listed folder above the item already knows where
    // every folder above it went. The walk stops at the root, the one folder without a name of its own.
    for (NativePath folder = location.parent(); folder.fileNameOffset() < folder.native().size();
         folder = folder.parent()) {
        if (const auto moved = m_moves.find(folder); moved != m_moves.end()) {
            NativePath::string_type below =
                moved->second.native() + NativePath::view_type(location.native()).sliced(folder.native().size());
            return NativePath(std::move(below));
        }
    }
    return std::nullopt;
}

} // namespace quillfern
