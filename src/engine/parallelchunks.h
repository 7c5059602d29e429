#pragma once

#include <QtGlobal>

#include <functional>

namespace quillfern::parallelchunks {

/// Calls `work(begin, end)` for consecutive ranges that together cover [0, count), on every core when the
/// count is large enough to pay for the threads, else once on the calling thread; returns when all are done.
/// Each call must touch only its own range of any shared output.
void run(qsizetype count, const std::function<void(qsizetype begin, qsizetype end)> &work);

} // namespace quillfern::parallelchunks
