#pragma once

#include "engine/previewentry.h"
#include "model/fileitem.h"
#include "model/renameresult.h"
#include "model/renamerule.h"

#include <QList>

#include <functional>

namespace quillfern {

class BatchRunner;
class FileMover;

/// Turns names into new names by an ordered list of rules, previews a batch with its clashes, and renames a
/// batch on disk. Stateless: every operation is a static function of its arguments (and of the clock, the
/// locale and the time zone for date stamps).
class RenameEngine final
{
public:
    RenameEngine() = delete;

    /// The new base name of `name` after every enabled rule, in list order. `index` is the file's 0-based
    /// position in its batch (for numbering); `extension` is not used by any rule. A negative remove count or
    /// position, or a numbering that overflows 64 bits, is a fatal precondition: it prints why and aborts.
    [[nodiscard]] static QString
    applyRules(const QList<RenameRule> &rules, const QString &name, qint64 index, const QString &extension);

    /// The message the fatal precondition check would print when the rules are applied to files 0 to
    /// fileCount - 1 in order (a negative remove count or position, a numbering overflow); empty when none.
    /// Lets a caller refuse bad input before calling the engine.
    [[nodiscard]] static QString preconditionViolation(const QList<RenameRule> &rules, qint64 fileCount);

    /// One entry per file, in order, with later files whose new name repeats an earlier one (ignoring case)
    /// marked as conflicts. Never touches the disk.
    [[nodiscard]] static QList<PreviewEntry> preview(const QList<RenameRule> &rules, const QList<FileItem> &files);

    /// Renames the selected files on disk and returns one result per attempted move, in the order of the files.
    /// Unselected files and unchanged names give no result; a failed move never stops the batch. The moves run
    /// in an order that lets chains and cycles of new names succeed, each never replacing anything, and the
    /// batch is journaled in the standard history folder first.
    [[nodiscard]] static QList<RenameResult> rename(const QList<FileItem> &files, const QList<RenameRule> &rules);
    /// The same with the given move primitive and no journal.
    [[nodiscard]] static QList<RenameResult>
    rename(const QList<FileItem> &files, const QList<RenameRule> &rules, FileMover &mover);
    /// The same through a runner set up by the caller (journal, stop flag); `onResult` is called with each
    /// result as soon as its move is done, in the order of the moves. When the runner cannot start (its journal
    /// cannot be written) every result is a failure with the runner's error and nothing is moved.
    [[nodiscard]] static QList<RenameResult> rename(const QList<FileItem> &files,
        const QList<RenameRule> &rules,
        BatchRunner &runner,
        const std::function<void(const RenameResult &)> &onResult = {});

    /// Why the rename of each file would fail, worked out on the disk as it is now without moving anything: an
    /// invalid new name, a destination occupied by something that does not move away in the batch, or a
    /// destination an earlier file of the batch takes. One text per file, empty for a file whose rename would
    /// succeed or that would not be renamed at all.
    [[nodiscard]] static QList<QString>
    forecast(const QList<FileItem> &files, const QList<RenameRule> &rules, FileMover &disk);
};

} // namespace quillfern
