// Maps whose tiles come from a server that misbehaves.
#include "Platform/Foundation/WorkerPool.h"
#include "Tiles/MapTileNode.h"

#include "support/EngineFixture.h"
#include "support/Pixels.h"
#include "support/ScratchFolder.h"
#include "support/TileServer.h"

#include <Trelmix/Platform/NetworkSettings.h>

#include <chrono>
#include <map>
#include <stdexcept>

namespace trelmix::url_tile_layer_test {

using End = TileReply::End;

constexpr CLLocationCoordinate2D kPlace{43.7362, 7.4245};

std::string tileFile() {
    static const std::string file = [] {
        const auto png = plainImage(16, 16)->pngData();
        return std::string(reinterpret_cast<const char*>(png.data()), png.size());
    }();
    return file;
}

class UrlTileLayer : public EngineFixture {
protected:
    void SetUp() override {
        EngineFixture::SetUp();
        NetworkSettings settings = before;
        settings.cacheFolder = folder.path("cache");
        setNetworkSettings(settings);
        engine->initialiseWithTarget(kPlace, 17);
        layer->setImageUrlLayer(true);
        layer->setImageUrlConstructor([this](std::uint64_t x, std::uint64_t y, std::uint64_t zoom) {
            ++asked[{std::int64_t(x), std::int64_t(y), std::int64_t(zoom)}];
            return URL::fromString(server.address() + "/" + std::to_string(zoom) + "/" + std::to_string(x) +
                                   "/" + std::to_string(y) + ".png");
        });
    }
    void TearDown() override {
        layer.reset();
        server.stop();
        shutDownNetwork();
        // Answers that were under way find nobody.
        EXPECT_TRUE(decodersAreIdle());
        RunLoop::main().drain();
        setNetworkSettings(before);
        EngineFixture::TearDown();
    }
    void show() {
        layer->setMap(engine);
        step(2);
    }
    /// Until the server is released.
    void showWithHeldReplies() {
        reply = [](const TileRequest&) { return TileReply::ok(tileFile()).ending(End::hold); };
        show();
    }
    /// Pumps until the condition holds; false after a minute.
    static bool pumpUntil(const std::function<bool()>& condition) {
        const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(1);
        while (!condition()) {
            if (std::chrono::steady_clock::now() > end) {
                return false;
            }
            RunLoop::main().wait(0.05);
            RunLoop::main().pump();
        }
        return true;
    }
    static bool decodersAreIdle() {
        return pumpUntil([] { return WorkerPool::decoders().pendingCount() == 0; });
    }
    bool answered() {
        return pumpUntil([this] {
            return layer->tileCounts().wanted > 0 &&
                   layer->tileCounts().answered == layer->tileCounts().wanted;
        });
    }
    void moveBy(double offset) {
        auto camera = engine->currentCamera();
        camera.target.x += offset;
        engine->internalSetCamera(camera);
        step(2);
    }
    std::size_t drawnCount() {
        step();
        return lastFrame.list->items.size();
    }
    void expectEachAskedOnce() const {
        for (const auto& [tile, count] : asked) {
            EXPECT_EQ(count, 1) << tile.x << ", " << tile.y;
        }
    }

    const NetworkSettings before = networkSettings();
    apps::ScratchFolder folder;
    std::function<TileReply(const TileRequest&)> reply = [](const TileRequest&) {
        return TileReply::ok(tileFile());
    };
    TileServer server{[this](const TileRequest& request) { return reply(request); }};
    std::map<TileIndex, int> asked;
    std::shared_ptr<MapTileNode> layer = MapTileNode::make();
};

TEST_F(UrlTileLayer, aTileThatComesBackWhileItIsLoadedIsNotAskedForAgain) {
    showWithHeldReplies();
    ASSERT_TRUE(server.waitForRequests(6));
    moveBy(1e6);
    moveBy(-1e6);
    // The application's own answers are none.
    const auto [x, y, zoom] = asked.begin()->first;
    layer->provideTileForX(x, y, zoom, plainImage(1, 1));
    EXPECT_EQ(layer->tileCounts().answered, 0U);
    server.release();
    ASSERT_TRUE(answered());
    EXPECT_EQ(drawnCount(), layer->tileCounts().wanted);
    expectEachAskedOnce();
}

TEST_F(UrlTileLayer, tilesThatAShutDownDroppedAreAskedForAgainWhereTheyAreInView) {
    showWithHeldReplies();
    ASSERT_TRUE(decodersAreIdle());
    moveBy(1e6);
    ASSERT_TRUE(decodersAreIdle());
    shutDownNetwork();
    server.release();
    RunLoop::main().drain();
    EXPECT_EQ(layer->tileCounts().answered, 0U);
    for (const double offset : {0.0, -1e6}) {
        moveBy(offset);
        ASSERT_TRUE(answered()) << offset;
        EXPECT_EQ(drawnCount(), layer->tileCounts().wanted) << offset;
    }
}

TEST_F(UrlTileLayer, tellsWhatFailedAndWhatIsNotThereAndWhyAndRemembersNoneOfIt) {
    const std::string cut = tileFile().substr(0, tileFile().size() - 20);
    const struct {
        TileReply reply;
        bool isFailure;
        const char* reason;
    } cases[] = {
        {TileReply::of("404 Not Found", tileFile()), false, "status 404"},
        {TileReply::of("410 Gone", ""), false, "status 410"},
        {{"HTTP/1.1 204 No Content\r\n\r\n"}, false, "status 204"},
        {TileReply::of("401 Who are you", ""), true, "status 401"},
        {TileReply::of("503 Busy", "", "Retry-After: 600\r\n"), true, "status 503"},
        {TileReply::ok("<html>Please log in</html>"), true, "no image: is no PNG"},
        {TileReply::ok(cut), true, "no image: "},
    };
    for (const auto& [answer, isFailure, reason] : cases) {
        reply = [&answer = answer](const TileRequest&) { return answer; };
        asked.clear();
        show();
        ASSERT_TRUE(answered()) << reason;
        const TileCounts counts = layer->tileCounts();
        EXPECT_EQ(counts.failed, isFailure ? counts.wanted : 0) << reason;
        EXPECT_EQ(counts.absent, isFailure ? 0 : counts.wanted) << reason;
        EXPECT_TRUE(counts.reason.starts_with(reason)) << counts.reason;
        EXPECT_EQ(drawnCount(), 0U);
        step(2);
        expectEachAskedOnce();
        layer->setMap(nullptr);
    }
    reply = [](const TileRequest&) { return TileReply::ok(tileFile()); };
    show();
    ASSERT_TRUE(answered());
    EXPECT_EQ(drawnCount(), layer->tileCounts().wanted) << "the outage stayed in the cache";
}

TEST_F(UrlTileLayer, beyondTheWorldNothingIsAskedFor) {
    auto corner = engine->currentCamera();
    corner.target = {1000, 1000};
    engine->internalSetCamera(corner);
    show();
    ASSERT_TRUE(answered());
    EXPECT_LT(asked.size(), layer->tileCounts().wanted);
    EXPECT_FALSE(asked.empty());
    for (const auto& [tile, count] : asked) {
        EXPECT_TRUE(isInWorld(tile)) << tile.x << ", " << tile.y;
    }
}

TEST_F(UrlTileLayer, aConstructorMayThrowOrKnowNothing) {
    int calls = 0;
    layer->setImageUrlConstructor([&](auto, auto, auto) -> std::optional<URL> {
        if (++calls % 2 == 0) {
            throw std::runtime_error("no");
        }
        return std::nullopt;
    });
    show();
    EXPECT_GT(calls, 4);
    EXPECT_EQ(takeFaults().size(), static_cast<std::size_t>(calls / 2));
    RunLoop::main().drain();
    EXPECT_EQ(layer->tileCounts().answered, 0U);
}

TEST_F(UrlTileLayer, answersThatComeAfterTheEndOfLayerAndEngineAreDropped) {
    showWithHeldReplies();
    // Every request has left the decoders: what waits there does not outlive its layer.
    ASSERT_TRUE(decodersAreIdle());
    const std::size_t tiles = asked.size();
    const std::weak_ptr<MapTileNode> weak = layer;
    layer.reset();
    lastFrame = {};
    engine = makeEngine();
    RunLoop::main().drain();
    EXPECT_TRUE(weak.expired());
    server.release();
    ASSERT_TRUE(server.waitForRequests(tiles)) << "what was asked for is loaded all the same";
    ASSERT_TRUE(decodersAreIdle());
}

TEST_F(UrlTileLayer, answersFromBeforeItWasClearedDoNotReachTheLayer) {
    showWithHeldReplies();
    ASSERT_TRUE(server.waitForRequests(6));
    layer->setMap(nullptr);
    layer->setImageUrlConstructor([](auto, auto, auto) { return std::nullopt; });
    show();
    server.release();
    ASSERT_TRUE(server.waitForRequests(asked.size()));
    ASSERT_TRUE(decodersAreIdle());
    EXPECT_EQ(layer->tileCounts().answered, 0U);
    shutDownNetwork();
    RunLoop::main().drain();
}

TEST_F(UrlTileLayer, itsImageCacheForgetsWhatIsNotShownAndNothingElse) {
    const auto visit = [this](double offset) {
        moveBy(offset);
        ASSERT_TRUE(answered());
        EXPECT_EQ(drawnCount(), layer->tileCounts().wanted);
    };
    const auto askedTwice = [this] {
        return std::count_if(asked.begin(), asked.end(), [](const auto& entry) { return entry.second > 1; });
    };
    show();
    ASSERT_TRUE(answered());
    visit(1e6);
    visit(-1e6);
    EXPECT_EQ(askedTwice(), 0);
    layer->setImageCacheLimit(1);
    const std::size_t shown = layer->tileCounts().wanted;
    visit(1e6);
    EXPECT_EQ(askedTwice(), static_cast<std::ptrdiff_t>(shown));
    // Two tiles to the west, what stays in view is older than what has gone, and is kept all the same.
    asked.clear();
    visit(-2 * 256 * 32);
    layer->setImageCacheLimit(std::nullopt);
    const std::size_t asksInView = asked.size();
    EXPECT_LT(asksInView, layer->tileCounts().wanted);
    visit(1e6);
    asked.clear();
    visit(-1e6);
    EXPECT_TRUE(asked.empty());
}

TEST(TileImageCache, keepsWhatWasTouchedLastAndItsSumOfBytes) {
    TileImageCache cache;
    const auto image = UIImage::withPixels(10, 10, std::vector<std::uint8_t>(400));
    cache.insert({0, 0, 0}, {});
    const std::size_t none = cache.byteCount();
    for (int i = 1; i <= 10; ++i) {
        cache.insert({i, 0, 0}, {image, false, {}});
        cache.insert({i, 0, 0}, {image, false, {}});
    }
    const std::size_t each = (cache.byteCount() - none) / 10;
    EXPECT_GE(each, 400U * 4 / 3);
    cache.setLimit(4 * each);
    cache.touch({2, 0, 0});
    ASSERT_NE(cache.find({3, 0, 0}), nullptr);
    cache.trim(0);
    for (const int kept : {2, 3, 9, 10}) {
        EXPECT_NE(cache.find({kept, 0, 0}), nullptr) << kept;
    }
    EXPECT_EQ(cache.byteCount(), 4 * each);
    cache.setLimit(0);
    cache.trim(3);
    EXPECT_EQ(cache.byteCount(), 3 * each);
    cache.clear();
    EXPECT_EQ(cache.byteCount(), 0U);
}

} // namespace trelmix::url_tile_layer_test
