#pragma once

#include "engine/moverequest.h"

#include <QList>

#include <vector>

namespace quillfern {

/// The order in which the moves of a batch run on disk. A destination that another item of the batch still
/// occupies is taken only after that item has left: chains run from their free end, and each cycle (a swap, a
/// rotation) is broken by moving one item to a temporary name first, n + 1 moves for a cycle of n. Items inside
/// folders move before the folders that hold them, so every step names the item by the path it has then.
/// Every step stays a no-replace move: the order only decides which moves can succeed.
class MovePlan final
{
public:
    /// One move on disk.
    struct Step
    {
        enum class Kind {
            /// The request's source to its destination.
            Direct,
            /// The request's source to its temporary name: the first step of a broken cycle.
            ToTemporary,
            /// The request's temporary name to its destination: the last step of a broken cycle.
            FromTemporary,
        };

        qsizetype request = 0;
        Kind kind = Kind::Direct;

        friend bool operator==(const Step &, const Step &) = default;
    };

    /// Steps that succeed or fail together: one move, or all the moves of one broken cycle.
    struct Unit
    {
        qsizetype firstStep = 0;
        qsizetype stepCount = 0;

        [[nodiscard]] bool isCycle() const { return stepCount > 1; }
    };

    /// Plans the requests. Of several requests for one destination the first in the list is planned to get it;
    /// the others come after it and fail on the taken name, as they would one after the other.
    [[nodiscard]] static MovePlan make(const QList<MoveRequest> &requests);

    [[nodiscard]] const std::vector<Step> &steps() const { return m_steps; }
    [[nodiscard]] const std::vector<Unit> &units() const { return m_units; }

private:
    std::vector<Step> m_steps;
    std::vector<Unit> m_units;
};

} // namespace quillfern
