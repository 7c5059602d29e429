#pragma once

#include "engine/batchrecord.h"
#include "engine/moveerror.h"
#include "engine/moveoutcome.h"
#include "engine/moveplan.h"
#include "engine/moverequest.h"

#include <QList>
#include <QString>

#include <atomic>
#include <functional>
#include <optional>
#include <vector>

namespace quillfern {

class FileMover;

/// Carries out a batch of moves as one transaction: plans their order, writes the journal before the first
/// move when a history folder is set, then runs the plan with a move primitive, one unit after the other. A
/// failed move never stops the batch. A cycle either completes or is moved back as a whole, so no item is left
/// under its temporary name; a case-only rename on a file system that ignores case goes through the same
/// temporary name.
class BatchRunner final
{
public:
    /// A runner of a new batch with a fresh id.
    explicit BatchRunner(FileMover &mover);

    /// Keeps the journal of the batch in this history folder; without one the batch has no journal.
    void setHistoryFolder(const QString &folder) { m_historyFolder = folder; }
    /// What the journal records the batch as: a rename, or the undo or recovery of the batch `target`.
    void setKind(BatchRecord::Kind kind, const QString &target = {})
    {
        m_kind = kind;
        m_target = target;
    }

    /// When the flag is set, the batch stops before the next unit; the unit in flight (a whole cycle) completes.
    void setStopFlag(const std::atomic<bool> *stopRequested) { m_stopRequested = stopRequested; }
    /// Called with each request and its outcome as soon as the outcome is known, in the order of the moves.
    void setOutcomeHandler(std::function<void(qsizetype request, const MoveOutcome &outcome)> handler)
    {
        m_outcomeHandler = std::move(handler);
    }

    /// Plans and runs `requests`; one outcome per request, in the order of the requests. None, with error()
    /// set and nothing moved, when the journal cannot be written.
    [[nodiscard]] std::optional<std::vector<MoveOutcome>> run(const QList<MoveRequest> &requests);
    /// Runs the plan of `requests` without a journal.
    [[nodiscard]] std::vector<MoveOutcome> run(const QList<MoveRequest> &requests, const MovePlan &plan);

    /// What would become of each request if the batch ran now, worked out without moving anything: the same
    /// plan run over `disk` as it is, with the moves laid over it.
    [[nodiscard]] static std::vector<MoveOutcome> forecast(const QList<MoveRequest> &requests, FileMover &disk);

    [[nodiscard]] const QString &batchId() const { return m_batchId; }
    /// Why the last run did not start.
    [[nodiscard]] const QString &error() const { return m_error; }
    /// Whether the last run stopped early because the stop flag was set.
    [[nodiscard]] bool wasStopped() const { return m_wasStopped; }

    /// The temporary name of a request of the batch `batchId`: hidden, and unique to the batch and request, so
    /// recovery knows where to look for an item that was interrupted on its way.
    [[nodiscard]] static NativePath temporaryName(const QString &batchId, qsizetype request);

private:
    /// One move of a unit, kept so that a failed cycle can be moved back.
    struct DoneMove
    {
        NativePath from;
        NativePath to;
    };

    [[nodiscard]] BatchRecord planRecord(const QList<MoveRequest> &requests) const;
    void runUnit(qsizetype request);
    void runCycle(const MovePlan &plan, const MovePlan::Unit &unit);
    /// The move of a request straight to its destination, through its temporary name when the destination is
    /// the item itself under another spelling.
    [[nodiscard]] std::optional<QString> moveDirectly(qsizetype request);
    [[nodiscard]] std::optional<MoveError> moveStep(const NativePath &from, const NativePath &to);
    [[nodiscard]] QString moveBack(const std::vector<DoneMove> &done);
    void settle(qsizetype request, MoveOutcome outcome);

    FileMover &m_mover;
    QString m_batchId;
    QString m_historyFolder;
    BatchRecord::Kind m_kind = BatchRecord::Kind::Rename;
    QString m_target;
    QString m_error;
    const std::atomic<bool> *m_stopRequested = nullptr;
    std::function<void(qsizetype, const MoveOutcome &)> m_outcomeHandler;
    bool m_wasStopped = false;

    // The run in progress.
    const QList<MoveRequest> *m_requests = nullptr;
    std::vector<MoveOutcome> m_outcomes;
    /// Whether a move of the unit in flight had no atomic protection.
    bool m_isUnitUnprotected = false;
};

} // namespace quillfern
