#include "Platform/Foundation/WorkerPool.h"

#include <algorithm>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

namespace trelmix {

struct WorkerPool::State {
    std::mutex mutex;
    std::condition_variable wake;
    std::deque<std::function<void()>> jobs;
    std::size_t runningCount = 0;
    bool isStopping = false;
    std::vector<std::thread> threads;

    static void execute(const std::function<void()>& job) {
        try {
            job();
        } catch (...) {
            // A job that fails leaves its answer out; the thread must go on for the others.
        }
    }

    void work() {
        std::unique_lock lock(mutex);
        for (;;) {
            wake.wait(lock, [this] { return isStopping || !jobs.empty(); });
            if (isStopping) {
                return;
            }
            std::function<void()> job = std::move(jobs.front());
            jobs.pop_front();
            ++runningCount;
            lock.unlock();
            execute(job);
            // What the job captured goes before it counts as done, and never under the lock.
            job = nullptr;
            lock.lock();
            --runningCount;
        }
    }

    void stop() {
        std::deque<std::function<void()>> dropped;
        {
            const std::lock_guard guard(mutex);
            isStopping = true;
            dropped.swap(jobs);
        }
        wake.notify_all();
        // Before the join: a job that runs may wait for what those that were dropped hold.
        dropped.clear();
        for (std::thread& thread : threads) {
            // The last reference to a pool may fall inside one of its own jobs: that thread cannot join
            // itself.
            if (thread.get_id() == std::this_thread::get_id()) {
                thread.detach();
            } else if (thread.joinable()) {
                thread.join();
            }
        }
        threads.clear();
    }
};

WorkerPool::WorkerPool(std::size_t threadCount) : _state(std::make_shared<State>()) {
    const std::size_t count = std::max<std::size_t>(threadCount, 1);
    _state->threads.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        try {
            _state->threads.emplace_back([state = _state] { state->work(); });
        } catch (const std::system_error&) {
            break;
        }
    }
}

WorkerPool::~WorkerPool() {
    _state->stop();
}

void WorkerPool::run(std::function<void()> job) {
    if (!job) {
        return;
    }
    {
        const std::lock_guard guard(_state->mutex);
        if (_state->isStopping) {
            return;
        }
        if (!_state->threads.empty()) {
            _state->jobs.push_back(std::move(job));
            _state->wake.notify_one();
            return;
        }
    }
    // The system gave no thread at all: slow is better than never.
    State::execute(job);
}

std::size_t WorkerPool::pendingCount() const {
    const std::lock_guard guard(_state->mutex);
    return _state->jobs.size() + _state->runningCount;
}

WorkerPool& WorkerPool::decoders() {
    static auto* const pool =
        new WorkerPool(std::clamp<std::size_t>(std::max(std::thread::hardware_concurrency(), 2U) - 1U, 1, 4));
    // The pool itself stays, so that a late `run` is harmless; its threads end before static data go.
    static const struct AtExit {
        std::shared_ptr<State> state;
        ~AtExit() { state->stop(); }
    } atExit{pool->_state};
    return *pool;
}

} // namespace trelmix
