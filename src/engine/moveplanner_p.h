#pragma once

#include "model/fileitem.h"
#include "model/nativepath.h"
#include "model/renamerule.h"

#include <QFuture>
#include <QList>
#include <QString>

#include <atomic>
#include <memory>
#include <vector>

namespace quillfern {

class RulePipeline;

/// The plan of a batch of renames, worked out on the other cores while the batch is being renamed: a new name
/// depends only on the rules and the file's position, never on the moves before it, and naming a file costs a
/// small fraction of renaming it, so the renames never wait after the first few plans.
class MovePlanner final
{
public:
    /// What the batch does with one file: nothing, or a move to its new name (refused when the name is invalid).
    struct Plan
    {
        bool isWanted = false;
        NativePath newName;
        QString invalidReason;
    };

    /// Starts planning. `rules` and `files` must outlive the planner.
    MovePlanner(const QList<RenameRule> &rules, const QList<FileItem> &files);
    /// Waits for the helpers on the other cores.
    ~MovePlanner();
    MovePlanner(const MovePlanner &) = delete;
    MovePlanner &operator=(const MovePlanner &) = delete;

    /// The plan of the file at `position`, planned on this thread when no other has got to it yet.
    [[nodiscard]] const Plan &at(qsizetype position);

private:
    void planChunksInTurn();
    void planChunk(qsizetype chunk, RulePipeline &pipeline);
    [[nodiscard]] RulePipeline &ownPipeline();

    const QList<RenameRule> &m_rules;
    const QList<FileItem> &m_files;
    std::vector<Plan> m_plans;
    std::vector<std::atomic<bool>> m_isChunkPlanned;
    std::atomic<qsizetype> m_nextChunk = 0;
    std::unique_ptr<RulePipeline> m_ownPipeline;
    QList<QFuture<void>> m_helpers;
};

} // namespace quillfern
