#include "Camera/CameraProjection.h"

#include <Trelmix/CameraFitting.h>

#include "Geo/GeoUtils.h"
#include "support/NotFinite.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <random>
#include <vector>

namespace trelmix::camera_fitting_test {

/// The margins that the camera leaves around the places, as shares of the view; smallest first.
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
        for (int k = 0; k < 6; ++k) {
            places.push_back({middle.latitude + spread(random), middle.longitude + spread(random)});
        }
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

TEST(CameraFitting, zoomsStayWithinTheirLimitsAndCentredWhateverIsInvalid) {
    const std::vector<CLLocationCoordinate2D> one{{48, 11}}, world{{60, -170}, {-60, 150}},
        bad{kCLLocationCoordinate2DInvalid, {kNaN, 0}, {91, 0}},
        mixed{{kNaN, 0}, {-90, 20}, {90, 20}, {1, 20}};
    const struct {
        const std::vector<CLLocationCoordinate2D>& places;
        CGSize view;
        CLLocationCoordinate2D target;
        float zoom;
    } cases[] = {{one, {800, 600}, {48, 11}, 23},  {world, {800, 600}, {0, -10}, 15},
                 {mixed, {800, 600}, {0, 20}, 15}, {one, {0, 0}, {48, 11}, 15},
                 {one, {-1, -1}, {48, 11}, 15},    {one, {800, kNaN}, {48, 11}, 15}};
    for (const auto& c : cases) {
        const auto camera = cameraShowing(c.places, c.view);
        ASSERT_TRUE(camera);
        EXPECT_EQ(camera->zoom(), c.zoom);
        EXPECT_NEAR(camera->target().latitude, c.target.latitude, 1e-9);
        EXPECT_NEAR(camera->target().longitude, c.target.longitude, 1e-9);
    }
    EXPECT_FALSE(cameraShowing(bad, {800, 600}));
    EXPECT_FALSE(cameraShowing({}, {800, 600}));
}

} // namespace trelmix::camera_fitting_test
