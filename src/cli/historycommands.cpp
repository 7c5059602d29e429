#include "cli/historycommands.h"

#include "cli/resultlinewriter.h"
#include "cli/stopsignals.h"
#include "engine/batchjournal.h"
#include "engine/batchrecovery.h"
#include "engine/batchrunner.h"
#include "engine/systemfilemover.h"
#include "model/counting.h"

#include <QHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cstdio>

#ifdef Q_OS_WIN
#include <io.h>
#else
#include <unistd.h>
#endif

namespace quillfern {

using namespace Qt::StringLiterals;

namespace {

constexpr const char *kindWords[] = {"rename", "undo", "finish", "revert"};

bool isStandardInputATerminal()
{
#ifdef Q_OS_WIN
    return _isatty(_fileno(stdin)) != 0;
#else
    return isatty(STDIN_FILENO) != 0;
#endif
}

QString stateWord(const BatchRecord &record, const QString &path)
{
    switch (record.state) {
    case BatchRecord::State::Unfinished:
        return BatchJournal::isInUse(path) ? u"running"_s : u"interrupted"_s;
    case BatchRecord::State::Complete:
        return u"complete"_s;
    case BatchRecord::State::Stopped:
        return u"stopped"_s;
    case BatchRecord::State::Finished:
        return u"finished"_s;
    case BatchRecord::State::Reverted:
        return u"reverted"_s;
    }
    return {};
}

qsizetype countOf(const BatchRecord &record, MoveOutcome::State state)
{
    return std::count_if(record.outcomes.cbegin(), record.outcomes.cend(), [&](const MoveOutcome &outcome) {
        return outcome.state == state;
    });
}

QString localTime(const QDateTime &time)
{
    return time.toLocalTime().toString(u"yyyy-MM-dd HH:mm:ss"_s);
}

} // namespace

HistoryCommands::HistoryCommands(const CliOptions &options, QTextStream &out, QTextStream &err)
    : m_options(options)
    , m_out(out)
    , m_err(err)
    , m_history(BatchHistory::standardFolder())
{
}

int HistoryCommands::fail(const QString &message)
{
    m_err << "quillfern-cli: " << message << '\n';
    return 2;
}

QList<HistoryCommands::Entry> HistoryCommands::readHistory() const
{
    QList<Entry> entries;
    const QStringList paths = m_history.journalPaths();
    for (auto path = paths.crbegin(); path != paths.crend(); ++path) {
        QString error;
        if (auto record = BatchJournal::read(*path, error))
            entries.append({*path, std::move(*record)});
        else
            m_err << "quillfern-cli: cannot read the journal " << *path << ": " << error << '\n';
    }
    return entries;
}

QHash<QString, QString> HistoryCommands::undoneByOf(const QList<Entry> &entries)
{
    QHash<QString, QString> undoneBy;
    for (const Entry &entry : entries) {
        if (entry.record.kind == BatchRecord::Kind::Undo)
            undoneBy.insert(entry.record.target, entry.record.id);
    }
    return undoneBy;
}

QString HistoryCommands::folderText(const BatchRecord &record)
{
    if (record.folders.size() == 1)
        return record.folders.front().path.toText();
    return counted(record.folders.size(), u"folder"_s);
}

int HistoryCommands::runHistory()
{
    const QList<Entry> entries = readHistory();
    const QHash<QString, QString> undoneBy = undoneByOf(entries);
    if (m_options.json) {
        QJsonArray array;
        for (const auto &[path, record] : entries) {
            array.append(QJsonObject{{u"id"_s, record.id},
                {u"time"_s, record.createdAt.toString(Qt::ISODateWithMs)},
                {u"kind"_s, QString::fromLatin1(kindWords[int(record.kind)])},
                {u"target"_s, record.target.isEmpty() ? QJsonValue() : QJsonValue(record.target)},
                {u"folder"_s, folderText(record)},
                {u"files"_s, record.moves.size()},
                {u"moved"_s, countOf(record, MoveOutcome::State::Moved)},
                {u"failed"_s, countOf(record, MoveOutcome::State::Failed)},
                {u"state"_s, stateWord(record, path)},
                {u"undoneBy"_s, undoneBy.contains(record.id) ? QJsonValue(undoneBy.value(record.id)) : QJsonValue()}});
        }
        m_out << QString::fromUtf8(QJsonDocument(array).toJson(QJsonDocument::Indented));
        return 0;
    }
    if (entries.isEmpty()) {
        m_out << "No batches yet.\n";
        return 0;
    }
    m_out << "BATCH         WHEN                 KIND     FILES   MOVED  FAILED  STATE        FOLDER\n";
    for (const auto &[path, record] : entries) {
        QString state = stateWord(record, path);
        if (undoneBy.contains(record.id))
            state = u"undone"_s;
        m_out << record.id.leftJustified(13) << ' ' << localTime(record.createdAt).leftJustified(20) << ' '
              << QString::fromLatin1(kindWords[int(record.kind)]).leftJustified(8) << ' '
              << QString::number(record.moves.size()).rightJustified(5) << ' '
              << QString::number(countOf(record, MoveOutcome::State::Moved)).rightJustified(7) << ' '
              << QString::number(countOf(record, MoveOutcome::State::Failed)).rightJustified(7) << "  "
              << state.leftJustified(12) << ' ' << folderText(record) << '\n';
    }
    return 0;
}

int HistoryCommands::runUndo()
{
    if (m_options.words.size() > 1)
        return fail(u"usage: quillfern-cli undo [BATCH] [--yes]"_s);
    const QList<Entry> entries = readHistory();
    const QHash<QString, QString> undoneBy = undoneByOf(entries);
    const Entry *chosen = nullptr;
    for (const Entry &entry : entries) {
        const bool isNamed = !m_options.words.isEmpty() && entry.record.id == m_options.words.front();
        const bool isLastRename = m_options.words.isEmpty() && entry.record.kind == BatchRecord::Kind::Rename
            && entry.record.state != BatchRecord::State::Unfinished && !undoneBy.contains(entry.record.id);
        if (isNamed || isLastRename) {
            chosen = &entry;
            break;
        }
    }
    if (!chosen) {
        return fail(m_options.words.isEmpty()
                ? u"there is no batch to undo"_s
                : u"there is no batch '%1'; 'quillfern-cli history' lists them"_s.arg(m_options.words.front()));
    }
    const BatchRecord &record = chosen->record;
    if (record.state == BatchRecord::State::Unfinished)
        return fail(u"batch %1 did not end; 'quillfern-cli recover' finishes or reverts it"_s.arg(record.id));
    if (undoneBy.contains(record.id))
        return fail(u"batch %1 was undone already, by batch %2"_s.arg(record.id, undoneBy.value(record.id)));

    SystemFileMover disk;
    const BatchRecovery::Plan plan = BatchRecovery(record, disk).undo();
    qsizetype skipped = 0;
    for (qsizetype move = 0; move < record.moves.size(); ++move) {
        if (plan.skipped[std::size_t(move)].isEmpty())
            continue;
        ++skipped;
        m_err << "skipped: " << record.destinationOf(record.moves[move]).toText() << ": "
              << plan.skipped[std::size_t(move)] << '\n';
    }
    if (plan.requests.isEmpty()) {
        m_out << "Nothing to undo in batch " << record.id << ".\n";
        return skipped > 0 ? 1 : 0;
    }
    if (!m_options.assumeYes) {
        if (!isStandardInputATerminal())
            return fail(u"refusing to undo without confirmation: pass --yes when not on a terminal"_s);
        if (!confirm(u"Undo batch %1 of %2: give %3 their old names back? [y/N] "_s.arg(record.id,
                localTime(record.createdAt),
                counted(plan.requests.size(), u"file"_s)))) {
            m_out << "Nothing renamed.\n";
            return 0;
        }
    }
    const int status = runMoves(plan.requests, BatchRecord::Kind::Undo, record.id);
    return status == 0 && skipped > 0 ? 1 : status;
}

int HistoryCommands::runRecover()
{
    const QStringList interrupted = m_history.interruptedJournals();
    if (interrupted.isEmpty()) {
        m_out << "No interrupted batch.\n";
        return 0;
    }
    int status = 0;
    for (const QString &path : interrupted) {
        QString error;
        const auto record = BatchJournal::read(path, error);
        if (!record)
            return fail(u"cannot read the journal %1: %2"_s.arg(path, error));
        m_out << "Batch " << record->id << " of " << localTime(record->createdAt)
              << " was interrupted: " << counted(record->moves.size(), u"file"_s) << " in " << folderText(*record)
              << ".\n"
              << Qt::flush;
        bool toFinish = m_options.finish;
        if (!m_options.finish && !m_options.revert) {
            if (!isStandardInputATerminal())
                return fail(u"pass --finish or --revert to recover a batch when not on a terminal"_s);
            m_err << "Finish the batch (f) or revert it (r)? [r] " << Qt::flush;
            const QString answer = QTextStream(stdin).readLine().trimmed().toLower();
            if (answer != u"f"_s && answer != u"r"_s && !answer.isEmpty())
                return fail(u"nothing recovered: answer f or r"_s);
            toFinish = answer == u"f"_s;
        }
        SystemFileMover disk;
        BatchRecovery recovery(*record, disk);
        const BatchRecovery::Plan plan = toFinish ? recovery.finish() : recovery.revert();
        for (qsizetype move = 0; move < record->moves.size(); ++move) {
            if (!plan.skipped[std::size_t(move)].isEmpty()) {
                m_err << "not found: " << record->sourceOf(record->moves[move]).toText() << ": "
                      << plan.skipped[std::size_t(move)] << '\n';
                status = 1;
            }
        }
        m_out << counted(plan.inPlace, u"file"_s) << " already in place.\n";
        const int batchStatus =
            runMoves(plan.requests, toFinish ? BatchRecord::Kind::Finish : BatchRecord::Kind::Revert, record->id);
        if (batchStatus > 1)
            return batchStatus;
        status = std::max(status, batchStatus);
        BatchJournal::markResolved(path, toFinish ? BatchRecord::State::Finished : BatchRecord::State::Reverted);
    }
    return status;
}

void HistoryCommands::warnAboutInterrupted()
{
    for (const QString &path : m_history.interruptedJournals()) {
        QString error;
        const auto record = BatchJournal::read(path, error);
        if (!record)
            continue;
        m_err << "quillfern-cli: batch " << record->id << " of " << localTime(record->createdAt) << " was interrupted ("
              << counted(record->moves.size(), u"file"_s) << " in " << folderText(*record)
              << "); run 'quillfern-cli recover' to finish or revert it.\n";
    }
    m_err.flush();
}

int HistoryCommands::exitStatusOf(qsizetype failed)
{
    if (const int signal = StopSignals::signalNumber())
        return 128 + signal;
    return failed > 0 ? 1 : 0;
}

int HistoryCommands::runMoves(const QList<MoveRequest> &requests, BatchRecord::Kind kind, const QString &target)
{
    SystemFileMover mover;
    BatchRunner runner(mover);
    runner.setHistoryFolder(m_history.folder());
    runner.setKind(kind, target);
    const StopSignals stopSignals;
    runner.setStopFlag(StopSignals::flag());
    m_out.flush();
    ResultLineWriter lines(stdout);
    qsizetype moved = 0;
    qsizetype failed = 0;
    runner.setOutcomeHandler([&](qsizetype request, const MoveOutcome &outcome) {
        const bool isMoved = outcome.state == MoveOutcome::State::Moved;
        (isMoved ? moved : failed) += 1;
        lines.write(RenameResult{requests[request].source,
            requests[request].destination(),
            isMoved,
            isMoved ? std::nullopt : std::optional(outcome.error),
            outcome.wasUnprotected});
    });
    const auto outcomes = runner.run(requests);
    lines.flush();
    if (!outcomes)
        return fail(runner.error());
    m_out << moved << " renamed, " << failed << " failed\n" << Qt::flush;
    if (runner.wasStopped())
        m_err << "quillfern-cli: stopped; the other files were not attempted.\n" << Qt::flush;
    return exitStatusOf(failed);
}

bool HistoryCommands::confirm(const QString &question)
{
    m_err << question << Qt::flush;
    const QString answer = QTextStream(stdin).readLine().trimmed().toLower();
    return answer == u"y"_s || answer == u"yes"_s;
}

} // namespace quillfern
