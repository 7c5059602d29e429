#include "engine/batchrecovery.h"

#include "engine/batchrunner.h"
#include "engine/filemover.h"

using namespace Qt::StringLiterals;

namespace quillfern {

BatchRecovery::BatchRecovery(const BatchRecord &record, FileMover &mover)
    : m_record(record)
    , m_mover(mover)
    , m_folders(std::size_t(record.folders.size()))
{
}

BatchRecovery::Plan BatchRecovery::finish()
{
    return recover(true);
}

BatchRecovery::Plan BatchRecovery::revert()
{
    return recover(false);
}

BatchRecovery::Plan BatchRecovery::recover(bool toNewNames)
{
    Plan plan;
    plan.skipped.resize(std::size_t(m_record.moves.size()));
    for (qsizetype index = 0; index < m_record.moves.size(); ++index) {
        const BatchRecord::Move &move = m_record.moves[index];
        const Found found = find(index);
        const NativePath &target = toNewNames ? move.to : move.from;
        dropTemporaryLink(index, found);
        switch (found.name) {
        case Found::Name::Nowhere:
            plan.skipped[std::size_t(index)] =
                u"“%1” was found neither under its old name nor under its new one."_s.arg(move.from.toText());
            break;
        case Found::Name::Both: {
            // Both names are links to the item: the one it should not have goes. Where the file system spells
            // one entry both ways (it ignores case), there is no second link and the item is already in place.
            const NativePath folder = found.path.parent();
            const NativePath kept = folder / target;
            const NativePath dropped = folder / (toNewNames ? move.from : move.to);
            (void)m_mover.removeSecondName(dropped, kept);
            ++plan.inPlace;
            break;
        }
        case Found::Name::Old:
        case Found::Name::New:
            if ((found.name == Found::Name::New) == toNewNames) {
                ++plan.inPlace;
                break;
            }
            [[fallthrough]];
        case Found::Name::Temporary:
            plan.requests.append({found.path, target});
            plan.moveOfRequest.push_back(index);
            break;
        }
    }
    return plan;
}

BatchRecovery::Plan BatchRecovery::undo()
{
    Plan plan;
    plan.skipped.resize(std::size_t(m_record.moves.size()));
    for (qsizetype index = 0; index < m_record.moves.size(); ++index) {
        if (std::size_t(index) >= m_record.outcomes.size()
            || m_record.outcomes[std::size_t(index)].state != MoveOutcome::State::Moved)
            continue;
        const BatchRecord::Move &move = m_record.moves[index];
        QString &skipped = plan.skipped[std::size_t(index)];
        const std::optional<NativePath> folder = folderNow(move.folder);
        if (!folder) {
            skipped = u"Its folder “%1” is no longer there."_s.arg(m_record.folders[move.folder].path.toText());
            continue;
        }
        const NativePath path = *folder / move.to;
        const std::optional<ItemIdentity> now = m_mover.identity(path);
        if (!now)
            skipped = u"“%1” is no longer in “%2”."_s.arg(move.to.toText(), folder->toText());
        else if (!now->isSameItemAs(move.identity))
            skipped = u"“%1” is another item now: it was replaced since the rename."_s.arg(move.to.toText());
        else if (!now->isUnchangedSince(move.identity))
            skipped = u"“%1” was changed since the rename."_s.arg(move.to.toText());
        if (!skipped.isEmpty())
            continue;
        plan.requests.append({path, move.from});
        plan.moveOfRequest.push_back(index);
    }
    return plan;
}

void BatchRecovery::dropTemporaryLink(qsizetype index, const Found &found)
{
    // A link-and-unlink move to or from the temporary name, killed between its steps, leaves the item there
    // as well: that hidden second name goes.
    if (found.name == Found::Name::Nowhere || found.name == Found::Name::Temporary)
        return;
    const NativePath temporary = found.path.parent() / BatchRunner::temporaryName(m_record.id, index);
    if (isItemAt(temporary, m_record.moves[index].identity))
        (void)m_mover.removeSecondName(temporary, found.path);
}

BatchRecovery::Found BatchRecovery::find(qsizetype index)
{
    const BatchRecord::Move &move = m_record.moves[index];
    const std::optional<NativePath> folder = folderNow(move.folder);
    if (!folder)
        return {};
    const NativePath oldPath = *folder / move.from;
    const NativePath newPath = *folder / move.to;
    const bool isAtOld = isItemAt(oldPath, move.identity);
    const bool isAtNew = isItemAt(newPath, move.identity);
    if (isAtOld && isAtNew)
        return {Found::Name::Both, newPath};
    if (isAtNew)
        return {Found::Name::New, newPath};
    if (isAtOld)
        return {Found::Name::Old, oldPath};
    const NativePath temporary = *folder / BatchRunner::temporaryName(m_record.id, index);
    if (isItemAt(temporary, move.identity))
        return {Found::Name::Temporary, temporary};
    return {};
}

std::optional<NativePath> BatchRecovery::folderNow(qsizetype folder)
{
    auto &known = m_folders[std::size_t(folder)];
    if (known)
        return *known;
    // Marked unknown first, so that a folder the batch moved into itself cannot send the search in circles.
    known.emplace(std::nullopt);
    const BatchRecord::Folder &record = m_record.folders[folder];
    if (isItemAt(record.path, record.identity)) {
        known.emplace(record.path);
        return record.path;
    }
    // The batch renamed the folder itself: it is wherever that move's item is.
    for (qsizetype index = 0; index < m_record.moves.size() && record.identity.inode != 0; ++index) {
        if (!m_record.moves[index].identity.isSameItemAs(record.identity))
            continue;
        if (const Found found = find(index); found.name != Found::Name::Nowhere) {
            known.emplace(found.path);
            return found.path;
        }
    }
    return std::nullopt;
}

bool BatchRecovery::isItemAt(const NativePath &path, const ItemIdentity &identity)
{
    const std::optional<ItemIdentity> now = m_mover.identity(path);
    return now && now->isSameItemAs(identity);
}

} // namespace quillfern
