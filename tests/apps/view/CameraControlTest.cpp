// Camera moves of mouse and keys, without a window.
#include "view/CameraControl.h"

#include <Trelmix/Platform/UIView.h>
#include <Trelmix/TrelmixMapEngineFactory.h>

#include <cmath>
#include <gtest/gtest.h>

namespace trelmix::apps {
namespace {

std::shared_ptr<TrelmixMapEngine> makeMap() {
    auto map = TrelmixMapEngineFactory::createMap();
    map->view()->setFrame({{0, 0}, {800, 600}});
    map->view()->layoutIfNeeded();
    map->setMinZoom(15);
    map->setMaxZoom(23);
    return map;
}

TEST(CameraControl, zoomingAboutAPointKeepsTheGroundUnderIt) {
    const auto map = makeMap();
    map->initialiseWithTarget({60, -120}, 18);
    for (const double rotation : {0.0, 135.0}) {
        for (const double tilt : {0.0, 30.0, 55.0}) {
            for (const CGPoint point : {CGPoint{400, 300}, {0, 0}, {799, 20}, {33, 590}}) {
                for (const double levels : {0.5, -1.25, 2.0}) {
                    map->setCameraWithRotation(rotation, tilt, 18, false);
                    const auto place = map->projection()->worldCoordinateFor(point);
                    zoomAbout(*map, point, levels);
                    const CGPoint after = map->projection()->screenCoordinateFor(place);
                    EXPECT_NEAR(after.x, point.x, 0.5) << tilt << " " << levels;
                    EXPECT_NEAR(after.y, point.y, 0.5) << tilt << " " << levels;
                }
            }
        }
    }
}

TEST(CameraControl, zoomEndsAtTheLimitsAndThenNothingMoves) {
    const auto map = makeMap();
    map->setMaxZoom(19);
    map->initialiseWithTarget({53.5, 10}, 18);
    zoomAbout(*map, {10, 10}, 5);
    EXPECT_FLOAT_EQ(map->camera()->zoom(), 19);
    const auto target = map->camera()->target();
    zoomAbout(*map, {10, 10}, 5);
    EXPECT_NEAR(map->camera()->target().latitude, target.latitude, 1e-12);
    zoomAbout(*map, {NAN, INFINITY}, -1);
    EXPECT_FLOAT_EQ(map->camera()->zoom(), 18);
    EXPECT_TRUE(CLLocationCoordinate2DIsValid(map->camera()->target()));
}

TEST(CameraControl, headingsStayWithinOneTurnAndTiltsWithinTheirRange) {
    const auto map = makeMap();
    zoomAbout(*map, {1, 1}, 1);
    moveBy(*map, {.rotation = 10, .viewingAngle = 10, .levels = 1});
    CameraKeys().moveBy(*map, {.levels = 1});
    CameraKeys().resetRotation(*map);
    EXPECT_FALSE(map->camera()) << "there is none yet";
    EXPECT_EQ(cameraArgument(*map), "");
    EXPECT_EQ(metresPerPoint(*map, {800, 600}), 0);
    map->initialiseWithTarget({0, 0}, 17);
    for (int i = 0; i < 40; ++i) {
        moveBy(*map, {.rotation = 50, .viewingAngle = 7});
    }
    EXPECT_NEAR(std::remainder(map->camera()->rotation() - 2000, 360), 0, 1e-3);
    EXPECT_NEAR(map->camera()->viewingAngle(), 55, 1e-3);
    // At the equator a point of zoom 17 is 1.19 m.
    moveBy(*map, {.viewingAngle = -60});
    EXPECT_NEAR(map->camera()->viewingAngle(), 0, 1e-3);
    EXPECT_NEAR(metresPerPoint(*map, {800, 600}), 1.194, 0.05);
}

} // namespace
} // namespace trelmix::apps
