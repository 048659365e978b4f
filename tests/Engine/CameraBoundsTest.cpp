#include "Engine/CameraBounds.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace trelmix {
namespace {

constexpr WorldMapPoint kNorthEast{1000, 100};
constexpr WorldMapPoint kSouthWest{200, 900};

TEST(CameraBounds, theTargetGoesToTheNearestPointOfTheRectangle) {
    struct Case {
        WorldMapPoint target;
        WorldMapPoint expected;
    };
    for (const Case& c :
         {Case{{500, 500}, {500, 500}}, Case{{500, 1500}, {500, 900}}, Case{{-100, 400}, {200, 400}},
          Case{{1500, 0}, {1000, 100}}, Case{{1000, 950}, {1000, 900}},
          // A hair outside a long edge stays there and does not jump to a short one.
          Case{{600, 99.999}, {600, 100}}}) {
        const WorldMapPoint moved = nearestPointInBounds(c.target, kNorthEast, kSouthWest);
        EXPECT_EQ(moved.x, c.expected.x);
        EXPECT_EQ(moved.y, c.expected.y);
    }
}

TEST(CameraBounds, boundsOfNoExtentHoldTheTargetAndBoundsWithoutAPlaceDoNotCount) {
    const WorldMapPoint point{7, 8};
    EXPECT_EQ(nearestPointInBounds({1e9, -3}, point, point).x, 7);
    EXPECT_EQ(nearestPointInBounds({1e9, -3}, point, point).y, 8);
    const double none = std::numeric_limits<double>::infinity();
    EXPECT_EQ(nearestPointInBounds({1e9, -3}, {1000, none}, kSouthWest).x, 1e9);
}

} // namespace
} // namespace trelmix
