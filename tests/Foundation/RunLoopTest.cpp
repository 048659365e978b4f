#include "Platform/Foundation/RunLoop.h"
#include "Platform/Foundation/CallerFault.h"
#include "Platform/Foundation/Clock.h"
#include "Platform/Foundation/Thread.h"
#include "support/NotFinite.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace trelmix::run_loop_test {

std::atomic<int> faultCount{0};

class RunLoopTest : public testing::Test {
protected:
    void SetUp() override {
        Thread::resetMainThread();
        RunLoop::main().reset();
        Clock::reset();
        Clock::set(2000);
        faultCount = 0;
        setCallerFaultHandler([](const char*) { ++faultCount; });
    }
    void TearDown() override {
        RunLoop::main().reset();
        Clock::reset();
        setCallerFaultHandler(nullptr);
    }

    std::string story;
    std::function<void()> tell(char letter) {
        return [this, letter] { story += letter; };
    }
    std::shared_ptr<Timer> timer(double interval, char letter, bool repeats = false) {
        return Timer::scheduledTimer(interval, repeats, tell(letter));
    }
};

TEST(Clock, isSetForwardOnlyAndGoesOnFromThere) {
    Clock::reset();
    EXPECT_GE(Clock::now(), 1000);
    Clock::set(5000);
    for (const double refused : {4999.0, kInfinity, std::nan("")}) {
        Clock::set(refused);
        EXPECT_EQ(Clock::now(), 5000);
    }
    Clock::run();
    const double first = Clock::now();
    EXPECT_GE(first, 5000);
    EXPECT_GE(Clock::now(), first);
    Clock::reset();
    EXPECT_LT(Clock::now(), 5000);
}

TEST_F(RunLoopTest, aBlockThatQueuesItselfStarvesNeitherTimersNorThePump) {
    std::function<void()> again = [&] {
        story += 'b';
        DispatchQueue::main().async(again);
    };
    DispatchQueue::main().async(again);
    const auto due = timer(1, 't');
    Clock::set(2001);
    EXPECT_TRUE(RunLoop::main().pump());
    EXPECT_EQ(story, "bt");
    RunLoop::main().drain(3);
    EXPECT_EQ(story, "btbbb");
}

TEST_F(RunLoopTest, timersFireInTheOrderOfTheirTimesAndNotBefore) {
    const std::vector<std::shared_ptr<Timer>> timers{timer(3, 'd'), timer(1, 'a'), timer(2, 'b'),
                                                     timer(2, 'c'), timer(9, 'z')};
    Clock::set(2000.999);
    EXPECT_FALSE(RunLoop::main().pump());
    Clock::set(2003);
    EXPECT_TRUE(RunLoop::main().pump());
    EXPECT_EQ(story, "abcd");
    EXPECT_FALSE(timers[0]->isValid());
    EXPECT_TRUE(timers[4]->isValid());
    // Enough of one time for a sort to mix them up.
    std::vector<std::shared_ptr<Timer>> many;
    for (char letter = 'A'; letter <= 'Z'; ++letter) {
        many.push_back(timer(1, letter));
    }
    Clock::set(2004);
    RunLoop::main().pump();
    EXPECT_EQ(story, "abcdABCDEFGHIJKLMNOPQRSTUVWXYZ");
    // One that another has stopped in the same pass does not fire.
    const auto stopped = timer(2, 'x');
    const auto stopping = Timer::scheduledTimer(1, false, [&] { stopped->invalidate(); });
    Clock::set(2007);
    RunLoop::main().drain();
    EXPECT_EQ(story.find('x'), std::string::npos);
}

TEST_F(RunLoopTest, aRepeatingTimerThatWasLateFiresOnceAndKeepsItsRhythm) {
    const auto repeating = timer(0.5, 'r', true);
    Clock::set(2001.75);
    RunLoop::main().drain();
    EXPECT_EQ(story, "r");
    EXPECT_DOUBLE_EQ(repeating->fireTime(), 2002.0);
    repeating->invalidate();
    Clock::set(2010);
    RunLoop::main().drain();
    EXPECT_EQ(story, "r");
}

TEST_F(RunLoopTest, oddIntervalsNeverHangThePump) {
    std::vector<std::shared_ptr<Timer>> timers;
    for (const double interval : {0.0, -5.0, std::nan(""), 1e-300, kInfinity, 1e300}) {
        timers.push_back(timer(interval, 'o', true));
    }
    Clock::set(1e9);
    RunLoop::main().drain();
    EXPECT_EQ(story, "oooo");
}

TEST_F(RunLoopTest, aTimerMayDropItselfFromItsOwnBlock) {
    const auto watched = std::make_shared<int>(0);
    std::shared_ptr<Timer> own;
    own = Timer::scheduledTimer(1, true, [&own, watched] {
        std::exchange(own, nullptr)->invalidate();
        ++*watched;
    });
    Clock::set(2001);
    RunLoop::main().drain();
    EXPECT_EQ(*watched, 1);
    EXPECT_EQ(watched.use_count(), 1);
}

TEST_F(RunLoopTest, blocksAndTimersThatThrowAreReportedAndTheOthersStillRun) {
    DispatchQueue::main().async([] { throw std::runtime_error("from a block"); });
    DispatchQueue::main().async(tell('b'));
    const auto throwing = Timer::scheduledTimer(1, false, [] { throw 7; });
    const auto after = timer(2, 't');
    Clock::set(2002);
    RunLoop::main().pump();
    EXPECT_EQ(story, "bt");
    EXPECT_EQ(faultCount, 2);
}

TEST_F(RunLoopTest, nestedPumpsAndPumpsOnOtherThreadsDoNothing) {
    DispatchQueue::main().async([this] { story += RunLoop::main().pump() ? 'x' : 'n'; });
    DispatchQueue::main().async(tell('b'));
    std::thread([] { EXPECT_FALSE(RunLoop::main().pump()); }).join();
    EXPECT_EQ(faultCount, 1);
    RunLoop::main().pump();
    EXPECT_EQ(story, "nb");
}

TEST_F(RunLoopTest, theMainThreadIsChosenOnceAndNotAfterAnEngine) {
    const auto isChosenElsewhere = [] {
        bool isChosen = false;
        std::thread([&] { isChosen = chooseMainThread() && isMainThread(); }).join();
        return isChosen;
    };
    EXPECT_TRUE(isChosenElsewhere());
    EXPECT_FALSE(isMainThread());
    EXPECT_FALSE(chooseMainThread()) << "another has chosen";
    EXPECT_FALSE(RunLoop::main().pump());
    EXPECT_EQ(faultCount, 1);
    Thread::resetMainThread();
    Thread::fixMainThread();
    EXPECT_FALSE(isChosenElsewhere());
    EXPECT_TRUE(chooseMainThread()) << "it is already";
    setCallerFaultHandler([](const char*) { throw 1; });
    EXPECT_FALSE(isChosenElsewhere());
    std::thread([] { RunLoop::main().pump(); }).join();
    Thread::resetMainThread();
}

TEST_F(RunLoopTest, waitingEndsWithABlockFromAnotherThreadAndWithATimer) {
    std::thread other([this] { DispatchQueue::main().async(tell('b')); });
    RunLoop::main().wait(60);
    EXPECT_FALSE(DispatchQueue::main().isEmpty());
    RunLoop::main().pump();
    other.join();
    Clock::run();
    const auto soon = timer(0.001, 't');
    RunLoop::main().wait(60);
    RunLoop::main().pump();
    EXPECT_EQ(story, "bt");
    RunLoop::main().wait(kNaN);
    RunLoop::main().wait(-1);
}

TEST_F(RunLoopTest, everyBlockFromManyThreadsRunsOnceOnTheMainThread) {
    int count = 0;
    std::vector<std::thread> threads(4);
    for (std::thread& thread : threads) {
        thread = std::thread([&count] {
            for (int k = 0; k < 500; ++k) {
                DispatchQueue::main().async([&count] { count += Thread::isMainThread() ? 1 : 0; });
                Timer::scheduledTimer(0, true, [] {})->invalidate();
            }
        });
    }
    while (count < 2000) {
        RunLoop::main().wait(60);
        RunLoop::main().pump();
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    RunLoop::main().drain();
    EXPECT_EQ(count, 2000);
}

} // namespace trelmix::run_loop_test
