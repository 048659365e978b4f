#include "Platform/Foundation/Clock.h"

#include <chrono>
#include <cmath>
#include <mutex>

namespace trelmix {
namespace {

constexpr double kStart = 1000.0;

using Steady = std::chrono::steady_clock;

struct ClockState {
    std::mutex mutex;
    bool isRunning = true;
    double base = kStart;
    Steady::time_point since = Steady::now();

    double now() const {
        return isRunning ? base + std::chrono::duration<double>(Steady::now() - since).count() : base;
    }
};

// Never destroyed: threads may still read the time while the process ends.
ClockState& state() {
    static auto* const instance = new ClockState;
    return *instance;
}

} // namespace

double Clock::now() {
    ClockState& clock = state();
    const std::lock_guard guard(clock.mutex);
    return clock.now();
}

bool Clock::isRunning() {
    ClockState& clock = state();
    const std::lock_guard guard(clock.mutex);
    return clock.isRunning;
}

void Clock::set(double seconds) {
    ClockState& clock = state();
    const std::lock_guard guard(clock.mutex);
    if (!std::isfinite(seconds) || seconds < clock.now()) {
        return;
    }
    clock.isRunning = false;
    clock.base = seconds;
}

void Clock::run() {
    ClockState& clock = state();
    const std::lock_guard guard(clock.mutex);
    if (!clock.isRunning) {
        clock.isRunning = true;
        clock.since = Steady::now();
    }
}

void Clock::reset() {
    ClockState& clock = state();
    const std::lock_guard guard(clock.mutex);
    clock.isRunning = true;
    clock.base = kStart;
    clock.since = Steady::now();
}

} // namespace trelmix
