#include "engine/renameengine.h"

#include "engine/moveplanner_p.h"
#include "engine/parallelchunks.h"
#include "engine/preconditions_p.h"
#include "engine/rulepipeline_p.h"
#include "engine/systemfilemover.h"
#include "model/movedlocations.h"
#include "model/nativepath.h"

#include <QScopeGuard>
#include <QUuid>

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

RenameResult failure(const NativePath &from, const NativePath &to, const QString &message)
{
    return RenameResult{from, to, false, message};
}

/// A name in the folder of `path` that nothing uses, for the middle step of a case-only rename.
NativePath unusedTemporaryPath(const NativePath &path, FileMover &mover)
{
    NativePath candidate;
    do {
        const QString name = u".quillfern-rename-"_s + QUuid::createUuid().toString(QUuid::WithoutBraces);
        candidate = path.withFileName(NativePath::fromText(name));
    } while (mover.exists(candidate));
    return candidate;
}

/// Renames an item whose new name differs only in letter case on a file system that ignores case: the
/// destination "exists" as the item itself, so it goes through a temporary name, each step checked.
RenameResult renameThroughTemporary(const NativePath &from, const NativePath &to, FileMover &mover)
{
    const NativePath temporary = unusedTemporaryPath(from, mover);
    if (const auto error = mover.move(from, temporary))
        return failure(from, to, error->message);
    const auto error = mover.move(temporary, to);
    if (!error)
        return RenameResult{from, to, true, std::nullopt};
    if (const auto restoreError = mover.move(temporary, from)) {
        return failure(from,
            to,
            u"%1; moving it back failed too (%2), so it is now named “%3”."_s.arg(error->message,
                restoreError->message,
                temporary.fileNameText()));
    }
    return failure(from, to, error->message);
}

RenameResult renameOne(const NativePath &from, NativePath to, FileMover &mover)
{
    const auto error = mover.move(from, to);
    if (!error)
        return RenameResult{from, std::move(to), true, std::nullopt};
    if (error->kind == MoveError::Kind::DestinationExists && mover.isSameItem(from, to))
        return renameThroughTemporary(from, to, mover);
    return failure(from, to, error->message);
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
    return rename(files, rules, mover);
}

QList<RenameResult> RenameEngine::rename(const QList<FileItem> &files, const QList<RenameRule> &rules, FileMover &mover)
{
    const auto finishBatch = qScopeGuard([&] { mover.finishBatch(); });
    MovePlanner planner(rules, files);
    QList<RenameResult> results;
    results.reserve(files.size());
    // A folder listed before its contents may be renamed first; its contents are then followed to where
    // they are now.
    MovedLocations moved;
    for (qsizetype i = 0; i < files.size(); ++i) {
        const FileItem &file = files[i];
        const MovePlanner::Plan &plan = planner.at(i);
        if (!plan.isWanted)
            continue;
        const std::optional<NativePath> followed = moved.newLocation(file.url);
        const NativePath &source = followed ? *followed : file.url;
        NativePath destination = source.withFileName(plan.newName);
        RenameResult result;
        if (!plan.invalidReason.isEmpty())
            result = failure(source, destination, plan.invalidReason);
        else
            result = renameOne(source, std::move(destination), mover);
        if (result.success && file.isDirectory)
            moved.record(file.url, result.newURL);
        // The result names the item as it was listed, so the caller can find it.
        if (followed)
            result.originalURL = file.url;
        results.append(std::move(result));
    }
    return results;
}

} // namespace quillfern
