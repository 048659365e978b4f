#include "Platform/Foundation/SceneLock.h"
#include "Platform/Foundation/CallerFault.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <thread>

namespace trelmix::scene_lock_test {

int faultCount = 0;

TEST(SceneLock, aCallOutReleasesEveryLevelAndTakesThemBackAlsoAfterAnExceptionWhichItReports) {
    const SceneLock outer;
    {
        const SceneLock inner;
        const int answer = callOut([] {
            EXPECT_FALSE(SceneLock::isHeldHere());
            // Would never end if a level were still held.
            std::thread([] { const SceneLock elsewhere; }).join();
            const SceneLock publicEntry;
            return callOut([] { return SceneLock::isHeldHere() ? 1 : 2; });
        });
        EXPECT_EQ(answer, 2);
        EXPECT_TRUE(SceneLock::isHeldHere());
        setCallerFaultHandler([](const char*) { ++faultCount; });
        faultCount = 0;
        EXPECT_EQ(callOut([]() -> int { throw std::runtime_error("application"); }), 0);
        EXPECT_EQ(faultCount, 1);
        setCallerFaultHandler(nullptr);
    }
    EXPECT_TRUE(SceneLock::isHeldHere());
}

TEST(SceneLock, keepsThreadsApart) {
    int counter = 0;
    const auto count = [&counter] {
        for (int i = 0; i < 2000; ++i) {
            const SceneLock lock;
            const SceneLock again;
            ++counter;
        }
    };
    std::thread other(count);
    count();
    other.join();
    EXPECT_EQ(counter, 4000);
    EXPECT_FALSE(SceneLock::isHeldHere());
}

} // namespace trelmix::scene_lock_test
