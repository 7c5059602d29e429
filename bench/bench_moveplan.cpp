// Times planning the moves of a batch and prints the medians. Run on a Release build:
//   bench_moveplan [runs]   (default 15 runs)
// Workloads: 100,000 moves in 10,000 cycles of 10 (every name taken by another file of the batch), and 100,000
// moves to free names (the common case).
#include "engine/moveplan.h"

#include <QElapsedTimer>

#include <algorithm>
#include <cstdio>
#include <vector>

using namespace quillfern;
using namespace Qt::StringLiterals;

namespace {

constexpr int moveCount = 100'000;
constexpr int cycleLength = 10;

QList<MoveRequest> cycles()
{
    QList<MoveRequest> requests;
    requests.reserve(moveCount);
    for (int i = 0; i < moveCount; ++i) {
        const int next = i - i % cycleLength + (i + 1) % cycleLength;
        requests.append({NativePath::fromText(u"/data/photos/file_%1.jpg"_s.arg(i, 6, 10, QChar(u'0'))),
            NativePath::fromText(u"file_%1.jpg"_s.arg(next, 6, 10, QChar(u'0')))});
    }
    return requests;
}

QList<MoveRequest> freeNames()
{
    QList<MoveRequest> requests;
    requests.reserve(moveCount);
    for (int i = 0; i < moveCount; ++i) {
        requests.append({NativePath::fromText(u"/data/photos/file_%1.jpg"_s.arg(i, 6, 10, QChar(u'0'))),
            NativePath::fromText(u"photo_%1.jpg"_s.arg(i, 6, 10, QChar(u'0')))});
    }
    return requests;
}

double medianMilliseconds(const QList<MoveRequest> &requests, int runs, std::size_t &steps)
{
    std::vector<double> times;
    for (int run = 0; run < runs; ++run) {
        QElapsedTimer timer;
        timer.start();
        const MovePlan plan = MovePlan::make(requests);
        times.push_back(double(timer.nsecsElapsed()) / 1e6);
        steps = plan.steps().size();
    }
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

} // namespace

int main(int argc, char **argv)
{
    const int runs = argc > 1 ? std::max(1, std::atoi(argv[1])) : 15;
    std::size_t steps = 0;
    const double cycleTime = medianMilliseconds(cycles(), runs, steps);
    std::printf("plan 100,000 moves in 10,000 cycles of 10   %8.1f ms  (%zu steps)\n", cycleTime, steps);
    const double freeTime = medianMilliseconds(freeNames(), runs, steps);
    std::printf("plan 100,000 moves to free names            %8.1f ms  (%zu steps)\n", freeTime, steps);
    return 0;
}
