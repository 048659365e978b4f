#include "Platform/Foundation/Thread.h"

#include <atomic>
#include <thread>

namespace trelmix {
namespace {

struct MainThread {
    std::atomic<std::thread::id> id{std::this_thread::get_id()};
    std::atomic<bool> isFixed = false;
};

MainThread& mainThread() {
    static MainThread thread;
    return thread;
}

// Takes the id while the library is loaded, not at the first question, which may come from any thread.
[[maybe_unused]] const MainThread& takenAtLoad = mainThread();

} // namespace

bool Thread::isMainThread() {
    return mainThread().id.load(std::memory_order_relaxed) == std::this_thread::get_id();
}

void Thread::fixMainThread() {
    mainThread().isFixed = true;
}

void Thread::resetMainThread() {
    mainThread().id = std::this_thread::get_id();
    mainThread().isFixed = false;
}

bool isMainThread() {
    return Thread::isMainThread();
}

bool chooseMainThread() {
    if (!mainThread().isFixed.exchange(true)) {
        mainThread().id = std::this_thread::get_id();
    }
    return Thread::isMainThread();
}

} // namespace trelmix
