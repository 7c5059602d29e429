#pragma once

#include "model/fileitem.h"
#include "model/nativepath.h"

#include <QFuture>
#include <QList>

#include <utility>
#include <vector>

namespace quillfern {

/// Makes the file items of locations as a listing finds them. Each full batch is made on another core while
/// the listing goes on: reading a folder is mostly the kernel's work, and making an item (its id, its name as
/// text) costs about half as much again.
class ItemCollector final
{
public:
    ItemCollector() = default;
    /// Waits for the batches still being made.
    ~ItemCollector();
    ItemCollector(const ItemCollector &) = delete;
    ItemCollector &operator=(const ItemCollector &) = delete;

    void add(NativePath location, bool isDirectory);
    /// Every item, in the order its location was added; the collector is empty afterwards.
    [[nodiscard]] QList<FileItem> take();

private:
    using Batch = std::vector<std::pair<NativePath, bool>>;

    [[nodiscard]] static QList<FileItem> itemsOf(Batch batch);

    Batch m_batch;
    QList<QFuture<QList<FileItem>>> m_madeBatches;
};

} // namespace quillfern
