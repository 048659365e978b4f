// An event loop that sleeps until the host wakes it misses nothing, and is left alone while nothing happens.
#include "Host/HostStage.h"
#include "Platform/Foundation/Clock.h"
#include "Platform/Foundation/RunLoop.h"

#include <Trelmix/Host/RenderThread.h>
#include <Trelmix/TrelmixMapEngineFactory.h>

#include <cmath>
#include <future>
#include <limits>
#include <stdexcept>
#include <thread>

namespace trelmix {
namespace {

struct Listener : TrelmixMapEngineDelegate {
    void mapViewIdleAtCamera(const std::shared_ptr<TrelmixMapEngineCamera>&) override { ++rests; }
    void tileRequestedForX(std::int64_t x, std::int64_t y, std::int64_t zoom,
                           const std::shared_ptr<TrelmixMapTileLayer>& layer) override {
        ++questions;
        const auto image = plainImage(8, 8, {0, 200, 0, 255});
        std::thread([=] { layer->provideTileForX(x, y, zoom, image); }).join();
    }
    int rests = 0;
    int questions = 0;
};

class WakeUpTest : public WindowFixture {
protected:
    void SetUp() override {
        WindowFixture::SetUp();
        engine->setDelegate(listener);
        engine->initialiseWithTarget({53.5, 10}, 17);
        host = std::move(*ViewHost::make(engine, {{200, 150}, {{0, 0}, {200, 150}}, 1}, {}));
        host->setWakeUp([this] { isWoken = true; });
    }
    void TearDown() override {
        host.reset();
        WindowFixture::TearDown();
    }
    /// Passes of a loop that sleeps on, in steps of a sixtieth of a second, until nobody wakes it for
    /// `seconds`; pumps at the times of timers too. How many passes there were.
    int runUntilAsleep(double seconds) {
        int passes = 0;
        for (double asleep = 0; asleep < seconds; asleep += 1.0 / 60) {
            Clock::set(Clock::now() + 1.0 / 60);
            isWoken = false;
            const bool ran = host->pump();
            const bool draws = host->needsDisplay() && host->drawFrame() != ViewHost::Drawing::failed;
            if (ran || draws || isWoken) {
                ++passes;
                asleep = 0;
            }
        }
        return passes;
    }

    std::shared_ptr<Listener> listener = std::make_shared<Listener>();
    std::unique_ptr<ViewHost> host;
    bool isWoken = false;
};

TEST_F(WakeUpTest, aLoopThatSleepsSeesAnimationsTilesAndTouchesToTheirEnd) {
    const auto layer = TrelmixMapEngineFactory::createMapTilesNode();
    layer->setMap(engine);
    const auto marker =
        TrelmixMapEngineFactory::createMapMarkerWith(plainImage(6, 6, {0, 0, 255, 255}), {53.5, 10});
    marker->setMap(engine);
    runUntilAsleep(3);
    EXPECT_GT(listener->questions, 0);
    EXPECT_EQ(layer->tileCounts().answered, layer->tileCounts().wanted);
    EXPECT_FALSE(host->needsDisplay());
    Clock::run();
    EXPECT_EQ(host->secondsToPump(), std::numeric_limits<double>::infinity());
    Clock::set(Clock::now());

    marker->setCoordinate({53.5001, 10}, true, 0.5);
    EXPECT_TRUE(isWoken);
    const int frames = runUntilAsleep(3);
    EXPECT_GE(frames, 30);
    EXPECT_LE(frames, 40);

    // To where it is: nothing moves, and it ends all the same.
    const int rests = listener->rests;
    engine->setCamera(engine->camera(), true);
    EXPECT_GE(runUntilAsleep(3), 2);
    EXPECT_GT(listener->rests, rests);

    // A jump within a second of the last check of the tiles: the check comes when it may.
    engine->setCameraWithRotation(0, 0, 18, false);
    runUntilAsleep(0.1);
    listener->questions = 0;
    engine->setCameraWithRotation(0, 0, 16, false);
    runUntilAsleep(3);
    EXPECT_GT(listener->questions, 0);
    EXPECT_EQ(layer->tileCounts().answered, layer->tileCounts().wanted);

    host->touchBegan(1, {100, 100}, Clock::now());
    runUntilAsleep(0.1);
    isWoken = false;
    host->touchMoved(1, {130, 120}, Clock::now());
    EXPECT_TRUE(isWoken);
    EXPECT_EQ(host->secondsToPump(), 0);
    host->pump();
    host->touchMoved(1, {150, 140}, Clock::now());
    host->pump();
    EXPECT_TRUE(host->needsDisplay());
    layer->setMap(nullptr);
}

TEST_F(WakeUpTest, theFunctionIsToldOnceAndMayEndAnything) {
    runUntilAsleep(1);
    int calls = 0;
    host->setWakeUp([&] { ++calls; });
    const int first = calls;
    engine->setBackgroundColor(UIColor{1, 0, 0, 1});
    std::thread([] { DispatchQueue::main().async([] {}); }).join();
    EXPECT_EQ(calls, first); // nobody has asked since
    EXPECT_EQ(host->secondsToPump(), 0);
    engine->setBackgroundColor(UIColor{0, 1, 0, 1});
    EXPECT_EQ(calls, first + 1);

    // It asks, and changes what it hears of.
    host->setWakeUp([&] {
        host->needsDisplay();
        engine->setBackgroundColor(UIColor{0, 0, 1, 1});
    });
    host->setWakeUp([] { throw std::runtime_error("no"); });
    host->needsDisplay();
    engine->setBackgroundColor(UIColor{1, 1, 1, 1});
    std::thread([&] { host->setWakeUp(nullptr); }).join();
    EXPECT_EQ(takeFaults().size(), 3U); // at once, with the colour, and for the thread
    // It replaces itself, and then destroys its host.
    host->setWakeUp([&, armed = false]() mutable {
        if (std::exchange(armed, true)) {
            host->setWakeUp([&] { host.reset(); });
        }
    });
    for (int i = 0; i < 3 && host; ++i) {
        host->needsDisplay();
        engine->setBackgroundColor(UIColor{0, static_cast<double>(i) / 4, 0, 1});
    }
    EXPECT_FALSE(host);
    engine->setBackgroundColor(UIColor{0, 0, 0, 1});
    RunLoop::main().drain();
}

} // namespace
} // namespace trelmix
