#include "Tiles/TileCoverage.h"

#include <gtest/gtest.h>

namespace trelmix::tile_coverage_test {

constexpr TileState kAsked{false, false}, kNone{true, false}, kImage{true, true};

TEST(TileCoverage, aCoarseTileGoesOnceAllThatTheViewNeedsOfItsGroundIsAnswered) {
    const struct {
        const char* what;
        TileState lastChild, otherChildren;
        TileBox box;
        std::vector<TileIndex> beyondBox;
        bool isCovered;
    } cases[] = {
        {"all there", kImage, kNone, {2, 3, 2, 3}, {}, true},
        {"without any image", kNone, kNone, {2, 3, 2, 3}, {}, false},
        {"one is on its way", kAsked, kImage, {2, 3, 2, 3}, {}, false},
        {"one that is not needed is on its way", kAsked, kImage, {2, 3, 2, 2}, {{2, 3, 18}}, true},
        {"one is needed beyond the box", kAsked, kImage, {2, 3, 2, 2}, {{3, 3, 18}}, false},
        {"nothing of it is needed", kImage, kImage, {7, 8, 7, 8}, {}, false},
    };
    for (const auto& c : cases) {
        const TileIndex coarse{1, 1, 17};
        const TileLevels levels = {{17, {{coarse, kImage}}},
                                   {18,
                                    {{{2, 2, 18}, c.otherChildren},
                                     {{2, 3, 18}, c.otherChildren},
                                     {{3, 2, 18}, c.otherChildren},
                                     {{3, 3, 18}, c.lastChild}}}};
        const std::vector<TileIndex> expected(c.isCovered ? 1 : 0, coarse);
        EXPECT_EQ(coveredTiles(levels, 18, {c.box, 18, c.beyondBox}), expected) << c.what;
        // With a coarser zoom current they do, too, but while that is the finest nothing else does.
        EXPECT_EQ(coveredTiles(levels, 16, {c.box, 18, c.beyondBox}), expected) << c.what;
        EXPECT_TRUE(coveredTiles({{17, {{coarse, kImage}}}, {19, {}}}, 19, {c.box, 18, {}}).empty());
    }
}

TEST(TileCoverage, aFineTileGoesOnceTheCurrentOneThatHoldsItIsAnswered) {
    const TileIndex fine{-5, 7, 20};
    for (const auto& [state, isCovered] : {std::pair{kAsked, false}, {kNone, true}, {kImage, true}}) {
        const TileLevels levels = {{18, {{{-2, 1, 18}, state}}}, {20, {{fine, kImage}}}};
        EXPECT_EQ(coveredTiles(levels, 18, {}).size(), isCovered ? 1U : 0U);
    }
    EXPECT_TRUE(coveredTiles({{18, {{{-1, 1, 18}, kImage}}}, {20, {{fine, kImage}}}}, 18, {}).empty());
}

} // namespace trelmix::tile_coverage_test
