#include "Engine/CameraBounds.h"

#include "Geo/GeoUtils.h"

#include <gtest/gtest.h>

namespace trelmix::camera_bounds_test {

constexpr double kWorld = 256.0 * ZOOMLEVEL_MAX_SCALE;

TEST(CameraBounds, theTargetGoesToTheNearestPointOfTheRectangle) {
    const Coordinate northEast{54.36, 11.22}, southWest{54.34, 11.18};
    const WorldMapPoint ne = GeoUtils::scenePoint(northEast), sw = GeoUtils::scenePoint(southWest);
    const WorldMapPoint middle{(ne.x + sw.x) / 2, (ne.y + sw.y) / 2};
    struct Case {
        WorldMapPoint target, expected;
    };
    for (const Case& c : {Case{middle, middle}, Case{{middle.x, sw.y + 600}, {middle.x, sw.y}},
                          Case{{sw.x - 300, middle.y}, {sw.x, middle.y}}, Case{{ne.x + 500, ne.y - 100}, ne},
                          // A hair outside a long edge stays there and does not jump to a short one.
                          Case{{ne.x - 9, ne.y - 0.001}, {ne.x - 9, ne.y}}}) {
        EXPECT_EQ(nearestPointInBounds(c.target, northEast, southWest), c.expected);
        EXPECT_EQ(nearestPointInBounds(c.target, northEast, northEast), ne) << "bounds of no extent";
    }
}

TEST(CameraBounds, aCornerAtAPoleLiesOnTheEdgeOfTheMap) {
    const Coordinate northEast{90, 11}, southWest{-90, 10};
    const double west = GeoUtils::scenePoint({0, 10}).x, east = GeoUtils::scenePoint({0, 11}).x;
    EXPECT_EQ(nearestPointInBounds({0, kWorld / 3}, northEast, southWest), (WorldMapPoint{west, kWorld / 3}));
    EXPECT_EQ(nearestPointInBounds({kWorld, -5}, northEast, southWest), (WorldMapPoint{east, 0}));
    EXPECT_EQ(nearestPointInBounds({0, 2 * kWorld}, northEast, southWest), (WorldMapPoint{west, kWorld}));
}

} // namespace trelmix::camera_bounds_test
