#include "Camera/CameraProjection.h"

#include "Camera/ZoomLimits.h"
#include "Geo/GeoUtils.h"
#include "support/NotFinite.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>

namespace trelmix::camera_projection_test {

constexpr float kFloatNaN = std::numeric_limits<float>::quiet_NaN();
constexpr Coordinate kHarbour{43.735, 7.421};

class ProjectionTest : public testing::Test {
protected:
    ProjectionTest() { projection.setMapZoom(17); }
    ~ProjectionTest() override { ZoomLimits::reset(); }

    CameraProjection projection{kHarbour, {800, 600}};
};

TEST_F(ProjectionTest, aboveTheHorizonNoGroundIsSeen) {
    projection.setMapViewingAngle(Radians(0.9599311));
    EXPECT_TRUE(projection.frame().seesGround({400, 0}));
    // The horizon stands 35 degrees above the middle: 364 points.
    EXPECT_TRUE(projection.frame().seesGround({400, -60}));
    EXPECT_FALSE(projection.frame().seesGround({400, -67}));
    EXPECT_FALSE(projection.frame().seesGround({400, kNaN}));
    EXPECT_FALSE(projection.frame().isInFront(projection.worldMapPoint({400, -200})));
    const CLLocationCoordinate2D behind = projection.worldCoordinateFor({400, -200});
    EXPECT_LT(behind.latitude, kHarbour.lat);
}

TEST_F(ProjectionTest, theRatioFollowsTheWidthAndRecoversFromAnEmptyView) {
    const double ratio = projection.mapPointScreenPointRatio();
    EXPECT_NEAR(ratio, 295.6 / 600, 1e-4);
    projection.setMapDimensions({800, 300});
    EXPECT_EQ(projection.mapPointScreenPointRatio(), ratio);
    projection.setMapDimensions({801, 300});
    EXPECT_NEAR(projection.mapPointScreenPointRatio(), ratio * 2, 1e-9);
    for (const ScreenPoint empty : {ScreenPoint{0, 0}, {800, 0}, {kNaN, 600}, {800, kInfinity}}) {
        projection.setMapDimensions({0, 0});
        projection.setMapDimensions(empty);
        EXPECT_FALSE(std::isfinite(projection.mapPointScreenPointRatio()));
        projection.setMapDimensions({800, 600});
        EXPECT_NEAR(projection.mapPointScreenPointRatio(), ratio, 1e-9);
    }
}

TEST_F(ProjectionTest, numbersThatAreNotFiniteLeaveTheCameraAsItWas) {
    projection.setMapViewingAngle(Radians(0.4));
    const Vector3d before = projection.exactCameraPosition();
    const WorldMapPoint southPole = GeoUtils::scenePoint({-90, 0});
    projection.setCameraTarget(southPole, {-90, 0});
    projection.setCameraTarget({kNaN, 0}, kHarbour);
    projection.setCameraTarget({0, 0}, {kInfinity, 0});
    projection.setMapRotation(Radians(kInfinity));
    projection.setMapViewingAngle(Radians(kNaN));
    projection.setMapZoom(kFloatNaN);
    projection.setInternalZoom(-std::numeric_limits<float>::infinity());
    EXPECT_EQ(projection.exactCameraPosition(), before);
    EXPECT_EQ(projection.mapZoom(), 17.0F);
}

TEST(Projection, aBadFirstTargetDoesNotSpoilTheOrigin) {
    for (const Coordinate bad : {Coordinate{kNaN, 0}, {0, kNaN}, {-90, 0}, {90, 0}, {-180, -180}, {0, 1e9}}) {
        const CameraProjection projection(bad, {800, 600});
        EXPECT_EQ(projection.cameraTarget(), Coordinate{});
        EXPECT_NEAR(projection.mapPointsPerMeterMax(), 26.8156, 1e-3);
        EXPECT_DOUBLE_EQ(projection.initialMapPoint().y, 536870912);
    }
}

TEST_F(ProjectionTest, anyNumbersAtAllAreConvertedWithoutHarm) {
    const double hostile[] = {0, -1, 1e-310, 1e18, -1e300, 90, std::numbers::pi / 2, kNaN, kInfinity};
    for (const double a : hostile) {
        for (const double b : hostile) {
            const auto zoom = static_cast<float>(std::fmax(-1e6, std::fmin(1e6, b)));
            projection.setMapDimensions({a, b});
            projection.setMapRotation(Radians(a));
            projection.setMapViewingAngle(Radians(b));
            projection.setInternalZoom(zoom);
            projection.worldCoordinateFor({b, a});
            projection.screenCoordinateFor({a, b});
            projection.worldMapPoint({a, b}, {{a, b}, a, zoom, Radians(b), Radians(a)});
            projection.screenCoordinate({a, b}, {{a, b}, b, zoom, Radians(a), Radians(b)});
            projection.frame().seesGround({a, b});
            const float fit = projection.zoomLevelToFit({a, b}, {b, a});
            EXPECT_TRUE(fit >= 14.0F && fit <= 22.0F) << a << ' ' << b;
        }
    }
}

TEST_F(ProjectionTest, aRectangleAtTheZoomThatFitsItFillsTheViewOnATilePyramid) {
    const Coordinate southWest{43.73, 7.41}, northEast{43.74, 7.43};
    const float zoom = projection.zoomLevelToFit(southWest, northEast);
    EXPECT_EQ(zoom,
              projection.zoomLevelToFit({northEast.lat, southWest.lon}, {southWest.lat, northEast.lon}));
    const WorldMapPoint a = GeoUtils::convertCoordinateToMap(southWest, zoom);
    const WorldMapPoint b = GeoUtils::convertCoordinateToMap(northEast, zoom);
    EXPECT_NEAR(std::max((b.x - a.x) / 800, (a.y - b.y) / 600), 1, 1e-5);
    EXPECT_EQ(projection.zoomLevelToFit(kHarbour, kHarbour), 22.0F);
    EXPECT_EQ(projection.zoomLevelToFit({-90, -180}, {90, 180}), 14.0F);
    EXPECT_EQ(projection.zoomLevelToFit({kNaN, 0}, {1, 1}), 14.0F);
}

TEST_F(ProjectionTest, aZoomThatIsNoNumberIsTheLowestAndALimitThatIsNoneChangesNothing) {
    EXPECT_EQ(ZoomLimits::sanitised(kFloatNaN), 15.0F);
    ZoomLimits::setUserMax(20);
    ZoomLimits::setUserMax(kFloatNaN);
    EXPECT_EQ(ZoomLimits::sanitised(30), 20.0F);
    ZoomLimits::setUserMin(21);
    EXPECT_EQ(ZoomLimits::sanitised(18), 21.0F) << "a minimum above the maximum wins";
}

} // namespace trelmix::camera_projection_test
