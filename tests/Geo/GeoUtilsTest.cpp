#include "Geo/GeoUtils.h"
#include "support/NotFinite.h"

#include <Trelmix/TrelmixMapEngineGeoUtils.h>

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>
#include <numbers>
#include <random>

namespace trelmix::geo_utils_test {

using std::numbers::pi;

double foldedStepByStep(double longitude) {
    while (longitude < -180.0) {
        longitude += 180.0;
    }
    while (longitude > 180.0) {
        longitude -= 180.0;
    }
    return longitude;
}

TEST(MapPlane, theWorldIsASquareOf256PointsAtZoomZero) {
    EXPECT_DOUBLE_EQ(GeoUtils::convertLongToMapX(-180, 0), 0);
    EXPECT_DOUBLE_EQ(GeoUtils::convertLongToMapX(0, 0), 128);
    EXPECT_DOUBLE_EQ(GeoUtils::convertLongToMapX(180, 0), 256);
    EXPECT_DOUBLE_EQ(GeoUtils::convertLatToMapY(0, 0), 128);
    EXPECT_NEAR(GeoUtils::convertLatToMapY(85.05112877980659, 0), 0, 1e-9);
    EXPECT_NEAR(GeoUtils::convertLatToMapY(-85.05112877980659, 0), 256, 1e-9);
    EXPECT_DOUBLE_EQ(GeoUtils::convertLatToMapY(0, 22), 536870912);
}

TEST(MapPlane, coordinatesSurviveTheTripAtEveryZoom) {
    std::mt19937_64 random(1);
    std::uniform_real_distribution<double> latitude(-85, 85), longitude(-180, 180);
    for (float zoom = -2; zoom <= 23; zoom += 0.37F) {
        for (int i = 0; i < 50; ++i) {
            const Coordinate place{latitude(random), longitude(random)};
            const Coordinate back =
                GeoUtils::convertMapToCoordinate(GeoUtils::convertCoordinateToMap(place, zoom), zoom);
            EXPECT_NEAR(back.lat, place.lat, 1e-11);
            EXPECT_NEAR(back.lon, place.lon, 1e-11);
        }
    }
}

TEST(MapPlane, longitudesOutsideTheWorldComeBackByStepsOf180) {
    EXPECT_EQ(GeoUtils::convertMapXToLong(512, 0), 180);
    std::mt19937_64 random(3);
    std::uniform_real_distribution<double> x(-3000, 3000);
    for (int i = 0; i < 10000; ++i) {
        const double mapX = x(random), raw = mapX * HALF_DIM_PI_INV / DEG_TO_RAD_CONST - 180.0;
        ASSERT_EQ(GeoUtils::convertMapXToLong(mapX, 0), foldedStepByStep(raw)) << mapX;
    }
}

TEST(MapPlane, endlesslyDistantPointsNeitherHangNorLeaveTheWorld) {
    for (const double x : {1e12, -1e15, 1e18, -1e300, std::numeric_limits<double>::max()}) {
        EXPECT_LE(std::abs(GeoUtils::convertMapXToLong(x, 22)), 180);
    }
    for (const double x : {kInfinity, -kInfinity, kNaN}) {
        EXPECT_TRUE(std::isnan(GeoUtils::convertMapXToLong(x, 0)));
    }
    EXPECT_TRUE(std::isnan(GeoUtils::convertMapXToLong(1, std::numeric_limits<float>::quiet_NaN())));
}

TEST(MapPlane, theEasternEdgeStaysInTheEastAtFractionalZooms) {
    for (float zoom = 0; zoom <= 23; zoom += 0.01F) {
        const double edge = 256.0 * std::exp2(static_cast<double>(zoom));
        ASSERT_NEAR(GeoUtils::convertMapXToLong(edge, zoom), 180, 1e-12) << zoom;
    }
}

TEST(Sphere, goingSomewhereArrivesAtThatDistanceInThatDirection) {
    using Public = TrelmixMapEngineGeoUtils;
    std::mt19937_64 random(4);
    std::uniform_real_distribution<double> latitude(-89, 89), longitude(-180, 180), bearing(0, 2 * pi);
    std::uniform_real_distribution<double> magnitude(0, 6);
    for (int i = 0; i < 5000; ++i) {
        const CLLocationCoordinate2D from{latitude(random), longitude(random)};
        const double heading = bearing(random), distance = std::pow(10.0, magnitude(random));
        const auto to = Public::getCoordinateFrom(from, heading, distance);
        ASSERT_NEAR(Public::getDistanceBetweenWithCoordinate1(from, to), distance, 1e-6 * distance + 1e-6);
        ASSERT_NEAR(std::remainder(Public::getBearingFrom(from, to) - heading, 2 * pi), 0, 1e-5);
    }
    EXPECT_DOUBLE_EQ(Public::getBearingFrom({}, {0, -1}), 3 * pi / 2) << "clockwise from north";
    // An angle so little west of north that it rounds to the full circle must read 0.
    EXPECT_EQ(Public::getBearingFrom({}, {45, -1e-18}), 0);
}

TEST(Sphere, polesAndAntipodesAreNumbers) {
    for (double latitude = -90; latitude <= 90; latitude += 0.37) {
        const Coordinate from{latitude, 12.34};
        const double toThePole = (90 - latitude) * DEG_TO_RAD_CONST * EARTH_RADIUS;
        ASSERT_NEAR(GeoUtils::coordinate(from, {}, toThePole).lat, 90, 1e-5);
        ASSERT_NEAR(GeoUtils::distanceBetween(from, {-latitude, 12.34 - 180}), pi * EARTH_RADIUS, 1);
    }
}

TEST(Sphere, scalesFollowTheLatitude) {
    EXPECT_NEAR(GeoUtils::metersPerMapPoint(0, 22), 40041468.24594933 / 1073741824.0, 1e-15);
    EXPECT_NEAR(GeoUtils::distanceBetween({0, 0}, {0, 1}), 111226.3, 0.05);
    for (const double latitude : {-80.0, 0.0, 47.0, 85.0}) {
        EXPECT_DOUBLE_EQ(
            GeoUtils::mapPointsPerMeter(latitude, 17.5F) * GeoUtils::metersPerMapPoint(latitude, 17.5F), 1);
        const double step = GeoUtils::distanceBetween({latitude, 0}, {latitude, 1e-4});
        const double points = GeoUtils::convertLongToMapX(1e-4, 20) - GeoUtils::convertLongToMapX(0, 20);
        EXPECT_NEAR(step / points, GeoUtils::metersPerMapPoint(latitude, 20), 1e-6);
    }
}

TEST(BoundingRectangle, holdsOnlyWhatLiesStrictlyInside) {
    const std::array<WorldMapPoint, 3> corners{{{-10, 5}, {20, -5}, {0, 30}}};
    EXPECT_TRUE(GeoUtils::mapPointInsideBoundingRectangle({19.9, 29.9}, corners));
    for (const WorldMapPoint outside : {WorldMapPoint{20, 0}, {0, -5}, {kNaN, 0}}) {
        EXPECT_FALSE(GeoUtils::mapPointInsideBoundingRectangle(outside, corners));
    }
    EXPECT_FALSE(GeoUtils::mapPointInsideBoundingRectangle({0, 0}, {}));
    const std::array<WorldMapPoint, 3> broken{{{kNaN, -1}, {-1, kNaN}, {1, 1}}};
    EXPECT_TRUE(GeoUtils::mapPointInsideBoundingRectangle({0, 0}, broken));
}

} // namespace trelmix::geo_utils_test
