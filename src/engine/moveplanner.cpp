#include "engine/moveplanner_p.h"
#include "engine/newnamecheck_p.h"
#include "engine/rulepipeline_p.h"

#include <QThread>
#include <QThreadPool>
#include <QtConcurrent/QtConcurrentRun>

#include <algorithm>

namespace quillfern {

namespace {

/// Small enough that the first renames start at once, large enough that claiming a chunk costs nothing.
constexpr qsizetype chunkSize = 256;

qsizetype chunkCountFor(qsizetype files)
{
    return (files + chunkSize - 1) / chunkSize;
}

} // namespace

MovePlanner::MovePlanner(const QList<RenameRule> &rules, const QList<FileItem> &files)
    : m_rules(rules)
    , m_files(files)
    , m_plans(std::size_t(files.size()))
    , m_isChunkPlanned(std::size_t(chunkCountFor(files.size())))
{
    // The calling thread plans the first chunk itself, so helpers only pay off from the second on; it renames
    // on one core, so one core fewer is left for them.
    const qsizetype helpers =
        std::min<qsizetype>(chunkCountFor(files.size()) - 1, std::max(1, QThread::idealThreadCount()) - 1);
    for (qsizetype helper = 0; helper < helpers; ++helper)
        m_helpers.append(QtConcurrent::run(QThreadPool::globalInstance(), [this] { planChunksInTurn(); }));
}

MovePlanner::~MovePlanner()
{
    // A helper still queued runs here and finds nothing left to plan.
    for (QFuture<void> &helper : m_helpers)
        helper.waitForFinished();
}

const MovePlanner::Plan &MovePlanner::at(qsizetype position)
{
    const qsizetype chunk = position / chunkSize;
    std::atomic<bool> &isPlanned = m_isChunkPlanned[std::size_t(chunk)];
    while (!isPlanned.load(std::memory_order_acquire)) {
        // Chunks are claimed in order: while the one needed is unclaimed, this thread plans the next one
        // itself; once a helper holds it, waiting is all that is left.
        qsizetype next = m_nextChunk.load();
        while (next <= chunk && !m_nextChunk.compare_exchange_weak(next, next + 1)) {}
        if (next <= chunk)
            planChunk(next, ownPipeline());
        else
            isPlanned.wait(false, std::memory_order_acquire);
    }
    return m_plans[std::size_t(position)];
}

void MovePlanner::planChunksInTurn()
{
    // Each thread compiles the rules for itself: ICU matchers and iterators are not thread-safe.
    RulePipeline pipeline(m_rules);
    const qsizetype chunks = qsizetype(m_isChunkPlanned.size());
    for (qsizetype chunk = m_nextChunk++; chunk < chunks; chunk = m_nextChunk++)
        planChunk(chunk, pipeline);
}

// An unselected file gets no move but keeps its position for the numbering of the files after it; a name no
// rule changed (compared as text, so a name that is not valid UTF-8 is left alone) gets none either.
void MovePlanner::planChunk(qsizetype chunk, RulePipeline &pipeline)
{
    const qsizetype end = std::min(m_files.size(), (chunk + 1) * chunkSize);
    for (qsizetype i = chunk * chunkSize; i < end; ++i) {
        if (!m_files[i].isSelected)
            continue;
        const QString original = m_files[i].originalName();
        const QString newName = pipeline.newName(original, i);
        Plan &plan = m_plans[std::size_t(i)];
        plan.isWanted = newName != original;
        if (!plan.isWanted)
            continue;
        plan.newName = NativePath::fromText(newName);
        plan.invalidReason = newnamecheck::whyInvalid(newName);
    }
    std::atomic<bool> &isPlanned = m_isChunkPlanned[std::size_t(chunk)];
    isPlanned.store(true, std::memory_order_release);
    isPlanned.notify_all();
}

RulePipeline &MovePlanner::ownPipeline()
{
    if (!m_ownPipeline)
        m_ownPipeline = std::make_unique<RulePipeline>(m_rules);
    return *m_ownPipeline;
}

} // namespace quillfern
