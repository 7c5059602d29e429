#pragma once

// Shared by the benchmarks that weigh a shortcut against the general path it stands in for: both run on the
// same machine state, round by round, so a gain is measured against drift rather than hidden by it.

#include <QElapsedTimer>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

namespace quillfern::bench {

/// One way of doing a benchmark's work, timed as a whole.
struct Contender
{
    std::string name;
    std::function<void()> work;
};

/// Each contender's median time in milliseconds over `rounds` rounds. Every round runs each contender once, in
/// turn, the order reversed every other round, so a machine whose speed drifts weighs on all of them alike.
inline std::vector<double> interleavedMedians(int rounds, const std::vector<Contender> &contenders)
{
    std::vector<std::vector<double>> times(contenders.size());
    for (int round = 0; round < rounds; ++round) {
        for (std::size_t turn = 0; turn < contenders.size(); ++turn) {
            const std::size_t index = round % 2 == 0 ? turn : contenders.size() - 1 - turn;
            QElapsedTimer timer;
            timer.start();
            contenders[index].work();
            times[index].push_back(double(timer.nsecsElapsed()) / 1e6);
        }
    }
    std::vector<double> medians;
    for (std::vector<double> &contenderTimes : times) {
        std::sort(contenderTimes.begin(), contenderTimes.end());
        const std::size_t middle = contenderTimes.size() / 2;
        medians.push_back(contenderTimes.size() % 2 == 1 ? contenderTimes[middle]
                                                         : (contenderTimes[middle - 1] + contenderTimes[middle]) / 2);
    }
    return medians;
}

/// Runs the contenders interleaved and prints one line per contender under the workload's name: its median and
/// how much less time it takes than the first contender, the general path (negative when it takes more).
/// Returns the medians.
inline std::vector<double> compare(const std::string &workload, int rounds, const std::vector<Contender> &contenders)
{
    const std::vector<double> medians = interleavedMedians(rounds, contenders);
    std::printf("%s (median of %d interleaved rounds)\n", workload.c_str(), rounds);
    for (std::size_t index = 0; index < contenders.size(); ++index) {
        std::printf("  %-44s %9.2f ms", contenders[index].name.c_str(), medians[index]);
        if (index > 0)
            std::printf("   gain %+6.1f%%", 100.0 * (medians[0] - medians[index]) / medians[0]);
        std::printf("\n");
    }
    std::fflush(stdout);
    return medians;
}

} // namespace quillfern::bench
