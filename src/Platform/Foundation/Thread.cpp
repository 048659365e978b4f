#include "Platform/Foundation/Thread.h"

#include <atomic>
#include <thread>

namespace trelmix {
namespace {

std::atomic<std::thread::id>& mainThread() {
    static std::atomic<std::thread::id> id{std::this_thread::get_id()};
    return id;
}

// Takes the id while the library is loaded, not at the first question, which may come from any thread.
[[maybe_unused]] const std::atomic<std::thread::id>& takenAtLoad = mainThread();

} // namespace

bool Thread::isMainThread() {
    return mainThread().load(std::memory_order_relaxed) == std::this_thread::get_id();
}

void Thread::becomeMainThread() {
    mainThread().store(std::this_thread::get_id(), std::memory_order_relaxed);
}

} // namespace trelmix
