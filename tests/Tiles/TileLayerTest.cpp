#include "Tiles/MapTileNode.h"

#include "support/DelegateLog.h"
#include "support/EngineFixture.h"
#include "support/Pixels.h"

#include <algorithm>
#include <functional>
#include <map>
#include <set>
#include <stdexcept>
#include <thread>

namespace trelmix::tile_layer_test {

constexpr CLLocationCoordinate2D kPlace{43.7362, 7.4245};

std::shared_ptr<const UIImage> picture() {
    static const auto image = plainImage(2, 2);
    return image;
}

/// Answers from the questions it has noted, or at once.
class TileDelegate : public TrelmixMapEngineDelegate {
public:
    std::vector<TileIndex> asked;
    std::function<std::shared_ptr<const UIImage>(TileIndex)> answerAtOnce;
    std::function<void(TileIndex, const std::shared_ptr<TrelmixMapTileLayer>&)> onRequest;

    std::shared_ptr<const UIImage> tileForX(std::int64_t x, std::int64_t y, std::int64_t zoom) override {
        asked.push_back({x, y, zoom});
        return answerAtOnce ? answerAtOnce({x, y, zoom}) : nullptr;
    }
    void tileRequestedForX(std::int64_t x, std::int64_t y, std::int64_t zoom,
                           const std::shared_ptr<TrelmixMapTileLayer>& layer) override {
        asked.push_back({x, y, zoom});
        if (onRequest) {
            onRequest({x, y, zoom}, layer);
        }
    }
};

class TileLayer : public EngineFixture {
protected:
    void SetUp() override {
        EngineFixture::SetUp();
        engine->setDelegate(delegate);
        engine->initialiseWithTarget(kPlace, 17);
    }
    void show() { layer->setMap(engine); }
    void answerAll(const std::shared_ptr<const UIImage>& image) {
        for (const TileIndex& key : std::exchange(delegate->asked, {})) {
            layer->provideTileForX(key.x, key.y, key.zoom, image);
        }
    }
    void moveBy(double mapPointsAtTileZoom) {
        auto change = engine->currentCamera();
        change.target.x += mapPointsAtTileZoom * 32;
        engine->internalSetCamera(change);
    }
    std::ptrdiff_t drawnCount(std::int64_t zoom) const {
        const auto& items = lastFrame.list->items;
        return std::count_if(items.begin(), items.end(),
                             [zoom](const auto& item) { return item->renderingOrder == zoom - 100; });
    }
    bool isDrawn(std::int64_t zoom) const { return drawnCount(zoom) > 0; }
    std::shared_ptr<TileDelegate> delegate = std::make_shared<TileDelegate>();
    std::shared_ptr<MapTileNode> layer = MapTileNode::make();
};

TEST_F(TileLayer, asksForEachWantedTileOnceAndDrawsWhatIsAnsweredThenOrInsideTheQuestion) {
    for (const bool isAnsweredInside : {false, true}) {
        if (isAnsweredInside) {
            delegate->onRequest = [](TileIndex key, const auto& asking) {
                asking->provideTileForX(key.x, key.y, key.zoom, picture());
            };
        }
        show();
        step(2);
        const std::size_t wanted = layer->tileCounts().wanted;
        EXPECT_EQ(delegate->asked.size(), wanted);
        EXPECT_EQ(layer->tileCounts().answered, isAnsweredInside ? wanted : 0U);
        answerAll(picture());
        EXPECT_EQ(layer->tileCounts().answered, wanted);
        step(2);
        EXPECT_EQ(lastFrame.list->items.size(), wanted);
        EXPECT_TRUE(delegate->asked.empty());
        layer->setMap(nullptr);
    }
}

TEST_F(TileLayer, checksAtMostOnceASecondAndOnlyAfterEnoughMovement) {
    show();
    step();
    const auto asksAfter = [this](double seconds, const std::function<void()>& move) {
        delegate->asked.clear();
        move();
        step(seconds);
        return !delegate->asked.empty();
    };
    EXPECT_FALSE(asksAfter(0.5, [this] { moveBy(5000); })) << "within a second";
    EXPECT_TRUE(asksAfter(0.6, [] {}));
    EXPECT_FALSE(asksAfter(1.5, [this] { moveBy(150); }));
    EXPECT_TRUE(asksAfter(1.5, [this] { moveBy(256); }));
    EXPECT_FALSE(asksAfter(1.5, [this] { engine->setCameraWithRotation(0, 0, 17.3F, false); }));
    EXPECT_TRUE(asksAfter(1.5, [this] { engine->setCameraWithRotation(0, 0, 17.6F, false); }))
        << "the rounded zoom changed";
}

TEST_F(TileLayer, neighbouringTilesShareTheirCornersToTheLastBit) {
    delegate->answerAtOnce = [](TileIndex) { return picture(); };
    layer->setSynchronousLayer(true);
    show();
    step();
    std::map<std::pair<double, double>, int> corners;
    for (const auto& item : lastFrame.list->items) {
        for (const Vector3d& corner : item->corners) {
            ++corners[{corner.x, corner.y}];
        }
    }
    // A grid of c x r tiles has (c + 1)(r + 1) corners and no more.
    const auto tiles = static_cast<double>(lastFrame.list->items.size());
    EXPECT_LT(static_cast<double>(corners.size()), tiles * 1.6 + 4);
    EXPECT_GE(std::count_if(corners.begin(), corners.end(), [](const auto& c) { return c.second == 4; }), 4);
}

TEST_F(TileLayer, aSynchronousLayerWithoutImagesAsksOnceAndShowsNothing) {
    layer->setSynchronousLayer(true);
    show();
    step();
    const std::size_t asked = delegate->asked.size();
    EXPECT_EQ(layer->tileCounts().answered, asked);
    engine->setCameraWithRotation(0, 0, 18, false);
    step(1.5);
    engine->setCameraWithRotation(0, 0, 17, false);
    step(1.5);
    const std::set<TileIndex> distinct(delegate->asked.begin(), delegate->asked.end());
    EXPECT_EQ(distinct.size(), delegate->asked.size());
    EXPECT_TRUE(lastFrame.list->items.empty());
}

TEST_F(TileLayer, whileALevelLoadsTheOldOneStaysAndGoesOnceItIsCovered) {
    show();
    step();
    answerAll(picture());
    step(1.5);
    engine->setCameraWithRotation(0, 0, 18, false);
    step(1.5);
    EXPECT_TRUE(isDrawn(17) && !isDrawn(18));
    answerAll(picture());
    step(0.5);
    EXPECT_TRUE(isDrawn(17) && isDrawn(18));
    const auto before = drawnCount(17);
    step(1.1);
    step();
    EXPECT_LT(drawnCount(17), before) << "what lies outside the view stays";
    engine->setCameraWithRotation(0, 0, 17, false);
    step(1.5);
    step(1.5);
    step();
    EXPECT_TRUE(isDrawn(17) && !isDrawn(18)) << "cached parents cover finer tiles";
}

TEST_F(TileLayer, answersForTilesThatWentAreDroppedAndASecondAnswerReplacesTheFirst) {
    show();
    step();
    const TileIndex key = delegate->asked.front();
    layer->provideTileForX(key.x, key.y, key.zoom, picture());
    const auto other = plainImage(1, 1, {1, 2, 3, 255});
    layer->provideTileForX(key.x, key.y, key.zoom, other);
    layer->provideTileForX(key.x + 1000, key.y, key.zoom, other);
    layer->provideTileForX(key.x, key.y, key.zoom + 1, other);
    step();
    ASSERT_EQ(lastFrame.list->items.size(), 1U);
    EXPECT_EQ(lastFrame.list->items.front()->image, other);
}

TEST_F(TileLayer, answersFromAnotherThreadArriveWithTheMainQueue) {
    show();
    step();
    const TileIndex key = delegate->asked.front();
    std::thread([&] { layer->provideTileForX(key.x, key.y, key.zoom, picture()); }).join();
    EXPECT_EQ(layer->tileCounts().answered, 0U);
    RunLoop::main().pump();
    EXPECT_EQ(layer->tileCounts().answered, 1U);
    std::thread([&] { layer->provideTileForX(key.x, key.y, key.zoom, nullptr); }).join();
    layer->setMap(nullptr);
    layer.reset();
    RunLoop::main().pump();
}

TEST_F(TileLayer, aDelegateThatThrowsLeavesGapsAndNoMore) {
    delegate->answerAtOnce = [](TileIndex key) {
        return key.x % 2 == 0 ? picture() : throw std::runtime_error("no");
    };
    layer->setSynchronousLayer(true);
    show();
    step();
    EXPECT_EQ(layer->tileCounts().answered, layer->tileCounts().wanted);
    EXPECT_EQ(takeFaults().size(), layer->tileCounts().wanted - lastFrame.list->items.size());
}

TEST_F(TileLayer, aLayerThatIsTakenAwayWhileItAsksAsksNoMore) {
    delegate->onRequest = [](TileIndex, const auto& asking) { asking->setMap(nullptr); };
    show();
    step();
    EXPECT_EQ(delegate->asked.size(), 1U);
    EXPECT_TRUE(lastFrame.list->items.empty());
}

TEST_F(TileLayer, clearedWhileACleanUpIsPendingItCleansUpAgainLater) {
    show();
    step();
    answerAll(picture());
    layer->setMap(engine);
    step(1.5);
    answerAll(picture());
    engine->setCameraWithRotation(0, 0, 18, false);
    step(1.5);
    const auto before = drawnCount(17);
    answerAll(picture());
    step(1.5);
    step();
    EXPECT_LT(drawnCount(17), before);
}

} // namespace trelmix::tile_layer_test
