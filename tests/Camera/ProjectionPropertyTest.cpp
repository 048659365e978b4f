#include "Camera/ReferenceCamera.h"

#include "support/CaseCount.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace trelmix {
namespace {

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

} // namespace
} // namespace trelmix
