#include "engine/dryrunmover.h"

#include "engine/moveerrors_p.h"

using namespace Qt::StringLiterals;

namespace quillfern {

DryRunMover::DryRunMover(FileMover &disk)
    : m_disk(disk)
{
}

std::optional<NativePath> DryRunMover::itemAt(const NativePath &path)
{
    if (const auto changed = m_changed.constFind(path); changed != m_changed.cend())
        return *changed;
    if (m_disk.exists(path))
        return path;
    return std::nullopt;
}

std::optional<MoveError> DryRunMover::move(const NativePath &from, const NativePath &to)
{
    const std::optional<NativePath> item = itemAt(from);
    if (!item)
        return MoveError{MoveError::Kind::Other, u"“%1” is no longer there."_s.arg(from.fileNameText())};
    if (const std::optional<NativePath> occupant = itemAt(to);
        occupant && *occupant != *item && !m_disk.isSameItem(*occupant, *item)) {
        if (m_isFilledByBatch.contains(to)) {
            return MoveError{MoveError::Kind::DestinationExists,
                u"An earlier file of the batch gets the name “%1”."_s.arg(to.fileNameText())};
        }
        return moveerrors::destinationExists(to);
    }
    m_changed.insert(from, std::nullopt);
    m_changed.insert(to, item);
    m_isFilledByBatch.remove(from);
    m_isFilledByBatch.insert(to, true);
    return std::nullopt;
}

bool DryRunMover::isSameItem(const NativePath &first, const NativePath &second)
{
    const auto firstItem = itemAt(first);
    const auto secondItem = itemAt(second);
    return firstItem && secondItem && (*firstItem == *secondItem || m_disk.isSameItem(*firstItem, *secondItem));
}

bool DryRunMover::exists(const NativePath &path)
{
    return itemAt(path).has_value();
}

std::optional<ItemIdentity> DryRunMover::identity(const NativePath &path)
{
    const auto item = itemAt(path);
    return item ? m_disk.identity(*item) : std::nullopt;
}

} // namespace quillfern
