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

    /// Old and new names side by side with conflicts marked and each rename that would fail marked with its
    /// reason (`failures`: one text per entry, empty when it would not fail), then a summary line. With
    /// `useColour`, changed names are highlighted and conflicts and failures shown in red with ANSI escapes.
    [[nodiscard]] static QString
    table(const QList<PreviewEntry> &previews, const QList<QString> &failures, bool useColour);
    /// A JSON array of {"original", "preview", "hasConflict", "path", "failureReason"}; `files` are the previewed
    /// files in order; "failureReason" is null when the rename would not fail.
    [[nodiscard]] static QString
    json(const QList<PreviewEntry> &previews, const QList<FileItem> &files, const QList<QString> &failures);
    /// "3 files, 2 changes, 1 conflict", followed by ", 1 would fail" when any would.
    [[nodiscard]] static QString summary(const QList<PreviewEntry> &previews, const QList<QString> &failures);
    /// Appends the line of one result in UTF-8: "renamed: old -> new" or "failed: old -> new: why".
    static void appendResultLine(QByteArray &lines, const RenameResult &result);
    /// A JSON array of {"originalPath", "newPath", "success", "error"}.
    [[nodiscard]] static QString resultJson(const QList<RenameResult> &results);
    /// "2 renamed, 1 failed".
    [[nodiscard]] static QString resultSummary(const QList<RenameResult> &results);
};

} // namespace quillfern
