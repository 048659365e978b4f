#include "Camera/GroundHold.h"
#include "Geo/GeoUtils.h"
#include "support/CaseCount.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace trelmix {
namespace {

/// Cameras and fingers anywhere in a view of 800 x 600.
class GroundHoldTest : public testing::TestWithParam<bool> {
protected:
    double between(double low, double high) { return std::uniform_real_distribution(low, high)(_random); }
    ScreenPoint finger() { return {between(20, 780), between(120, 580)}; }
    void drawCamera() {
        const Coordinate origin{between(-84, 84), between(-179, 179)};
        stage = {GeoUtils::scenePoint(origin),
                 GeoUtils::mapPointsPerMeter(origin.lat, 22),
                 {800, 600},
                 GetParam()};
        const Coordinate place{std::clamp(origin.lat + between(-0.1, 0.1), -84.0, 84.0), origin.lon};
        pose = GroundHold::withTarget({}, GeoUtils::scenePoint(place));
        pose.zoom = static_cast<float>(between(8, 22));
        pose.rotation = Radians{between(-3, 3)}.narrowed();
        pose.viewingAngle = Radians{between(0, 0.96)}.narrowed();
    }
    HeldGround heldAt(ScreenPoint from, ScreenPoint to) const {
        return {CameraFrame(pose, stage).unproject(from), to};
    }
    static double miss(const CameraPose& pose, const CameraStage& stage, const HeldGround& held) {
        const ScreenPoint seen = CameraFrame(pose, stage).projectMapPoint(held.ground);
        return std::hypot(seen.x - held.point.x, seen.y - held.point.y);
    }
    CameraPose pose;
    CameraStage stage;

private:
    std::mt19937 _random{5};
};

TEST_P(GroundHoldTest, groundStaysUnderOneFingerAndUnderTwo) {
    for (int i = 0; i < caseCount(2000); ++i) {
        drawCamera();
        const ScreenPoint from = finger();
        const HeldGround one = heldAt(from, {from.x + between(-30, 30), from.y + between(-20, 30)});
        EXPECT_LT(miss(GroundHold::holding(pose, stage, one), stage, one), 0.01) << i;

        const ScreenPoint other = finger();
        if (std::hypot(other.x - from.x, other.y - from.y) < 80) {
            continue;
        }
        const HeldGround two = heldAt(other, {other.x + between(-20, 20), other.y + between(-15, 20)});
        const auto both = GroundHold::holding(pose, stage, one, two);
        ASSERT_TRUE(both) << i;
        EXPECT_LT(miss(*both, stage, one), 0.02) << i;
        EXPECT_LT(miss(*both, stage, two), 0.02) << i;
    }
}

TEST_P(GroundHoldTest, theMiddleIsExactWhereZoomOrRotationIsNotFree) {
    for (int i = 0; i < 500; ++i) {
        drawCamera();
        const HeldGround one = heldAt({300, 300}, {between(250, 310), between(290, 330)});
        const HeldGround two = heldAt({500, 340}, {between(490, 550), between(320, 360)});
        const HeldGround middle =
            heldAt({400, 320}, {(one.point.x + two.point.x) / 2, (one.point.y + two.point.y) / 2});
        for (const GroundHold::Freedom freedom :
             {GroundHold::Freedom{false, true}, {true, false}, {false, false}}) {
            const CameraPose moved = GroundHold::holdingMiddle(pose, stage, middle, one, two, freedom);
            EXPECT_LT(miss(moved, stage, middle), 0.01);
            EXPECT_EQ(moved.zoom == pose.zoom, !freedom.zoom);
            EXPECT_EQ(moved.rotation == pose.rotation, !freedom.rotation);
        }
    }
}

TEST_P(GroundHoldTest, whatCannotBeHeldLeavesThePoseAsItIs) {
    drawCamera();
    EXPECT_EQ(GroundHold::holding(pose, stage, {{NAN, 3}, {100, 100}}), pose);
    EXPECT_EQ(GroundHold::holding(pose, stage, {{1, 3}, {100, INFINITY}}), pose);
    EXPECT_FALSE(GroundHold::holding(pose, stage, heldAt({9, 9}, {9, 9}), heldAt({99, 9}, {9, 9})));
    stage.mapDimensions = {0, 0};
    EXPECT_EQ(GroundHold::holding(pose, stage, {{1, 3}, {100, 100}}), pose);
}

TEST(CameraStage, aTilesPointIsAPointOfTheScreenAtEveryZoomLatitudeAndHeight) {
    for (const double firstLatitude : {0.0, 54.0, -84.0}) {
        for (const double latitude : {0.0, 50.0, 84.0}) {
            for (const double height : {200.0, 600.0, 3000.0}) {
                const CameraStage stage{GeoUtils::scenePoint({firstLatitude, 11}),
                                        GeoUtils::mapPointsPerMeter(firstLatitude, 22),
                                        {400, height},
                                        true};
                for (int zoom = 0; zoom <= 23; ++zoom) {
                    CameraPose pose = GroundHold::withTarget({}, GeoUtils::scenePoint({latitude, 11}));
                    pose.zoom = static_cast<float>(zoom - 1);
                    EXPECT_NEAR(GroundHold::scaleAtTarget(pose, stage) * std::exp2(zoom - 22) * 256, 256,
                                0.01);
                }
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Scales, GroundHoldTest, testing::Bool());

} // namespace
} // namespace trelmix
