#include "Camera/CameraProjection.h"

#include <Trelmix/CameraFitting.h>

#include "Geo/GeoUtils.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

namespace trelmix {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

/// The margins that a map opened with the camera leaves around the places, as shares of the view; smallest
/// first.
std::array<double, 4> marginsSeen(const TrelmixMapEngineCamera& camera,
                                  const std::vector<CLLocationCoordinate2D>& places, CGSize size) {
    CameraProjection projection(coordinateOf(camera.target()), {size.width, size.height});
    projection.setMapZoom(camera.zoom());
    std::array<double, 4> margins{1, 1, 1, 1};
    for (const CLLocationCoordinate2D place : places) {
        const CGPoint p = projection.screenCoordinateFor(place);
        margins = {std::min(margins[0], p.x / size.width), std::min(margins[1], p.y / size.height),
                   std::min(margins[2], 1 - p.x / size.width), std::min(margins[3], 1 - p.y / size.height)};
    }
    std::sort(margins.begin(), margins.end());
    return margins;
}

TEST(CameraFitting, placesFillTheViewUpToTheMargin) {
    std::mt19937_64 random(1);
    std::uniform_real_distribution<double> latitude(-75, 75), longitude(-179, 179), spread(-0.006, 0.006);
    std::uniform_real_distribution<double> side(200, 2000);
    for (int i = 0; i < 500; ++i) {
        const CLLocationCoordinate2D middle{latitude(random), longitude(random)};
        std::vector<CLLocationCoordinate2D> places;
        for (int k = 0; k < 6; ++k)
            places.push_back({middle.latitude + spread(random), middle.longitude + spread(random)});
        const CGSize size{side(random), side(random)};
        const auto camera = cameraShowing(places, size);
        ASSERT_TRUE(camera);
        const std::array<double, 4> margins = marginsSeen(*camera, places, size);
        EXPECT_NEAR(margins[0], margins[1], 1e-4) << "centred along the side that decides";
        EXPECT_NEAR(margins[2], margins[3], 1e-4) << "and along the other";
        if (camera->zoom() > 15.0F) {
            EXPECT_GE(margins[0], 0.05 - 1e-8);
            EXPECT_LE(margins[0], 0.05 + 1e-4);
        }
    }
}

TEST(CameraFitting, zoomsStayWithinTheirLimitsAndCentred) {
    const std::vector<CLLocationCoordinate2D> one{{48, 11}};
    EXPECT_EQ(cameraShowing(one, {800, 600})->zoom(), 23.0F);
    EXPECT_NEAR(cameraShowing(one, {800, 600})->target().latitude, 48, 1e-9);
    const std::vector<CLLocationCoordinate2D> world{{60, -170}, {-60, 150}};
    const auto camera = cameraShowing(world, {800, 600});
    EXPECT_EQ(camera->zoom(), 15.0F);
    EXPECT_NEAR(camera->target().latitude, 0, 1e-9);
    EXPECT_NEAR(camera->target().longitude, -10, 1e-9);
}

TEST(CameraFitting, invalidPlacesAndViewsAreHarmless) {
    const std::vector<CLLocationCoordinate2D> bad{kCLLocationCoordinate2DInvalid, {kNaN, 0}, {91, 0}};
    EXPECT_FALSE(cameraShowing(bad, {800, 600}));
    EXPECT_FALSE(cameraShowing({}, {800, 600}));
    const std::vector<CLLocationCoordinate2D> mixed{{kNaN, 0}, {-90, 20}, {90, 20}, {1, 20}};
    const auto camera = cameraShowing(mixed, {800, 600});
    EXPECT_NEAR(camera->target().latitude, 0, 1e-9);
    EXPECT_EQ(camera->zoom(), 15.0F);
    const std::vector<CLLocationCoordinate2D> one{{48, 11}};
    for (const CGSize size : {CGSize{0, 0}, {0, 600}, {800, 0}, {-1, -1}, {kNaN, 600}, {800, kNaN}})
        EXPECT_EQ(cameraShowing(one, size)->zoom(), 15.0F);
}

} // namespace
} // namespace trelmix
