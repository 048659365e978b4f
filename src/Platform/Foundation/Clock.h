#pragma once

namespace trelmix {

/// The one steady clock that drives frames, actions, timers, the tile check and the recognisers, in seconds.
///
/// It starts at 1,000 s. It runs by itself (real time, never backwards) until a host sets it; from then on it
/// shows what the host last set, until `run()` lets it go on from there. Any thread.
class Clock {
public:
    static double now();
    /// False while it shows what a host has set.
    static bool isRunning();
    /// Stops the clock at `seconds`; values that are not finite or lie before `now()` change nothing.
    static void set(double seconds);
    /// Lets it run by itself from where it stands.
    static void run();
    /// Back to 1,000 s, running. For test fixtures.
    static void reset();
};

} // namespace trelmix
