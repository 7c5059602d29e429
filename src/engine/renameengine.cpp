#include "engine/renameengine.h"

#include "engine/newnamecheck_p.h"
#include "engine/preconditions_p.h"
#include "engine/rulepipeline_p.h"
#include "engine/systemfilemover.h"
#include "model/nativepath.h"

#include <QSet>
#include <QThread>
#include <QUuid>
#include <QtConcurrent/QtConcurrentMap>

#include <algorithm>
#include <vector>

using namespace Qt::StringLiterals;

namespace quillfern {

namespace fs = std::filesystem;

namespace {

/// Below this many files a second thread costs more than it saves.
constexpr qsizetype minimumFilesPerThread = 2000;

/// The new name and its clash key of one file.
struct NamedFile
{
    QString newName;
    QString conflictKey;
};

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
        named[size_t(i)].newName = pipeline.newName(files[i], i);
        named[size_t(i)].conflictKey = pipeline.conflictKey(named[size_t(i)].newName);
    }
}

std::vector<NamedFile> nameAll(const QList<RenameRule> &rules, const QList<FileItem> &files)
{
    std::vector<NamedFile> named(size_t(files.size()));
    const qsizetype threads = std::clamp<qsizetype>(files.size() / minimumFilesPerThread,
                                                    1,
                                                    std::max(1, QThread::idealThreadCount()));
    if (threads == 1) {
        nameRange(rules, files, named, 0, files.size());
        return named;
    }
    QList<std::pair<qsizetype, qsizetype>> ranges;
    for (qsizetype t = 0; t < threads; ++t)
        ranges.append({files.size() * t / threads, files.size() * (t + 1) / threads});
    QtConcurrent::blockingMap(ranges, [&](const std::pair<qsizetype, qsizetype> &range) {
        nameRange(rules, files, named, range.first, range.second);
    });
    return named;
}

RenameResult failure(const fs::path &from, const fs::path &to, const QString &message)
{
    return RenameResult{from, to, false, message};
}

/// A name in the folder of `path` that nothing uses, for the middle step of a case-only rename.
fs::path unusedTemporaryPath(const fs::path &path, FileMover &mover)
{
    fs::path candidate;
    do {
        const QString name = u".quillfern-rename-"_s + QUuid::createUuid().toString(QUuid::WithoutBraces);
        candidate = path.parent_path() / nativepath::fromText(name);
    } while (mover.exists(candidate));
    return candidate;
}

/// Renames an item whose new name differs only in letter case on a file system that ignores case: the
/// destination "exists" as the item itself, so it goes through a temporary name, each step checked.
RenameResult renameThroughTemporary(const fs::path &from, const fs::path &to, FileMover &mover)
{
    const fs::path temporary = unusedTemporaryPath(from, mover);
    if (const auto error = mover.move(from, temporary))
        return failure(from, to, error->message);
    const auto error = mover.move(temporary, to);
    if (!error)
        return RenameResult{from, to, true, std::nullopt};
    if (const auto restoreError = mover.move(temporary, from)) {
        return failure(from,
                       to,
                       u"%1 The item could not be moved back and is now named “%2”: %3"_s.arg(
                           error->message, nativepath::toText(temporary.filename()), restoreError->message));
    }
    return failure(from, to, error->message);
}

RenameResult renameOne(const fs::path &from, const fs::path &to, FileMover &mover)
{
    const auto error = mover.move(from, to);
    if (!error)
        return RenameResult{from, to, true, std::nullopt};
    if (error->kind == MoveError::Kind::DestinationExists && mover.isSameItem(from, to))
        return renameThroughTemporary(from, to, mover);
    return failure(from, to, error->message);
}

} // namespace

QString RenameEngine::applyRules(const QList<RenameRule> &rules,
                                 const QString &name,
                                 qint64 index,
                                 const QString &extension)
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
    QSet<QString> seen;
    seen.reserve(files.size());
    for (qsizetype i = 0; i < files.size(); ++i) {
        const NamedFile &file = named[size_t(i)];
        const qsizetype sizeBefore = seen.size();
        seen.insert(file.conflictKey);
        entries.append(PreviewEntry{files[i].originalName(), file.newName, seen.size() == sizeBefore});
    }
    return entries;
}

QList<RenameResult> RenameEngine::rename(const QList<FileItem> &files, const QList<RenameRule> &rules)
{
    SystemFileMover mover;
    return rename(files, rules, mover);
}

QList<RenameResult> RenameEngine::rename(const QList<FileItem> &files,
                                         const QList<RenameRule> &rules,
                                         FileMover &mover)
{
    RulePipeline pipeline(rules);
    QList<RenameResult> results;
    for (qsizetype i = 0; i < files.size(); ++i) {
        const FileItem &file = files[i];
        // An unselected file gets no result but keeps its position for the numbering of the files after it.
        if (!file.isSelected)
            continue;
        const QString newName = pipeline.newName(file, i);
        // Compared as text, so a name that is not valid UTF-8 and that no rule changed is left alone.
        if (newName == file.originalName())
            continue;
        const fs::path destination = file.parentURL() / nativepath::fromText(newName);
        if (const QString reason = newnamecheck::whyInvalid(newName); !reason.isEmpty())
            results.append(failure(file.url, destination, reason));
        else
            results.append(renameOne(file.url, destination, mover));
    }
    return results;
}

} // namespace quillfern
