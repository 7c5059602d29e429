#pragma once

#include "engine/previewentry.h"
#include "model/fileitem.h"
#include "model/renameresult.h"

#include <QIODevice>
#include <QList>
#include <QString>
#include <QTextStream>

namespace quillfern {

/// Formats previews and rename results for the terminal and for scripts.
class PreviewPrinter final
{
public:
    PreviewPrinter() = delete;

    /// Old and new names side by side with conflicts marked, then a summary line. With `useColour`, changed
    /// names are highlighted and conflicts shown in red with ANSI escapes.
    [[nodiscard]] static QString table(const QList<PreviewEntry> &previews, bool useColour);
    /// A JSON array of {"original", "preview", "hasConflict", "path"}; `files` are the previewed files in order.
    [[nodiscard]] static QString json(const QList<PreviewEntry> &previews, const QList<FileItem> &files);
    /// "3 files, 2 changes, 1 conflict".
    [[nodiscard]] static QString summary(const QList<PreviewEntry> &previews);
    /// Writes one line per result in UTF-8: "renamed: old -> new" or "failed: old -> new: why". Written in pieces,
    /// as a batch of 100,000 results would otherwise be held as one text of megabytes first.
    static void writeResultLines(QIODevice &out, const QList<RenameResult> &results);
    /// A JSON array of {"originalPath", "newPath", "success", "error"}.
    [[nodiscard]] static QString resultJson(const QList<RenameResult> &results);
    /// "2 renamed, 1 failed".
    [[nodiscard]] static QString resultSummary(const QList<RenameResult> &results);
};

} // namespace quillfern
