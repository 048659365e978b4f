// The horizontal mapping against its own derivation: corners from the axis' direction, the plane in radians
// instead of map points, the diagonal as a straight line, which a box of some hundred metres allows.
#include "Sideview/SideviewProjection.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace trelmix::sideview_mapping_test {

constexpr double kDegree = std::numbers::pi / 180, kWidth = 1500;

struct MappingCase {
    LevelsFile file;

    double sine() const { return std::abs(std::sin(file.bearing * kDegree)); }
    double cosine() const { return std::abs(std::cos(file.bearing * kDegree)); }
    bool isBowLeft() const { return file.bowPosition == SideviewBowPosition::left; }
    // The axis has no westward and no northward part, so it starts in the north-west corner and ends in the
    // south-east one. Due north the eastern corners are as good, and the later ones count.
    CLLocationCoordinate2D start() const {
        return {file.northLatitude, file.bearing == 0 ? file.eastLongitude : file.westLongitude};
    }
    CLLocationCoordinate2D end() const { return {file.southLatitude, file.eastLongitude}; }
    double axis(CLLocationCoordinate2D c) const {
        return c.longitude * kDegree * sine() - std::asinh(std::tan(c.latitude * kDegree)) * cosine();
    }
    double fraction(CLLocationCoordinate2D c) const {
        const double first = axis(start());
        return (axis(c) - first) / (axis(end()) - first);
    }
    bool isTurnedRound() const {
        const double east =
            (end().longitude - start().longitude) * std::cos(file.southLatitude * kDegree) * kDegree;
        const double north = (end().latitude - start().latitude) * kDegree;
        const double diagonal = std::atan2(east, north) / kDegree;
        double reduced = std::fmod(file.bearing, 360);
        reduced += reduced > 180 ? -360 : reduced < -180 ? 360 : 0;
        return reduced == 180 || std::abs(diagonal - reduced) > 90;
    }
    double imageX(double f) const {
        const double along = (kWidth - file.leftOffset - file.rightOffset) * f;
        const double turned = isTurnedRound() ? kWidth - along : along;
        return isBowLeft() ? kWidth - file.rightOffset - turned : file.leftOffset + turned;
    }
    CLLocationCoordinate2D onDiagonal(double f) const {
        return {start().latitude + f * (end().latitude - start().latitude),
                start().longitude + f * (end().longitude - start().longitude)};
    }
};

std::vector<MappingCase> mappingCases() {
    std::vector<MappingCase> cases;
    for (int bearing = -360; bearing <= 720; bearing += 15) {
        for (const auto bow : {SideviewBowPosition::right, SideviewBowPosition::left}) {
            cases.push_back({{bearing + 0.0, bow, 53.54, 53.542, 9.96, 9.964, 0, 0, 0, 0, {}}});
            cases.push_back({{bearing + 0.5, bow, -33.86, -33.857, 151.2, 151.201, 0, 0, 0, 0, {}}});
            cases.push_back({{bearing + 0.0, bow, 0.5, 0.502, -79.7, -79.698, 0, 0, 40, 25, {}}});
            cases.push_back({{bearing + 7.25, bow, 78.2, 78.201, 15.6, 15.61, 0, 0, -10, 300, {}}});
        }
    }
    return cases;
}

TEST(SideviewMapping, placesAndImagePointsAgreeWithAnIndependentComputation) {
    for (const MappingCase& c : mappingCases()) {
        const auto side = SideviewProjection::make(c.file, kWidth, 400);
        ASSERT_TRUE(side) << side.reason();
        for (const double f : {0.0, 0.2, 0.5, 0.83, 1.0}) {
            SCOPED_TRACE(testing::Message() << "bearing " << c.file.bearing << " bow left " << c.isBowLeft()
                                            << " latitude " << c.file.southLatitude << " at " << f);
            const CLLocationCoordinate2D place = c.onDiagonal(f);
            // The axis values' rounding is 1e-7 of some thousand map points.
            EXPECT_NEAR((*side)->point(place, 0).x, c.imageX(c.fraction(place)), 1e-3);
            if (std::fmod(c.file.bearing, 90) == 0 && c.file.bearing != 0) {
                continue; // rounding decides which corners tie
            }
            const CLLocationCoordinate2D back =
                (*side)->coordinate({(c.isBowLeft() ? 1 - f : f) * kWidth, 0});
            EXPECT_NEAR(back.latitude, place.latitude, 2e-6);
            EXPECT_NEAR(back.longitude, place.longitude, 2e-6);
        }
    }
}

} // namespace trelmix::sideview_mapping_test
