#pragma once

#include <cstddef>
#include <functional>
#include <memory>

namespace trelmix {

/// A few threads that run jobs off the main and the render thread: decoding, levels of detail, disk look-ups.
///
/// Jobs start in the order they came. The destructor drops jobs that have not started and waits for those
/// that run.
class WorkerPool {
public:
    explicit WorkerPool(std::size_t threadCount);
    ~WorkerPool();
    WorkerPool(const WorkerPool&) = delete;
    WorkerPool& operator=(const WorkerPool&) = delete;

    /// Any thread. Exceptions of a job are swallowed.
    void run(std::function<void()> job);
    /// Jobs that wait or run.
    std::size_t pendingCount() const;

    /// The decoders' pool, made on first use: one thread fewer than the machine has cores, 1 to 4.
    static WorkerPool& decoders();

private:
    struct State;
    std::shared_ptr<State> _state;
};

} // namespace trelmix
