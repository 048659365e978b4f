#include "common/tiles/TileServer.h"

#include "apps/tiles/FakeStore.h"

#include <atomic>
#include <gtest/gtest.h>

using namespace trelmix;
using namespace trelmix::apps;

namespace {

/// Only counts its answers.
class CountingLayer final : public TrelmixMapTileLayer {
public:
    std::atomic<int> answers{0};

    void provideTileForX(std::int64_t, std::int64_t, std::int64_t, std::shared_ptr<const UIImage>) override {
        ++answers;
    }
    bool synchronousLayer() const override { return false; }
    void setSynchronousLayer(bool) override {}
    bool imageUrlLayer() const override { return false; }
    void setImageUrlLayer(bool) override {}
    ImageUrlConstructor imageUrlConstructor() const override { return {}; }
    void setImageUrlConstructor(ImageUrlConstructor) override {}
    std::optional<std::size_t> imageCacheLimit() const override { return {}; }
    void setImageCacheLimit(std::optional<std::size_t>) override {}
    TileCounts tileCounts() const override { return {}; }
    std::shared_ptr<TrelmixMapEngine> map() const override { return nullptr; }
    void setMap(std::shared_ptr<TrelmixMapEngine>) override {}
    std::any userInfo() const override { return {}; }
    void setUserInfo(std::any) override {}
    std::int64_t zIndex() const override { return 0; }
    void setZIndex(std::int64_t) override {}
    bool visible() const override { return true; }
    void setVisible(bool) override {}
    double opacity() const override { return 1; }
    void setOpacity(double) override {}
    bool tappable() const override { return false; }
    void setTappable(bool) override {}
    std::string description() const override { return {}; }
};

class GreedyStore final : public FakeStore {
public:
    Result<std::optional<TileBytes>> tile(const TileIndex&) const override { throw std::bad_alloc(); }
};

} // namespace

TEST(TileServer, answersEveryRequestOnceAlsoOfLayersItDoesNotKnow) {
    const auto known = std::make_shared<CountingLayer>();
    const auto unknown = std::make_shared<CountingLayer>();
    TileServer server(3);
    server.serve(known, std::make_shared<TileSource>(std::make_unique<FakeStore>()));
    std::vector<std::jthread> askers;
    for (int asker = 0; asker < 2; ++asker) {
        askers.emplace_back([&] {
            for (int i = 0; i < 500; ++i) {
                server.tileRequestedForX(i, -i, i % 40 - 4, known);
                server.tileRequestedForX(i, i, i, unknown);
            }
        });
    }
    askers.clear();
    ASSERT_TRUE(server.waitUntilAnswered(std::chrono::minutes(5)));
    EXPECT_EQ(known->answers, 1000);
    EXPECT_EQ(unknown->answers, 1000);
}

TEST(TileServer, endsWhileRequestsWait) {
    const auto layer = std::make_shared<CountingLayer>();
    for (int round = 0; round < 50; ++round) {
        TileServer server(2);
        server.serve(layer, std::make_shared<TileSource>(std::make_unique<FakeStore>()));
        for (int i = 0; i < 200; ++i) {
            server.tileRequestedForX(i, i, 20, layer);
        }
    }
    EXPECT_EQ(layer.use_count(), 1);
    EXPECT_LE(layer->answers, 50 * 200);
}

TEST(TileServer, handsTheEndOfMemoryToWhoeverAsks) {
    const auto layer = std::make_shared<CountingLayer>();
    TileServer server(2);
    server.rethrowFault();
    server.serve(layer, std::make_shared<TileSource>(std::make_unique<GreedyStore>()));
    server.tileRequestedForX(0, 0, 0, layer);
    ASSERT_TRUE(server.waitUntilAnswered(std::chrono::minutes(5)));
    EXPECT_THROW(server.rethrowFault(), std::bad_alloc);
}
