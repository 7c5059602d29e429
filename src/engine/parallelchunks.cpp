#include "engine/parallelchunks.h"

#include <QList>
#include <QThread>
#include <QtConcurrent/QtConcurrentMap>

#include <algorithm>
#include <utility>

namespace quillfern::parallelchunks {

namespace {

/// Below this many items a second thread costs more than it saves.
constexpr qsizetype minimumItemsPerThread = 2000;
/// Several chunks per thread keep every core busy when one thread is held up.
constexpr qsizetype chunksPerThread = 4;

} // namespace

void run(qsizetype count, const std::function<void(qsizetype, qsizetype)> &work)
{
    const qsizetype threads =
        std::clamp<qsizetype>(count / minimumItemsPerThread, 1, std::max(1, QThread::idealThreadCount()));
    if (threads == 1) {
        work(0, count);
        return;
    }
    const qsizetype chunks = threads * chunksPerThread;
    QList<std::pair<qsizetype, qsizetype>> ranges;
    for (qsizetype chunk = 0; chunk < chunks; ++chunk)
        ranges.append({count * chunk / chunks, count * (chunk + 1) / chunks});
    QtConcurrent::blockingMap(ranges,
        [&](const std::pair<qsizetype, qsizetype> &range) { work(range.first, range.second); });
}

} // namespace quillfern::parallelchunks
