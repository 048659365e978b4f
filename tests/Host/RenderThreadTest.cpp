// Frames on a thread of their own. Also run under the thread sanitizer.
#include "Host/HostStage.h"
#include "support/CaseCount.h"

#include <Trelmix/Host/RenderThread.h>
#include <Trelmix/TrelmixMapEngineFactory.h>

#include <atomic>
#include <future>
#include <thread>

namespace trelmix::render_thread_test {

constexpr ViewHost::Layout kLayout{{64, 48}, {{0, 0}, {64, 48}}, 1};

/// A context and its bitmap for a drawing thread.
class Screen {
public:
    Screen() : _context(std::move(*GLContext::makeOffscreen())) { _context->release(); }

    RenderThread::Surface surface() {
        return {[this] {
                    makeCurrentCount += 1;
                    if (refuses || !_context->makeCurrent()) {
                        return false;
                    }
                    _window = std::make_unique<TestWindow>(64, 48);
                    return true;
                },
                [this] {
                    presentCount += 1;
                    presentCount.notify_all();
                    if (onPresent) {
                        onPresent();
                    }
                },
                [this] {
                    _window.reset();
                    _context->release();
                }};
    }
    void makeCurrent() { _context->makeCurrent(); }
    void release() { _context->release(); }
    TestWindow& window() { return *_window; }

    bool refuses = false;
    std::function<void()> onPresent;
    std::atomic<int> makeCurrentCount = 0, presentCount = 0;

private:
    std::unique_ptr<GLContext> _context;
    std::unique_ptr<TestWindow> _window;
};

class RenderThreadTest : public EngineFixture {
protected:
    void SetUp() override {
        EngineFixture::SetUp();
        // Threads run on real time.
        Clock::run();
        engine->setBackgroundColor(UIColor{1, 0, 0, 1});
        engine->initialiseWithTarget({53.5, 10}, 17);
        host = std::move(*ViewHost::make(engine, kLayout, {}));
    }
    void TearDown() override {
        dropHost();
        RunLoop::main().drain();
        EngineFixture::TearDown();
    }
    void dropHost() {
        screen.makeCurrent();
        host.reset();
        screen.release();
    }
    std::unique_ptr<RenderThread> start() { return RenderThread::start(host, screen.surface()); }

    /// Pumps until no frame is presented for a while of updates: what the last pump did would show in it.
    void rest(RenderThread& thread) {
        std::uint64_t presents = 0;
        do {
            RunLoop::main().drain();
            presents = thread.presentCount();
            ASSERT_TRUE(thread.waitForUpdates(thread.updateCount() + 10));
        } while (thread.presentCount() != presents || !DispatchQueue::main().isEmpty());
    }

    Screen screen;
    std::shared_ptr<ViewHost> host;
};

TEST_F(RenderThreadTest, presentsWhatChangesAndNothingElse) {
    auto thread = start();
    rest(*thread);
    EXPECT_GE(thread->presentCount(), 1U);
    std::array<int, 4> color{};
    ASSERT_TRUE(thread->runBetweenFrames([&] { color = screen.window().pixel(30, 20); }));
    EXPECT_EQ(color, (std::array{255, 0, 0, 255}));

    const auto still = thread->presentCount();
    ASSERT_TRUE(thread->waitForUpdates(thread->updateCount() + 20));
    EXPECT_EQ(thread->presentCount(), still);
    // Nobody asks for updates: what changes wakes the thread.
    engine->setCameraWithRotation(45, 0, 18, false);
    screen.presentCount.wait(static_cast<int>(still));
    rest(*thread);
    const auto again = thread->presentCount();
    thread->setNeedsDisplay();
    screen.presentCount.wait(static_cast<int>(again));
    rest(*thread);
    EXPECT_EQ(thread->presentCount(), again + 1);
    EXPECT_EQ(static_cast<std::uint64_t>(screen.presentCount), thread->presentCount());
}

TEST_F(RenderThreadTest, stopsAtAnyMoment) {
    start().reset();
    const int presents = screen.presentCount;
    host->pump();
    EXPECT_EQ(screen.presentCount, presents);
    // From the middle of a resize, and from a call that the engine makes on the main thread.
    struct Listener : TrelmixMapEngineDelegate {
        std::function<void()> onIdle, onTile;
        void mapViewIdleAtCamera(const std::shared_ptr<TrelmixMapEngineCamera>&) override { onIdle(); }
        std::shared_ptr<const UIImage> tileForX(std::int64_t, std::int64_t, std::int64_t) override {
            onTile();
            return nullptr;
        }
    };
    auto thread = start();
    const auto listener = std::make_shared<Listener>();
    listener->onIdle = [&] { thread.reset(); };
    engine->setDelegate(listener);
    for (int i = 0; i < 30; ++i) {
        host->resize(40 + i, 60 - i, 1);
    }
    engine->setCameraWithRotation(10, 0, 18, false);
    RunLoop::main().drain();
    EXPECT_FALSE(thread);
    // From a tile question on the drawing thread, which has the host's last reference then.
    thread = start();
    std::promise<void> asked;
    listener->onTile = [&] {
        if (std::exchange(host, nullptr)) {
            thread.reset();
            asked.set_value();
        }
    };
    const auto layer = TrelmixMapEngineFactory::createMapTilesNode();
    layer->setSynchronousLayer(true);
    layer->setMap(engine);
    asked.get_future().wait();
    while (engine.use_count() > 1) {
        std::this_thread::yield(); // until the host has let go of it
    }
    layer->setMap(nullptr);
}

TEST_F(RenderThreadTest, aThreadWithoutContextOrHostEndsAndNobodyWaitsForIt) {
    screen.refuses = true;
    const auto refused = start();
    EXPECT_FALSE(refused->waitForUpdates(1));
    EXPECT_FALSE(refused->runBetweenFrames([] { ADD_FAILURE() << "there is no context"; }));
    const auto empty = RenderThread::start(nullptr, screen.surface());
    EXPECT_FALSE(empty->waitForUpdates(1));
    const auto mute = RenderThread::start(host, {});
    EXPECT_FALSE(mute->waitForUpdates(1));
    EXPECT_EQ(screen.presentCount, 0);
}

TEST_F(RenderThreadTest, drawsWhileEverythingMovesComesAndGoes) {
    struct Tiles : TrelmixMapEngineDelegate {
        void tileRequestedForX(std::int64_t x, std::int64_t y, std::int64_t zoom,
                               const std::shared_ptr<TrelmixMapTileLayer>& layer) override {
            // From another thread still, as a decoder would.
            const auto image = plainImage(8, 8, {0, 200, 0, 255});
            std::thread([=] { layer->provideTileForX(x, y, zoom, image); }).join();
        }
    };
    const auto tiles = std::make_shared<Tiles>();
    engine->setDelegate(tiles);
    const auto icon = plainImage(6, 6, {0, 0, 255, 255});
    auto thread = start();
    const auto layer = TrelmixMapEngineFactory::createMapTilesNode();
    layer->setMap(engine);
    std::shared_ptr<TrelmixMapMarker> markers[12];
    for (int i = 0; i < 120; ++i) {
        const double offset = 0.0005 * (i % 7 - 3);
        engine->setCamera(std::make_shared<TrelmixMapEngineCamera>(
                              CLLocationCoordinate2D{53.5 + offset, 10 + offset}, 3.0 * i, i % 50,
                              16.0F + 0.05F * static_cast<float>(i % 40)),
                          i % 5 == 0);
        auto& marker = markers[i % 12];
        if (marker) {
            marker->setMap(nullptr);
        }
        marker = TrelmixMapEngineFactory::createMapMarkerWith(icon, {53.5 + offset, 10});
        marker->setMap(engine);
        marker->setCoordinate({53.5, 10 + offset}, true, 0.05);
        host->setOverlayImages({{icon, {{1.0 * (i % 10), 2}, {6, 6}}}});
        host->resize(64 - i % 3, 48, 1);
        host->touchBegan(1, {30, 20}, 0.1 * i);
        host->touchMoved(1, {45.0 - i % 9, 33}, 0.1 * i + 0.02);
        host->pump();
        host->touchEnded(1, {30, 20}, 0.1 * i + 0.04);
        if (i % 10 == 0) {
            ASSERT_TRUE(thread->waitForUpdates(thread->updateCount() + 1));
        }
    }
    rest(*thread);
    EXPECT_EQ(layer->tileCounts().answered, layer->tileCounts().wanted);
    thread.reset();
    layer->setMap(nullptr);
    engine->setDelegate({});
}

TEST_F(RenderThreadTest, enginesComeAndGoWithTheirThreads) {
    dropHost();
    const auto icon = plainImage(6, 6, {0, 0, 255, 255});
    const int count = countFromEnvironment("TRELMIX_ENGINE_COUNT", 50);
    for (int i = 0; i < count; ++i) {
        auto map = TrelmixMapEngineFactory::createMap();
        std::shared_ptr<ViewHost> own = std::move(*ViewHost::make(map, kLayout, {}));
        map->initialiseWithTarget({53.5, 10}, 17);
        auto thread = RenderThread::start(own, screen.surface());
        TrelmixMapEngineFactory::createMapMarkerWith(icon, {53.5, 10})->setMap(map);
        map->setCameraWithRotation(0, 10, 18, i % 2 == 0);
        const std::weak_ptr<TrelmixMapEngine> weak = map;
        if (i % 3 == 0) {
            // The thread's host has the last reference.
            map.reset();
        }
        EXPECT_TRUE(thread->waitForUpdates(static_cast<std::uint64_t>(i % 4)));
        thread.reset();
        screen.makeCurrent();
        own.reset();
        screen.release();
        map.reset();
        RunLoop::main().drain();
        EXPECT_TRUE(weak.expired()) << i;
    }
}

} // namespace trelmix::render_thread_test
