#pragma once

#include <atomic>

namespace quillfern {

/// While it lives, SIGINT and SIGTERM ask a running batch to stop after the move in flight instead of killing
/// the process; a second signal ends the process at once (the batch's journal still lets it be recovered).
class StopSignals final
{
public:
    StopSignals();
    ~StopSignals();
    StopSignals(const StopSignals &) = delete;
    StopSignals &operator=(const StopSignals &) = delete;

    /// Set when a signal asked the batch to stop.
    [[nodiscard]] static const std::atomic<bool> *flag();
    /// The signal that asked, or 0.
    [[nodiscard]] static int signalNumber();
};

} // namespace quillfern
