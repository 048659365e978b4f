#pragma once

#include <functional>
#include <memory>

namespace trelmix {

/// What there is to do.
enum class Wake {
    /// A frame may look different from the last one.
    frame,
    /// The main run loop has a block, or a timer that it did not have.
    work
};

/// Somebody who sleeps while there is nothing to do, and is woken when that changes. While it lives its
/// function is called, on whichever thread has something to tell; it may end inside its own call.
///
/// The function only notes and signals: it does not call the engine, does not wait, and does not throw.
class WakeUp {
public:
    using Function = std::function<void(Wake)>;
    explicit WakeUp(Function function);
    /// Waits for a call that another thread makes.
    ~WakeUp();
    WakeUp(const WakeUp&) = delete;
    WakeUp& operator=(const WakeUp&) = delete;

    /// Any thread. Wakes everybody: what changed in one engine is only looked at by the hosts of others.
    /// Where the scene lock is held, the news waits for its release, and is told once however often it comes.
    static void signal(Wake what);

    struct Sleeper;

private:
    friend class SceneLock;
    /// The scene lock is free on this thread again.
    static void passOn();

    std::shared_ptr<Sleeper> _sleeper;
};

} // namespace trelmix
