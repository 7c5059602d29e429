#include "engine/renameengine.h"

#include "engine/batchhistory.h"
#include "engine/batchrunner.h"
#include "engine/newnamecheck_p.h"
#include "engine/parallelchunks.h"
#include "engine/preconditions_p.h"
#include "engine/rulepipeline_p.h"
#include "engine/systemfilemover.h"
#include "model/movedlocations.h"
#include "model/nativepath.h"

#include <algorithm>
#include <vector>

using namespace Qt::StringLiterals;

namespace quillfern {

namespace {

/// The current name and new name of one file as they are shown, and the clash key of its new name.
struct NamedFile
{
    QString original;
    QString newName;
    /// From the escaped new name, so that two names that differ only in bytes shown alike as U+FFFD do not clash.
    QString conflictKey;
    /// Hashed on the worker thread, so the serial clash pass only compares.
    size_t conflictHash = 0;
};

/// An open-addressing set of clash keys, so that the serial clash pass allocates nothing per file.
using KeySlots = std::vector<const NamedFile *>;

KeySlots emptyKeySlots(size_t count)
{
    size_t capacity = 16;
    while (capacity < 2 * count)
        capacity *= 2;
    return KeySlots(capacity, nullptr);
}

/// Whether an earlier file has the file's clash key; adds the key when not.
bool isRepeated(KeySlots &slots, const NamedFile &file)
{
    const size_t mask = slots.size() - 1;
    for (size_t slot = file.conflictHash & mask;; slot = (slot + 1) & mask) {
        if (!slots[slot]) {
            slots[slot] = &file;
            return false;
        }
        if (slots[slot]->conflictHash == file.conflictHash && slots[slot]->conflictKey == file.conflictKey)
            return true;
    }
}

/// Names the files [begin, end) with a pipeline of its own, since ICU matchers and iterators are not
/// thread-safe.
void nameRange(const QList<RenameRule> &rules,
    const QList<FileItem> &files,
    std::vector<NamedFile> &named,
    qsizetype begin,
    qsizetype end)
{
    RulePipeline pipeline(rules);
    for (qsizetype i = begin; i < end; ++i) {
        NamedFile &file = named[size_t(i)];
        // The rules read the escaped name, so that the bytes of a name that is not UTF-8 survive them.
        const QString original = files[i].escapedName();
        const QString newName = pipeline.newName(original, i);
        file.original = NativePath::displayText(original);
        file.newName = NativePath::displayText(newName);
        file.conflictKey = pipeline.conflictKey(newName);
        file.conflictHash = qHash(file.conflictKey);
    }
}

std::vector<NamedFile> nameAll(const QList<RenameRule> &rules, const QList<FileItem> &files)
{
    std::vector<NamedFile> named(size_t(files.size()));
    parallelchunks::run(files.size(),
        [&](qsizetype begin, qsizetype end) { nameRange(rules, files, named, begin, end); });
    return named;
}

/// What a batch does with one file: nothing, or a move to its new name (refused when the name is invalid).
struct PlannedName
{
    bool isWanted = false;
    NativePath newName;
    QString invalidReason;
};

// An unselected file gets no move but keeps its position for the numbering of the files after it; a name no
// rule changed gets none either. The rules read the name with its undecodable bytes escaped, so the bytes no
// rule touched are written back as they were.
std::vector<PlannedName> planNames(const QList<RenameRule> &rules, const QList<FileItem> &files)
{
    std::vector<PlannedName> names(std::size_t(files.size()));
    parallelchunks::run(files.size(), [&](qsizetype begin, qsizetype end) {
        RulePipeline pipeline(rules);
        for (qsizetype i = begin; i < end; ++i) {
            if (!files[i].isSelected)
                continue;
            const QString original = files[i].escapedName();
            const QString newName = pipeline.newName(original, i);
            PlannedName &name = names[std::size_t(i)];
            name.isWanted = newName != original;
            if (!name.isWanted)
                continue;
            name.newName = NativePath::fromEscapedText(newName);
            name.invalidReason = newnamecheck::whyInvalid(newName);
        }
    });
    return names;
}

/// The moves of a batch: one request per wanted file with a valid new name, and the file of each request.
struct BatchRequests
{
    QList<MoveRequest> requests;
    std::vector<qsizetype> fileOfRequest;
};

BatchRequests requestsFor(const QList<FileItem> &files, const std::vector<PlannedName> &names)
{
    BatchRequests batch;
    for (qsizetype i = 0; i < files.size(); ++i) {
        const PlannedName &name = names[std::size_t(i)];
        if (!name.isWanted || !name.invalidReason.isEmpty())
            continue;
        batch.requests.append({files[i].url, name.newName});
        batch.fileOfRequest.push_back(i);
    }
    return batch;
}

RenameResult resultOf(const FileItem &file, NativePath destination, const MoveOutcome &outcome)
{
    if (outcome.state == MoveOutcome::State::Moved)
        return RenameResult{file.url, std::move(destination), true, std::nullopt, outcome.wasUnprotected};
    return RenameResult{file.url, std::move(destination), false, outcome.error};
}

} // namespace

QString
RenameEngine::applyRules(const QList<RenameRule> &rules, const QString &name, qint64 index, const QString &extension)
{
    Q_UNUSED(extension);
    return RulePipeline(rules).applyRules(name, index);
}

QString RenameEngine::preconditionViolation(const QList<RenameRule> &rules, qint64 fileCount)
{
    return preconditions::firstViolation(rules, fileCount);
}

QList<PreviewEntry> RenameEngine::preview(const QList<RenameRule> &rules, const QList<FileItem> &files)
{
    const std::vector<NamedFile> named = nameAll(rules, files);
    QList<PreviewEntry> entries;
    entries.reserve(files.size());
    KeySlots seen = emptyKeySlots(named.size());
    for (const NamedFile &file : named)
        entries.append(PreviewEntry{file.original, file.newName, isRepeated(seen, file)});
    return entries;
}

QList<RenameResult> RenameEngine::rename(const QList<FileItem> &files, const QList<RenameRule> &rules)
{
    SystemFileMover mover;
    BatchRunner runner(mover);
    runner.setHistoryFolder(BatchHistory::standardFolder());
    return rename(files, rules, runner);
}

QList<RenameResult> RenameEngine::rename(const QList<FileItem> &files, const QList<RenameRule> &rules, FileMover &mover)
{
    BatchRunner runner(mover);
    return rename(files, rules, runner);
}

QList<RenameResult> RenameEngine::rename(const QList<FileItem> &files,
    const QList<RenameRule> &rules,
    BatchRunner &runner,
    const std::function<void(const RenameResult &)> &onResult)
{
    const std::vector<PlannedName> names = planNames(rules, files);
    const BatchRequests batch = requestsFor(files, names);
    if (onResult) {
        // Only attempted moves are reported; a stopped batch reports nothing for the rest.
        runner.setOutcomeHandler([&](qsizetype request, const MoveOutcome &outcome) {
            const MoveRequest &move = batch.requests[request];
            onResult(resultOf(files[batch.fileOfRequest[std::size_t(request)]], move.destination(), outcome));
        });
    }
    const auto outcomes = runner.run(batch.requests);
    // Items inside a renamed folder moved before it, by the paths they had then; the results name where
    // everything is now.
    MovedLocations moved;
    if (outcomes) {
        for (std::size_t request = 0; request < outcomes->size(); ++request) {
            if ((*outcomes)[request].state == MoveOutcome::State::Moved
                && files[batch.fileOfRequest[request]].isDirectory)
                moved.record(batch.requests[qsizetype(request)].source,
                    batch.requests[qsizetype(request)].destination());
        }
    }
    QList<RenameResult> results;
    results.reserve(batch.requests.size());
    qsizetype request = 0;
    for (qsizetype i = 0; i < files.size(); ++i) {
        const PlannedName &name = names[std::size_t(i)];
        if (!name.isWanted)
            continue;
        const FileItem &file = files[i];
        NativePath destination = moved.currentLocation(file.url.withFileName(name.newName));
        if (!name.invalidReason.isEmpty())
            results.append(RenameResult{file.url, std::move(destination), false, name.invalidReason});
        else if (!outcomes)
            results.append(RenameResult{file.url, std::move(destination), false, runner.error()});
        else if (const MoveOutcome &outcome = (*outcomes)[std::size_t(request++)];
                 outcome.state != MoveOutcome::State::NotAttempted)
            results.append(resultOf(file, std::move(destination), outcome));
    }
    return results;
}

QList<QString> RenameEngine::forecast(const QList<FileItem> &files, const QList<RenameRule> &rules, FileMover &disk)
{
    const std::vector<PlannedName> names = planNames(rules, files);
    const BatchRequests batch = requestsFor(files, names);
    const std::vector<MoveOutcome> outcomes = BatchRunner::forecast(batch.requests, disk);
    QList<QString> reasons(files.size());
    for (qsizetype i = 0; i < files.size(); ++i)
        reasons[i] = names[std::size_t(i)].invalidReason;
    for (std::size_t request = 0; request < outcomes.size(); ++request)
        reasons[batch.fileOfRequest[request]] = outcomes[request].error;
    return reasons;
}

} // namespace quillfern
