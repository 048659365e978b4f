#include "Camera/CameraProjection.h"
#include "Geo/GeoUtils.h"

#include "support/CaseCount.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <random>

namespace trelmix::projection_property_test {

using Real = long double;
constexpr Real kPi = std::numbers::pi_v<Real>, kRadians = kPi / 180, kWorld = 1073741824;

/// A camera somewhere on the world, up to three degrees from its scene's origin.
struct RandomCamera {
    Coordinate origin;
    CameraPose pose;
    Coordinate target;
    ScreenPoint size;
    /// A point in or near the view, and the same point in fractions of it.
    ScreenPoint screen;

    explicit RandomCamera(std::mt19937_64& random) {
        const auto within = [&random](double low, double high) {
            return std::uniform_real_distribution<double>(low, high)(random);
        };
        origin = {within(-80, 80), within(-170, 170)};
        const double reach = std::pow(10.0, within(-5, 0.5));
        target = {origin.lat + within(-reach, reach), origin.lon + within(-reach, reach)};
        size = {within(100, 2600), within(100, 2000)};
        const double tilt = within(0, 1) < 0.2 ? 0.0 : within(0, 0.9599311);
        pose = {GeoUtils::scenePoint(target), target.lat, static_cast<float>(within(14, 22)),
                Radians(within(-7, 7)), Radians(tilt)};
        screen = {within(-0.1, 1.1) * size.x, within(0, 1.1) * size.y};
    }

    void applyTo(CameraProjection& projection) const {
        projection.setCameraTarget(pose.target, target);
        projection.setMapRotation(pose.rotation);
        projection.setMapViewingAngle(pose.viewingAngle);
        projection.setInternalZoom(pose.zoom);
    }
};

Real dot(const std::array<Real, 3>& a, const std::array<Real, 3>& b) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

/// The same camera from first principles: an eye, three axes and a focal length, in map points.
struct ReferenceCamera {
    std::array<Real, 3> eye, right, up, forward;
    Real focal, width, height;

    explicit ReferenceCamera(const RandomCamera& c) : width(c.size.x), height(c.size.y) {
        const Real r = c.pose.rotation.value, v = c.pose.viewingAngle.value;
        right = {std::cos(r), std::sin(r), 0};
        up = {-std::sin(r) * std::cos(v), std::cos(r) * std::cos(v), std::sin(v)};
        forward = {-std::sin(r) * std::sin(v), std::cos(r) * std::sin(v), -std::cos(v)};
        // Back by the world's width at the public zoom minus one, on the scale of the scene's origin.
        const Real back = kWorld * std::cos(c.target.lat * kRadians) / std::cos(c.origin.lat * kRadians) /
                          std::exp2(static_cast<Real>(c.pose.zoom));
        eye = {c.pose.target.x - back * forward[0], -c.pose.target.y - back * forward[1], -back * forward[2]};
        focal = height / 2 / std::tan(30 * kRadians);
    }

    std::array<Real, 2> screenPointOf(Coordinate place) const {
        const Real x = (place.lon + 180.0L) / 360 * kWorld;
        const Real y = (kPi - std::asinh(std::tan(place.lat * kRadians))) / (2 * kPi) * kWorld;
        const std::array<Real, 3> ray{x - eye[0], -y - eye[1], -eye[2]};
        const Real scale = focal / dot(forward, ray);
        return {width / 2 + dot(right, ray) * scale, height / 2 - dot(up, ray) * scale};
    }

    /// Latitude and longitude.
    std::array<Real, 2> groundUnder(ScreenPoint point) const {
        const Real a = point.x - width / 2, b = height / 2 - point.y;
        std::array<Real, 3> ray{};
        for (std::size_t i = 0; i < 3; ++i) {
            ray[i] = right[i] * a + up[i] * b + forward[i] * focal;
        }
        const Real t = -eye[2] / ray[2], x = eye[0] + ray[0] * t, y = -(eye[1] + ray[1] * t);
        return {std::atan(std::sinh(kPi - y / kWorld * 2 * kPi)) / kRadians, x / kWorld * 360 - 180};
    }
};

constexpr int kUsualCases = 20000;

TEST(ProjectionProperty, agreesWithAnIndependentComputation) {
    std::mt19937_64 random(1);
    Real worstPoints = 0, worstDegrees = 0;
    for (int i = 0; i < caseCount(kUsualCases); ++i) {
        const RandomCamera c(random);
        CameraProjection projection(c.origin, c.size);
        c.applyTo(projection);
        const ReferenceCamera reference(c);

        const std::array<Real, 2> ground = reference.groundUnder(c.screen);
        const CLLocationCoordinate2D found = projection.worldCoordinateFor({c.screen.x, c.screen.y});
        worstDegrees = std::max(
            {worstDegrees, std::abs(found.latitude - ground[0]), std::abs(found.longitude - ground[1])});

        const std::array<Real, 2> seen = reference.screenPointOf(coordinateOf(found));
        const CGPoint shown = projection.screenCoordinateFor(found);
        worstPoints = std::max({worstPoints, std::abs(shown.x - seen[0]), std::abs(shown.y - seen[1])});

        ASSERT_NEAR(shown.x, c.screen.x, 1e-3) << "there and back, case " << i;
        ASSERT_NEAR(shown.y, c.screen.y, 1e-3) << "there and back, case " << i;
        ASSERT_TRUE(projection.frame().seesGround(c.screen));
        ASSERT_TRUE(projection.frame().isInFront(projection.worldMapPoint(c.screen)));
    }
    EXPECT_LT(worstDegrees, 1e-6L);
    EXPECT_LT(worstPoints, 1e-3L);
    RecordProperty("worstDegrees", std::to_string(static_cast<double>(worstDegrees * 1e9L)) + "e-9");
    RecordProperty("worstPoints", std::to_string(static_cast<double>(worstPoints * 1e9L)) + "e-9");
}

TEST(ProjectionProperty, anExplicitCameraGivesTheBitsOfTheOneThatIsSet) {
    std::mt19937_64 random(2);
    CameraProjection other({40, 40}, {500, 500});
    for (int i = 0; i < 5000; ++i) {
        const RandomCamera c(random);
        CameraProjection projection(c.origin, c.size);
        const CameraProjection untouched(c.origin, c.size);
        c.applyTo(projection);
        const CGPoint shown = projection.screenCoordinateFor(locationOf(c.target));
        ASSERT_EQ(untouched.screenCoordinate(c.target, c.pose), (ScreenPoint{shown.x, shown.y}));
        ASSERT_EQ(untouched.worldMapPoint(c.screen, c.pose), projection.worldMapPoint(c.screen));
    }
}

} // namespace trelmix::projection_property_test
