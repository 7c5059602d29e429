#include "engine/batchrunner.h"

#include "engine/batchhistory.h"
#include "engine/batchjournal.h"
#include "engine/dryrunmover.h"
#include "engine/filemover.h"

#include <QUuid>

#include <filesystem>
#include <unordered_map>

using namespace Qt::StringLiterals;

namespace quillfern {

BatchRunner::BatchRunner(FileMover &mover)
    : m_mover(mover)
    , m_batchId(QUuid::createUuid().toString(QUuid::Id128).left(12))
{
}

NativePath BatchRunner::temporaryName(const QString &batchId, qsizetype request)
{
    return NativePath::fromText(u".quillfern-%1-%2"_s.arg(batchId).arg(request));
}

std::optional<std::vector<MoveOutcome>> BatchRunner::run(const QList<MoveRequest> &requests)
{
    m_error.clear();
    const MovePlan plan = MovePlan::make(requests);
    if (m_historyFolder.isEmpty() || requests.isEmpty())
        return run(requests, plan);
    const std::unique_ptr<BatchJournal> journal = BatchJournal::begin(m_historyFolder, planRecord(requests), m_error);
    if (!journal) {
        m_error = u"Nothing was renamed: the journal of the batch could not be written (%1)."_s.arg(m_error);
        return std::nullopt;
    }
    std::vector<MoveOutcome> outcomes = run(requests, plan);
    journal->end(m_wasStopped ? BatchRecord::State::Stopped : BatchRecord::State::Complete, outcomes);
    BatchHistory(m_historyFolder).prune(QDateTime::currentDateTimeUtc());
    return outcomes;
}

std::vector<MoveOutcome> BatchRunner::forecast(const QList<MoveRequest> &requests, FileMover &disk)
{
    DryRunMover dryRun(disk);
    return BatchRunner(dryRun).run(requests, MovePlan::make(requests));
}

namespace {

/// The folder as an absolute path: the journal must find it again from wherever recovery or undo is run.
NativePath absoluteFolder(const NativePath &folder)
{
    std::error_code error;
    const std::filesystem::path absolute =
        folder.isEmpty() ? std::filesystem::current_path(error) : std::filesystem::absolute(folder.toStdPath(), error);
    return error ? folder : NativePath(absolute.lexically_normal()).withoutTrailingSeparator();
}

} // namespace

BatchRecord BatchRunner::planRecord(const QList<MoveRequest> &requests) const
{
    BatchRecord record;
    record.id = m_batchId;
    record.createdAt = QDateTime::currentDateTimeUtc();
    record.kind = m_kind;
    record.target = m_target;
    record.moves.reserve(requests.size());
    std::unordered_map<NativePath, qsizetype> folderIndex;
    for (const MoveRequest &request : requests) {
        const NativePath folder = request.source.parent();
        const auto [index, isNew] = folderIndex.try_emplace(folder, record.folders.size());
        if (isNew) {
            record.folders.append({absoluteFolder(folder),
                m_mover.identity(folder.isEmpty() ? NativePath(".") : folder).value_or(ItemIdentity{})});
        }
        // An item that cannot be read now is recorded without identity; its own move will say why.
        record.moves.append(BatchRecord::Move{index->second,
            request.source.fileName(),
            request.newName,
            m_mover.identity(request.source).value_or(ItemIdentity{})});
    }
    return record;
}

std::vector<MoveOutcome> BatchRunner::run(const QList<MoveRequest> &requests, const MovePlan &plan)
{
    m_requests = &requests;
    m_outcomes.assign(std::size_t(requests.size()), MoveOutcome{});
    m_wasStopped = false;
    for (const MovePlan::Unit &unit : plan.units()) {
        if (m_stopRequested && m_stopRequested->load(std::memory_order_relaxed)) {
            m_wasStopped = true;
            break;
        }
        m_isUnitUnprotected = false;
        if (unit.isCycle())
            runCycle(plan, unit);
        else
            runUnit(plan.steps()[std::size_t(unit.firstStep)].request);
    }
    m_mover.finishBatch();
    m_requests = nullptr;
    return std::move(m_outcomes);
}

void BatchRunner::runUnit(qsizetype request)
{
    if (const auto error = moveDirectly(request))
        settle(request, {MoveOutcome::State::Failed, *error});
    else
        settle(request, {MoveOutcome::State::Moved, {}, m_isUnitUnprotected});
}

std::optional<QString> BatchRunner::moveDirectly(qsizetype request)
{
    const MoveRequest &move = (*m_requests)[request];
    const NativePath destination = move.destination();
    const auto error = moveStep(move.source, destination);
    if (!error)
        return std::nullopt;
    if (error->kind != MoveError::Kind::DestinationExists || !m_mover.isSameItem(move.source, destination))
        return error->message;
    // The destination is the item itself under another spelling, on a file system that ignores case: the
    // item steps aside first.
    const NativePath temporary = move.source.withFileName(temporaryName(m_batchId, request));
    if (const auto asideError = moveStep(move.source, temporary))
        return asideError->message;
    const auto finalError = moveStep(temporary, destination);
    if (!finalError)
        return std::nullopt;
    return finalError->message + moveBack({{move.source, temporary}});
}

void BatchRunner::runCycle(const MovePlan &plan, const MovePlan::Unit &unit)
{
    std::vector<DoneMove> done;
    std::optional<std::pair<qsizetype, QString>> failure;
    for (qsizetype index = unit.firstStep; index < unit.firstStep + unit.stepCount; ++index) {
        const MovePlan::Step &step = plan.steps()[std::size_t(index)];
        const MoveRequest &move = (*m_requests)[step.request];
        const NativePath temporary = move.source.withFileName(temporaryName(m_batchId, step.request));
        const NativePath from = step.kind == MovePlan::Step::Kind::FromTemporary ? temporary : move.source;
        const NativePath to = step.kind == MovePlan::Step::Kind::ToTemporary ? temporary : move.destination();
        if (const auto error = moveStep(from, to)) {
            failure.emplace(step.request, error->message);
            break;
        }
        done.push_back({from, to});
    }
    const MovePlan::Step *const begin = plan.steps().data() + unit.firstStep;
    const MovePlan::Step *const end = begin + unit.stepCount;
    if (!failure) {
        for (const MovePlan::Step *step = begin; step != end; ++step) {
            if (step->kind != MovePlan::Step::Kind::ToTemporary)
                settle(step->request, {MoveOutcome::State::Moved, {}, m_isUnitUnprotected});
        }
        return;
    }
    // A cycle left half done would leave an item under its temporary name or a name meant for another, so it
    // is moved back as a whole.
    const QString movedBack = moveBack(done);
    const QString failedName = (*m_requests)[failure->first].source.fileNameText();
    for (const MovePlan::Step *step = begin; step != end; ++step) {
        if (step->kind == MovePlan::Step::Kind::FromTemporary)
            continue;
        if (step->request == failure->first) {
            settle(step->request, {MoveOutcome::State::Failed, failure->second + movedBack});
            continue;
        }
        settle(step->request,
            {MoveOutcome::State::Failed,
                u"Not renamed: its new name is the old name of another file of a cycle of renames, and “%1” "
                "could not be renamed, so the cycle was moved back%2"_s.arg(failedName,
                    movedBack.isEmpty() ? u"."_s : movedBack)});
    }
}

std::optional<MoveError> BatchRunner::moveStep(const NativePath &from, const NativePath &to)
{
    auto error = m_mover.move(from, to);
    if (!error && m_mover.lastMoveWasUnprotected())
        m_isUnitUnprotected = true;
    return error;
}

QString BatchRunner::moveBack(const std::vector<DoneMove> &done)
{
    for (auto move = done.crbegin(); move != done.crend(); ++move) {
        if (const auto error = m_mover.move(move->to, move->from)) {
            return u"; moving it back failed too (%1), so “%2” is now named “%3”."_s.arg(error->message,
                move->from.fileNameText(),
                move->to.fileNameText());
        }
    }
    return {};
}

void BatchRunner::settle(qsizetype request, MoveOutcome outcome)
{
    m_outcomes[std::size_t(request)] = std::move(outcome);
    if (m_outcomeHandler)
        m_outcomeHandler(request, m_outcomes[std::size_t(request)]);
}

} // namespace quillfern
