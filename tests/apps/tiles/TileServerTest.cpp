#include "common/tiles/TileServer.h"

#include "apps/tiles/FakeStore.h"

#include <Trelmix/TrelmixMapEngineFactory.h>

#include <atomic>
#include <gtest/gtest.h>

using namespace trelmix;
using namespace trelmix::apps;

namespace {

/// Has every tile, of senseless bytes, and tells how often it was asked.
class CountingStore : public FakeStore {
public:
    explicit CountingStore(std::atomic<int>& count) : _count(count) {}
    Result<std::optional<TileBytes>> tile(const TileIndex&) const override {
        ++_count;
        return std::optional(TileBytes(9));
    }

private:
    std::atomic<int>& _count;
};

class GreedyStore : public FakeStore {
public:
    Result<std::optional<TileBytes>> tile(const TileIndex&) const override { throw std::bad_alloc(); }
};

} // namespace

TEST(TileServer, answersEveryRequestOnceAndEndsWhileRequestsWait) {
    const auto known = TrelmixMapEngineFactory::createMapTilesNode();
    const auto unknown = TrelmixMapEngineFactory::createMapTilesNode();
    for (int round = 0; round < 50; ++round) {
        std::atomic<int> count = 0;
        TileServer server(3);
        server.serve(known, std::make_shared<TileSource>(std::make_unique<CountingStore>(count)));
        std::vector<std::thread> askers;
        for (int asker = 0; asker < 2; ++asker) {
            askers.emplace_back([&] {
                for (int i = 0; i < 50; ++i) {
                    server.tileRequestedForX(i, i, 20, known);
                    server.tileRequestedForX(i, i, 20, unknown);
                }
            });
        }
        for (std::thread& asker : askers) {
            asker.join();
        }
        if (round == 0) {
            ASSERT_TRUE(server.waitUntilAnswered(std::chrono::minutes(5)));
            EXPECT_EQ(count, 100);
        }
    }
    EXPECT_EQ(known.use_count(), 1);
}

TEST(TileServer, handsTheEndOfMemoryToWhoeverAsks) {
    const auto layer = TrelmixMapEngineFactory::createMapTilesNode();
    TileServer server(2);
    server.rethrowFault();
    server.serve(layer, std::make_shared<TileSource>(std::make_unique<GreedyStore>()));
    server.tileRequestedForX(0, 0, 0, layer);
    ASSERT_TRUE(server.waitUntilAnswered(std::chrono::minutes(5)));
    EXPECT_THROW(server.rethrowFault(), std::bad_alloc);
}
