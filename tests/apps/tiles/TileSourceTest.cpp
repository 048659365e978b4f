#include "common/tiles/TileSource.h"

#include "apps/tiles/FakeStore.h"
#include "common/tiles/TileDirectory.h"
#include "support/Pixels.h"
#include "support/ScratchFolder.h"

#include <gtest/gtest.h>

using namespace trelmix;
using namespace trelmix::apps;

TEST(TileSource, enlargedPartsKeepEveryPointOfTheGroundAtItsPlaceAlsoAcrossTheEdgeOfTwoAncestors) {
    // Red grows along x and green along y, so a pixel's colour tells which ground it shows.
    auto store = std::make_unique<FakeStore>();
    for (const int column : {0, 1}) {
        for (const int row : {0, 1}) {
            const auto ground = painted(16, 16, [=](int x, int y) {
                return std::array{(column * 16 + x) * 8, (row * 16 + y) * 8, 0};
            });
            store->add({column, row, 1}, ground->pngData());
        }
    }
    const TileSource source(std::move(store));
    for (const std::int64_t levels : {1, 2, 7}) {
        const std::int64_t middle = std::int64_t{1} << levels, last = 2 * middle - 1;
        const std::pair<std::int64_t, std::int64_t> places[] = {
            {middle - 1, middle}, {middle, middle - 1}, {0, 0}, {last, last}};
        for (const auto& [x, y] : places) {
            const auto image = source.imageFor({x, y, levels + 1});
            ASSERT_TRUE(image);
            for (int i = 0; i < 16; ++i) {
                const auto ground = [&](std::int64_t index) {
                    const double place =
                        (static_cast<double>(index) * 16 + i + 0.5) / static_cast<double>(middle) - 0.5;
                    return std::clamp(place, 0.0, 31.0) * 8;
                };
                EXPECT_NEAR(pixelAt(*image, i, 3)[0], ground(x), 0.51);
                EXPECT_NEAR(pixelAt(*image, 3, i)[1], ground(y), 0.51);
            }
        }
    }
}

TEST(TileSource, theNearestAncestorStandsInAndABrokenTileLeavesAGap) {
    const auto flat = [](int shade) { return plainImage(16, 16, std::array{shade, 0, 0}); };
    auto store = std::make_unique<FakeStore>();
    store->add({0, 0, 0}, flat(10)->pngData());
    store->add({1, 1, 1}, flat(20)->pngData());
    store->add({0, 1, 1}, TileBytes(40, std::byte{7}));
    const TileSource source(std::move(store));
    const std::pair<TileIndex, int> shades[] = {
        {{0, 0, 0}, 10}, {{1, 1, 1}, 20}, {{0, 0, 1}, 10}, {{7, 7, 3}, 20}, {{0, 0, 30}, 10}};
    for (const auto& [tile, shade] : shades) {
        const auto image = source.imageFor(tile);
        ASSERT_TRUE(image);
        EXPECT_EQ(pixelAt(*image, 8, 8)[0], shade);
    }
    EXPECT_FALSE(source.imageFor({0, 1, 1}));
    EXPECT_FALSE(source.imageFor({1, 7, 3})) << "below the broken tile";
    EXPECT_EQ(source.faultCount(), 2U);
    EXPECT_TRUE(source.firstFault().starts_with("tile 1/0/1: ")) << source.firstFault();
    for (const TileIndex outside :
         {TileIndex{-1, 0, 0}, {0, 1, 0}, {2, 0, 1}, {0, 0, -1}, {0, 0, 63}, {0, 0, INT64_MAX}}) {
        EXPECT_FALSE(source.imageFor(outside));
    }
}

TEST(TileDirectory, findsFilesByTheirTemplateAndWhatTheyCover) {
    const ScratchFolder folder;
    folder.write("z2/3-1.png", "north east");
    folder.write("z1/0-0.png", "coarse");
    folder.write("z2/3-9.png", "outside the world");
    folder.write("z2/03-2.png", "not how the template writes it");
    folder.write("z1/1-1.png/tile", "in a folder that is named like one");
    const TileDirectory tiles(folder.path("z{z}/{x}-{y}.png"));
    EXPECT_TRUE(tiles.tile({3, 1, 2})->has_value());
    for (const TileIndex none : {TileIndex{3, 2, 2}, {3, 9, 2}, {1, 1, 1}}) {
        ASSERT_TRUE(tiles.tile(none));
        EXPECT_FALSE(tiles.tile(none)->has_value());
    }
    const auto bounds = tiles.bounds();
    ASSERT_TRUE(bounds);
    EXPECT_DOUBLE_EQ(bounds->southWest.longitude, 90);
    EXPECT_DOUBLE_EQ(bounds->northEast.longitude, 180);
    EXPECT_NEAR(bounds->southWest.latitude, 0, 1e-9);
    EXPECT_NEAR(bounds->northEast.latitude, 66.51326044311186, 1e-9);
}
