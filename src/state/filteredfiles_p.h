#pragma once

#include "model/fileitem.h"
#include "state/appviewmodel.h"

#include <QList>

namespace quillfern {

/// The rules that make filteredFiles out of the working list.
struct FileListFilter
{
    QString filterText;
    bool showOnlyFiles = false;
    bool showOnlyFolders = false;
    AppViewModel::SortOrder sortOrder = AppViewModel::SortOrder::Name;

    /// The positions in `files` of the items that pass, stably sorted. File dates and sizes are read once per
    /// item per call.
    [[nodiscard]] QList<qsizetype> positions(const QList<FileItem> &files) const;

    /// Whether the order depends on the file system (dates, sizes) and must be worked out afresh each time.
    [[nodiscard]] bool readsFileSystem() const;
};

} // namespace quillfern
