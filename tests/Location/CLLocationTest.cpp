#include "support/NotFinite.h"
#include <Trelmix/Platform/CLLocation.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>

namespace trelmix::cl_location_test {

constexpr double kHalfTheEarth = std::numbers::pi * 6371008.8;

TEST(CLLocation, distancesOnTheSphereIncludingAntipodesAndTheDateLine) {
    EXPECT_NEAR(CLLocation(0, 0).distanceFromLocation(CLLocation(0, 1)), kHalfTheEarth / 180, 1e-6);
    EXPECT_NEAR(CLLocation(0, 0).distanceFromLocation(CLLocation(60, 90)), kHalfTheEarth / 2, 1e-6);
    EXPECT_NEAR(CLLocation(10, 179.5).distanceFromLocation(CLLocation(10, -179.5)),
                CLLocation(10, 0).distanceFromLocation(CLLocation(10, 1)), 1e-6);
    for (double latitude = -90; latitude <= 90; latitude += 0.37) {
        const CLLocation here(latitude, 12.34);
        EXPECT_NEAR(here.distanceFromLocation(CLLocation(-latitude, 12.34 - 180)), kHalfTheEarth, 0.5);
        EXPECT_EQ(here.distanceFromLocation(here), 0);
    }
}

TEST(CLLocation, aCoordinateThatIsNotFiniteHasNoDistance) {
    for (const double bad : {kInfinity, -kInfinity, std::nan("")}) {
        EXPECT_TRUE(std::isnan(CLLocation(bad, 0).distanceFromLocation(CLLocation(1, 1))));
        EXPECT_TRUE(std::isnan(CLLocation(1, 1).distanceFromLocation(CLLocation(0, bad))));
    }
}

TEST(CLLocation, descriptionsHaveSixDecimalsWhateverTheNumber) {
    EXPECT_EQ(descriptionOf({52.5, -13.4000004}), "<52.500000,-13.400000>");
    EXPECT_EQ(descriptionOf({std::numeric_limits<double>::max(), 0}).size(), 1 + 309 + 7 + 1 + 8 + 1U);
    EXPECT_EQ(descriptionOf({std::nan(""), 1}), "<nan,1.000000>");
}

} // namespace trelmix::cl_location_test
