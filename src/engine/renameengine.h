#pragma once

#include "engine/previewentry.h"
#include "model/fileitem.h"
#include "model/renameresult.h"
#include "model/renamerule.h"

#include <QList>

namespace quillfern {

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
    [[nodiscard]] static QString applyRules(const QList<RenameRule> &rules,
                                            const QString &name,
                                            qint64 index,
                                            const QString &extension);

    /// The message the fatal precondition check would print when the rules are applied to files 0 to
    /// fileCount - 1 in order (a negative remove count or position, a numbering overflow); empty when none.
    /// Lets a caller refuse bad input before calling the engine.
    [[nodiscard]] static QString preconditionViolation(const QList<RenameRule> &rules, qint64 fileCount);

    /// One entry per file, in order, with later files whose new name repeats an earlier one (ignoring case)
    /// marked as conflicts. Never touches the disk.
    [[nodiscard]] static QList<PreviewEntry> preview(const QList<RenameRule> &rules, const QList<FileItem> &files);

    /// Renames the selected files on disk, one after the other, and returns one result per attempted move.
    /// Unselected files and unchanged names give no result; a failed move never stops the batch.
    [[nodiscard]] static QList<RenameResult> rename(const QList<FileItem> &files, const QList<RenameRule> &rules);
    /// The same with the given move primitive.
    [[nodiscard]] static QList<RenameResult> rename(const QList<FileItem> &files,
                                                    const QList<RenameRule> &rules,
                                                    FileMover &mover);
};

} // namespace quillfern
