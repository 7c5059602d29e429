#include "cli/stopsignals.h"

#include <QtGlobal>

#include <csignal>

namespace quillfern {

namespace {

std::atomic<bool> stopRequested = false;
std::atomic<int> stopSignal = 0;

extern "C" void requestStop(int signal)
{
    if (stopRequested.exchange(true)) {
        // Asked twice: the user wants out now.
        std::signal(signal, SIG_DFL);
        std::raise(signal);
        return;
    }
    stopSignal = signal;
}

} // namespace

StopSignals::StopSignals()
{
    stopRequested = false;
    stopSignal = 0;
    std::signal(SIGINT, requestStop);
    std::signal(SIGTERM, requestStop);
}

StopSignals::~StopSignals()
{
    std::signal(SIGINT, SIG_DFL);
    std::signal(SIGTERM, SIG_DFL);
}

const std::atomic<bool> *StopSignals::flag()
{
    return &stopRequested;
}

int StopSignals::signalNumber()
{
    return stopSignal;
}

} // namespace quillfern
