#include "Platform/Foundation/WorkerPool.h"

#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <memory>
#include <stdexcept>
#include <thread>
#include <vector>

namespace trelmix::worker_pool_test {

TEST(WorkerPool, startsJobsInOrderAndOutlivesThoseThatThrow) {
    std::vector<int> order;
    std::promise<void> done;
    WorkerPool pool(1);
    for (int i = 0; i < 5; ++i) {
        pool.run([i, &order] {
            order.push_back(i);
            throw std::runtime_error("job");
        });
    }
    pool.run([&done] { done.set_value(); });
    done.get_future().wait();
    EXPECT_EQ(order, (std::vector<int>{0, 1, 2, 3, 4}));
}

TEST(WorkerPool, theDestructorDropsWaitingJobsAndWaitsForRunningOnes) {
    std::atomic<int> started{0};
    std::atomic<bool> finished{false};
    const auto dropped = std::make_shared<int>(0);
    {
        std::promise<void> running, queued;
        WorkerPool pool(1);
        pool.run([&] {
            ++started;
            running.set_value();
            queued.get_future().wait();
            while (dropped.use_count() > 1) {
                // Until the destructor has let go of the jobs that wait.
                std::this_thread::yield();
            }
            finished = true;
        });
        running.get_future().wait();
        for (int i = 0; i < 10; ++i) {
            pool.run([&started, dropped] { ++started; });
        }
        EXPECT_EQ(pool.pendingCount(), 11U);
        queued.set_value();
    }
    EXPECT_TRUE(finished);
    EXPECT_EQ(started, 1);
}

TEST(WorkerPool, maySeeItsEndInsideItsOwnJob) {
    auto pool = std::make_shared<WorkerPool>(2);
    std::promise<void> released, gone;
    WorkerPool& running = *pool;
    running.run([own = pool, &gone, wait = released.get_future().share()]() mutable {
        wait.wait();
        own.reset();
        gone.set_value();
    });
    pool.reset();
    released.set_value();
    gone.get_future().wait();
}

} // namespace trelmix::worker_pool_test
