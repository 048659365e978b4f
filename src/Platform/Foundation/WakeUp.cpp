#include "Platform/Foundation/WakeUp.h"

#include "Platform/Foundation/SceneLock.h"

#include <array>
#include <mutex>
#include <utility>
#include <vector>

namespace trelmix {

/// Recursive, as the function may end its own WakeUp.
struct WakeUp::Sleeper {
    std::recursive_mutex mutex;
    std::shared_ptr<const Function> function;
};

namespace {

struct Sleepers {
    std::mutex mutex;
    std::vector<std::shared_ptr<WakeUp::Sleeper>> all;
};

// Never destroyed: other threads may have news while the process ends.
Sleepers& sleepers() {
    static auto* const instance = new Sleepers;
    return *instance;
}

/// One flag for each kind of news that waits for the scene lock.
thread_local std::array<bool, 2> heldBackHere{};

void wakeEverybody(Wake what) {
    std::vector<std::shared_ptr<WakeUp::Sleeper>> all;
    {
        const std::lock_guard guard(sleepers().mutex);
        all = sleepers().all;
    }
    for (const auto& sleeper : all) {
        const std::lock_guard guard(sleeper->mutex);
        if (const auto function = sleeper->function) {
            (*function)(what);
        }
    }
}

} // namespace

WakeUp::WakeUp(Function function) : _sleeper(std::make_shared<Sleeper>()) {
    _sleeper->function = std::make_shared<const Function>(std::move(function));
    const std::lock_guard guard(sleepers().mutex);
    sleepers().all.push_back(_sleeper);
}

WakeUp::~WakeUp() {
    {
        const std::lock_guard guard(sleepers().mutex);
        std::erase(sleepers().all, _sleeper);
    }
    // What the function holds goes after the lock is free.
    std::shared_ptr<const Function> last;
    const std::lock_guard guard(_sleeper->mutex);
    last.swap(_sleeper->function);
}

void WakeUp::signal(Wake what) {
    if (SceneLock::isHeldHere()) {
        heldBackHere[static_cast<std::size_t>(what)] = true;
    } else {
        wakeEverybody(what);
    }
}

void WakeUp::passOn() {
    for (const Wake what : {Wake::frame, Wake::work}) {
        if (std::exchange(heldBackHere[static_cast<std::size_t>(what)], false)) {
            wakeEverybody(what);
        }
    }
}

} // namespace trelmix
