#pragma once

#include <QString>

namespace quillfern {

/// What became of one requested move of a batch.
struct MoveOutcome
{
    enum class State {
        /// The batch stopped before the move's turn came.
        NotAttempted,
        Moved,
        Failed,
    };

    State state = State::NotAttempted;
    /// Why it failed, readable as it is; empty unless it failed.
    QString error;
    /// The move succeeded on a file system with no atomic protection against an item appearing at the
    /// destination while it ran.
    bool wasUnprotected = false;

    friend bool operator==(const MoveOutcome &, const MoveOutcome &) = default;
};

} // namespace quillfern
