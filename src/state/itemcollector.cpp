#include "state/itemcollector_p.h"

#include <QThreadPool>
#include <QtConcurrent/QtConcurrentRun>

namespace quillfern {

namespace {

/// Large enough that handing a batch over costs nothing next to making it, small enough that the last batch,
/// made on the calling thread once the listing ends, is quick.
constexpr std::size_t batchSize = 1024;

} // namespace

ItemCollector::~ItemCollector()
{
    for (QFuture<QList<FileItem>> &batch : m_madeBatches)
        batch.waitForFinished();
}

void ItemCollector::add(NativePath location, bool isDirectory)
{
    if (m_batch.empty())
        m_batch.reserve(batchSize);
    m_batch.emplace_back(std::move(location), isDirectory);
    if (m_batch.size() < batchSize)
        return;
    m_madeBatches.append(QtConcurrent::run(QThreadPool::globalInstance(), &ItemCollector::itemsOf, std::move(m_batch)));
    m_batch = {};
}

QList<FileItem> ItemCollector::take()
{
    QList<FileItem> last = itemsOf(std::exchange(m_batch, {}));
    if (m_madeBatches.isEmpty())
        return last;
    QList<FileItem> items;
    items.reserve(m_madeBatches.size() * qsizetype(batchSize) + last.size());
    for (QFuture<QList<FileItem>> &batch : m_madeBatches)
        items.append(batch.takeResult());
    items.append(std::move(last));
    m_madeBatches.clear();
    return items;
}

QList<FileItem> ItemCollector::itemsOf(Batch batch)
{
    QList<FileItem> items;
    items.reserve(qsizetype(batch.size()));
    for (auto &[location, isDirectory] : batch)
        items.emplaceBack(std::move(location), isDirectory);
    return items;
}

} // namespace quillfern
