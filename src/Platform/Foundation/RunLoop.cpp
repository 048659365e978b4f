#include "Platform/Foundation/RunLoop.h"

#include "Platform/Foundation/CallerFault.h"
#include "Platform/Foundation/Clock.h"
#include "Platform/Foundation/WakeUp.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <iterator>
#include <limits>
#include <mutex>
#include <tuple>
#include <vector>

namespace trelmix {

using Block = std::function<void()>;

/// Everything is guarded by the loop's mutex.
struct Timer::State {
    double fireTime = 0;
    double interval = 0;
    bool repeats = false;
    bool isValid = true;
    std::uint64_t order = 0;
    // Shared, so that a block that invalidates its own timer lives until it returns.
    std::shared_ptr<const Block> block;
};

namespace {

using TimerState = std::shared_ptr<Timer::State>;

constexpr double kShortestInterval = 0.0001;
constexpr double kLongestWait = 86400.0;

struct Loop {
    mutable std::mutex mutex;
    std::condition_variable wake;
    std::deque<Block> blocks;
    /// Blocks at the front of `blocks` that belong to the pass that runs.
    std::size_t blocksOfPass = 0;
    std::vector<TimerState> timers;
    std::uint64_t timersMade = 0;
    bool isPumping = false;

    double nextFireTime() const {
        double next = std::numeric_limits<double>::infinity();
        for (const TimerState& timer : timers) {
            next = std::min(next, timer->fireTime);
        }
        return next;
    }
};

// Never destroyed: other threads may queue blocks while the process ends.
Loop& loop() {
    static auto* const instance = new Loop;
    return *instance;
}

void execute(const Block& block) {
    guarded("a block of the main queue threw an exception", block);
}

bool runQueuedBlocks(Loop& main) {
    bool ran = false;
    std::unique_lock lock(main.mutex);
    main.blocksOfPass = main.blocks.size();
    while (main.blocksOfPass > 0) {
        Block block = std::move(main.blocks.front());
        main.blocks.pop_front();
        --main.blocksOfPass;
        lock.unlock();
        execute(block);
        // Captures may queue more when they go.
        block = nullptr;
        ran = true;
        lock.lock();
    }
    return ran;
}

std::vector<TimerState> dueTimers(const Loop& main, double now) {
    std::vector<TimerState> due;
    const std::lock_guard guard(main.mutex);
    std::copy_if(main.timers.begin(), main.timers.end(), std::back_inserter(due),
                 [now](const TimerState& timer) { return timer->fireTime <= now; });
    std::sort(due.begin(), due.end(), [](const TimerState& a, const TimerState& b) {
        return std::tie(a->fireTime, a->order) < std::tie(b->fireTime, b->order);
    });
    return due;
}

/// The block to run, with the timer already moved on; empty when it was invalidated meanwhile.
std::shared_ptr<const Block> takeDueBlock(Loop& main, const TimerState& timer, double now) {
    const std::lock_guard guard(main.mutex);
    if (!timer->isValid) {
        return nullptr;
    }
    if (!timer->repeats) {
        timer->isValid = false;
        std::erase(main.timers, timer);
        return std::exchange(timer->block, nullptr);
    }
    const double missed = std::floor((now - timer->fireTime) / timer->interval);
    const double next = timer->fireTime + (missed + 1) * timer->interval;
    timer->fireTime = next > now ? next : now + timer->interval;
    return timer->block;
}

bool runDueTimers(Loop& main) {
    bool ran = false;
    const double now = Clock::now();
    for (const TimerState& timer : dueTimers(main, now)) {
        if (const auto block = takeDueBlock(main, timer, now)) {
            execute(*block);
            ran = true;
        }
    }
    return ran;
}

} // namespace

DispatchQueue& DispatchQueue::main() {
    static DispatchQueue queue;
    return queue;
}

void DispatchQueue::async(Block block) {
    if (!block) {
        return;
    }
    {
        Loop& main = loop();
        const std::lock_guard guard(main.mutex);
        main.blocks.push_back(std::move(block));
        main.wake.notify_all();
    }
    WakeUp::signal(Wake::work);
}

bool DispatchQueue::isEmpty() const {
    const Loop& main = loop();
    const std::lock_guard guard(main.mutex);
    return main.blocks.empty();
}

std::shared_ptr<Timer> Timer::scheduledTimer(double interval, bool repeats, Block block) {
    auto state = std::make_shared<State>();
    // Written so that NaN takes the shortest interval too.
    state->interval = interval >= kShortestInterval ? interval : kShortestInterval;
    state->fireTime = Clock::now() + state->interval;
    state->repeats = repeats;
    state->block = std::make_shared<const Block>(block ? std::move(block) : Block([] {}));
    auto timer = std::make_shared<Timer>(state);
    {
        Loop& main = loop();
        const std::lock_guard guard(main.mutex);
        state->order = main.timersMade++;
        main.timers.push_back(std::move(state));
        main.wake.notify_all();
    }
    WakeUp::signal(Wake::work);
    return timer;
}

void Timer::invalidate() {
    // Declared before the guard: captures are destroyed after the lock is free.
    std::shared_ptr<const Block> dropped;
    Loop& main = loop();
    const std::lock_guard guard(main.mutex);
    _state->isValid = false;
    std::erase(main.timers, _state);
    dropped.swap(_state->block);
}

bool Timer::isValid() const {
    const std::lock_guard guard(loop().mutex);
    return _state->isValid;
}

double Timer::fireTime() const {
    const std::lock_guard guard(loop().mutex);
    return _state->fireTime;
}

RunLoop& RunLoop::main() {
    static RunLoop instance;
    return instance;
}

bool RunLoop::pump() {
    Loop& main = loop();
    // Only the main thread comes past the first test, so the flag needs no lock.
    if (!requireMainThread("RunLoop::pump") || main.isPumping) {
        return false;
    }
    main.isPumping = true;
    const bool ranBlocks = runQueuedBlocks(main);
    const bool ranTimers = runDueTimers(main);
    main.isPumping = false;
    return ranBlocks || ranTimers;
}

void RunLoop::drain(int passes) {
    for (int i = 0; i < passes && pump(); ++i) {
    }
}

void RunLoop::wait(double seconds) {
    if (!requireMainThread("RunLoop::wait")) {
        return;
    }
    using Steady = std::chrono::steady_clock;
    const auto asDuration = [](double wait) {
        // Not a number and negative: no wait at all.
        return std::chrono::duration_cast<Steady::duration>(
            std::chrono::duration<double>(wait > 0 ? std::min(wait, kLongestWait) : 0.0));
    };
    Loop& main = loop();
    const auto end = Steady::now() + asDuration(seconds);
    std::unique_lock lock(main.mutex);
    while (main.blocks.empty() && Steady::now() < end) {
        auto until = end;
        if (Clock::isRunning()) {
            const double untilTimer = main.nextFireTime() - Clock::now();
            if (!(untilTimer > 0)) {
                return;
            }
            until = std::min(end, Steady::now() + asDuration(untilTimer));
        }
        main.wake.wait_until(lock, until);
    }
}

double RunLoop::secondsToWork() const {
    const Loop& main = loop();
    const std::lock_guard guard(main.mutex);
    if (!main.blocks.empty()) {
        return 0;
    }
    return Clock::isRunning() ? std::max(0.0, main.nextFireTime() - Clock::now())
                              : std::numeric_limits<double>::infinity();
}

void RunLoop::reset() {
    std::deque<Block> blocks;
    std::vector<TimerState> timers;
    std::vector<std::shared_ptr<const Block>> dropped;
    Loop& main = loop();
    const std::lock_guard guard(main.mutex);
    blocks.swap(main.blocks);
    main.blocksOfPass = 0;
    timers.swap(main.timers);
    for (const TimerState& timer : timers) {
        timer->isValid = false;
        dropped.push_back(std::exchange(timer->block, nullptr));
    }
}

} // namespace trelmix
