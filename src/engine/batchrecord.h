#pragma once

#include "engine/itemidentity.h"
#include "engine/moveoutcome.h"
#include "model/nativepath.h"

#include <QDateTime>
#include <QList>
#include <QString>

#include <vector>

namespace quillfern {

/// What the journal of one batch holds: every requested move with the identity its item had before the batch,
/// and, once the batch has ended, what became of each move.
struct BatchRecord
{
    enum class Kind {
        /// Names from rules or a mapping.
        Rename,
        /// Gives the items of an earlier batch their names back.
        Undo,
        /// Completes an interrupted batch.
        Finish,
        /// Gives the items of an interrupted batch their old names back.
        Revert,
    };

    /// How far the batch got.
    enum class State {
        /// The plan was written and the moves may have begun; the batch has not ended (it runs, or it was
        /// interrupted).
        Unfinished,
        /// Every move was attempted.
        Complete,
        /// Stopped on request; the moves not attempted are marked so.
        Stopped,
        /// Interrupted, then completed by a later batch.
        Finished,
        /// Interrupted, then moved back by a later batch.
        Reverted,
    };

    /// A folder that holds items of the batch.
    struct Folder
    {
        NativePath path;
        ItemIdentity identity;
    };

    /// One requested move within a folder.
    struct Move
    {
        qsizetype folder = 0;
        NativePath from;
        NativePath to;
        /// The item before the batch moved anything.
        ItemIdentity identity;
    };

    QString id;
    QDateTime createdAt;
    Kind kind = Kind::Rename;
    /// The batch this one undoes or recovers; empty for a rename.
    QString target;
    QList<Folder> folders;
    QList<Move> moves;

    State state = State::Unfinished;
    /// One per move once the batch has ended; empty while it is unfinished.
    std::vector<MoveOutcome> outcomes;

    /// Where the item of a move was before the batch, and where it was to go.
    [[nodiscard]] NativePath sourceOf(const Move &move) const { return folders[move.folder].path / move.from; }
    [[nodiscard]] NativePath destinationOf(const Move &move) const { return folders[move.folder].path / move.to; }
};

} // namespace quillfern
