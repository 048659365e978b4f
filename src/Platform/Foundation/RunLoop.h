#pragma once

#include <functional>
#include <memory>
#include <utility>

namespace trelmix {

/// The main queue: blocks that run on the main thread, one after another, when the host pumps.
class DispatchQueue {
public:
    static DispatchQueue& main();
    /// Queues a block; any thread. A block queued by a block runs in the next pass of the pump, so that a
    /// block that queues itself cannot starve timers. What a block throws is reported as a caller's fault and
    /// goes no further.
    void async(std::function<void()> block);
    /// True when no block waits.
    bool isEmpty() const;
};

/// A timer of the main run loop. It runs on the main thread when the host pumps and the clock has reached its
/// time.
///
/// The loop holds it until it has fired (or for ever, when it repeats) or is invalidated. Blocks capture
/// their target weakly. Made on any thread.
class Timer {
public:
    /// @param interval seconds from `Clock::now()`; 0, negative and NaN count as 0.1 ms. A repeating timer
    /// that was late fires once for all the times it missed and keeps its rhythm.
    static std::shared_ptr<Timer> scheduledTimer(double interval, bool repeats, std::function<void()> block);
    /// After this the block does not start again; it may be running when called from another thread.
    void invalidate();
    /// False once invalidated, and from the start of its block on when it does not repeat.
    bool isValid() const;
    /// When it fires next, in seconds of `Clock`.
    double fireTime() const;

    struct State;
    explicit Timer(std::shared_ptr<State> state) : _state(std::move(state)) {}

private:
    std::shared_ptr<State> _state;
};

/// The main run loop.
class RunLoop {
public:
    static RunLoop& main();
    /// Runs what is queued now and the timers that are due, in order of their times; main thread only.
    /// Returns whether anything ran. Nested calls do nothing.
    bool pump();
    /// Pumps until nothing is queued and no timer is due, at most `passes` times.
    void drain(int passes = 100);
    /// Waits until a block is queued, the next timer is due on a running clock, or `seconds` have passed;
    /// main thread only. With a stopped clock no timer ends the wait.
    void wait(double seconds);
    /// Seconds until there is something to pump: 0 when a block is queued or a timer is due; infinite when
    /// there is none, or only timers of a stopped clock. Any thread.
    double secondsToWork() const;
    /// Drops all blocks and timers. For test fixtures.
    void reset();
};

} // namespace trelmix
