#pragma once

#include "engine/batchrecord.h"
#include "engine/moverequest.h"

#include <QList>
#include <QString>

#include <optional>
#include <vector>

namespace quillfern {

class FileMover;

/// Works out, for a batch in the history, where each of its items is now and which moves give them the names
/// they should have: the new names to finish an interrupted batch, the old ones to revert it or to undo an
/// ended one. Items are found by what they are (device and inode), under each name they can have (old, new,
/// temporary), never by assuming how far the moves got. Only reads the disk, except to drop an item's second
/// name that an interrupted link-and-unlink move left.
class BatchRecovery final
{
public:
    /// The moves that put the found items in place, and why each other item of the batch is left as it is.
    struct Plan
    {
        QList<MoveRequest> requests;
        /// The move of the batch behind each request.
        std::vector<qsizetype> moveOfRequest;
        /// One per move of the batch: why its item is left alone; empty when it is moved or already in place.
        std::vector<QString> skipped;
        /// How many items already have the name they should have.
        qsizetype inPlace = 0;
    };

    BatchRecovery(const BatchRecord &record, FileMover &mover);

    /// Gives every item of an interrupted batch its new name.
    [[nodiscard]] Plan finish();
    /// Gives every item of an interrupted batch its old name back.
    [[nodiscard]] Plan revert();
    /// Gives every item an ended batch moved its old name back, provided it is unchanged since: an item that
    /// was edited, replaced or moved away is left alone, with the reason.
    [[nodiscard]] Plan undo();

private:
    /// Where the item of a move is now.
    struct Found
    {
        enum class Name {
            Old,
            New,
            Temporary,
            /// Under the old and the new name at once (an interrupted link-and-unlink move).
            Both,
            Nowhere,
        };

        Name name = Name::Nowhere;
        NativePath path;
    };

    [[nodiscard]] Plan recover(bool toNewNames);
    [[nodiscard]] Found find(qsizetype move);
    void dropTemporaryLink(qsizetype move, const Found &found);
    /// Where the folder is now: at its path, or where the batch moved it; none when it cannot be found.
    [[nodiscard]] std::optional<NativePath> folderNow(qsizetype folder);
    [[nodiscard]] bool isItemAt(const NativePath &path, const ItemIdentity &identity);

    const BatchRecord &m_record;
    FileMover &m_mover;
    std::vector<std::optional<std::optional<NativePath>>> m_folders;
};

} // namespace quillfern
