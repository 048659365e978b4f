// The horizontal mapping against its own derivation: corners from the axis' direction, directions and places
// from vectors on the unit sphere, the plane in radians instead of map points.
#include "Sideview/LevelsText.h"

#include <cmath>
#include <numbers>
#include <sstream>

namespace trelmix {
namespace {

constexpr double kDegree = std::numbers::pi / 180;

struct Vector {
    double x, y, z;
};

Vector operator*(double factor, Vector v) {
    return {factor * v.x, factor * v.y, factor * v.z};
}
Vector operator+(Vector a, Vector b) {
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}
double dot(Vector a, Vector b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

Vector onSphere(double latitude, double longitude) {
    const double phi = latitude * kDegree;
    const double lambda = longitude * kDegree;
    return {std::cos(phi) * std::cos(lambda), std::cos(phi) * std::sin(lambda), std::sin(phi)};
}

Vector northOf(CLLocationCoordinate2D c) {
    return onSphere(c.latitude + 90, c.longitude);
}
Vector eastOf(CLLocationCoordinate2D c) {
    return onSphere(0, c.longitude + 90);
}

double azimuth(CLLocationCoordinate2D from, CLLocationCoordinate2D to) {
    const Vector target = onSphere(to.latitude, to.longitude);
    return std::atan2(dot(target, eastOf(from)), dot(target, northOf(from)));
}

CLLocationCoordinate2D walk(CLLocationCoordinate2D from, double azimuth, double angle) {
    const Vector ahead = std::cos(azimuth) * northOf(from) + std::sin(azimuth) * eastOf(from);
    const Vector v = std::cos(angle) * onSphere(from.latitude, from.longitude) + std::sin(angle) * ahead;
    return {std::asin(v.z) / kDegree, std::atan2(v.y, v.x) / kDegree};
}

struct MappingCase {
    double bearing;
    bool bowLeft;
    double left, right;
    double south, west, height, width;

    std::string text() const {
        std::ostringstream out;
        out.precision(17);
        out << R"({"bearing": )" << bearing << R"(, "bowPosition": ")" << (bowLeft ? "left" : "right")
            << R"(", "leftOffset": )" << left << R"(, "rightOffset": )" << right << R"(, "southLatitude": )"
            << south << R"(, "northLatitude": )" << south + height << R"(, "westLongitude": )" << west
            << R"(, "eastLongitude": )" << west + width << "}";
        return out.str();
    }
    // The axis has no westward and no northward part, so it starts in the north-west corner.
    CLLocationCoordinate2D start() const { return {south + height, west}; }
    CLLocationCoordinate2D end() const { return {south, west + width}; }
    double axis(CLLocationCoordinate2D c) const {
        return c.longitude * kDegree * std::abs(std::sin(bearing * kDegree)) -
               std::asinh(std::tan(c.latitude * kDegree)) * std::abs(std::cos(bearing * kDegree));
    }
    double fraction(CLLocationCoordinate2D c) const {
        const double first = axis(start());
        return (axis(c) - first) / (axis(end()) - first);
    }
    bool turnedRound() const {
        const double diagonal = azimuth(start(), end()) / kDegree;
        double reduced = std::fmod(bearing, 360);
        reduced += reduced > 180 ? -360 : reduced < -180 ? 360 : 0;
        return reduced == 180 || std::abs(diagonal - reduced) > 90;
    }
    double imageX(double f, double imageWidth) const {
        const double along = (imageWidth - left - right) * f;
        const double turned = turnedRound() ? imageWidth - along : along;
        return bowLeft ? imageWidth - right - turned : left + turned;
    }
    // With the bow at the left the way back starts against the direction that the way there started in.
    CLLocationCoordinate2D onDiagonal(double f) const {
        const double angle = std::acos(
            dot(onSphere(start().latitude, start().longitude), onSphere(end().latitude, end().longitude)));
        const double direction = azimuth(start(), end());
        return bowLeft ? walk(end(), direction - std::numbers::pi, (1 - f) * angle)
                       : walk(start(), direction, f * angle);
    }
};

std::vector<MappingCase> mappingCases() {
    std::vector<MappingCase> cases;
    for (int bearing = -360; bearing <= 720; bearing += 15) {
        for (const bool bowLeft : {false, true}) {
            cases.push_back({bearing + 0.0, bowLeft, 0, 0, 53.54, 9.96, 0.002, 0.004});
            cases.push_back({bearing + 0.5, bowLeft, 0, 0, -33.86, 151.2, 0.003, 0.001});
            cases.push_back({bearing + 0.0, bowLeft, 40, 25, 0.5, -79.7, 0.002, 0.002});
            cases.push_back({bearing + 7.25, bowLeft, -10, 300, 78.2, 15.6, 0.001, 0.01});
        }
    }
    return cases;
}

TEST(SideviewMapping, worldToImageToWorldAgreesWithAnIndependentComputation) {
    constexpr double kWidth = 1500;
    int inverse = 0;
    for (const MappingCase& c : mappingCases()) {
        const auto side = projectionOf(c.text(), kWidth, 400);
        ASSERT_TRUE(side);
        for (const double f : {0.0, 0.2, 0.5, 0.83, 1.0}) {
            const CLLocationCoordinate2D world = c.onDiagonal(f);
            const double x = side->point(world, 0).x;
            // The axis values' rounding is 1e-7 of some thousand map points.
            EXPECT_NEAR(x, c.imageX(c.fraction(world), kWidth), 1e-3) << c.text() << f;

            const bool diagonalIsTheCorners = std::fmod(c.bearing, 90) != 0;
            if (!diagonalIsTheCorners) {
                continue;
            }
            const CLLocationCoordinate2D back = side->coordinate({(c.bowLeft ? 1 - f : f) * kWidth, 0});
            EXPECT_NEAR(back.latitude, world.latitude, 1e-7) << c.text() << f;
            EXPECT_NEAR(back.longitude, world.longitude, 1e-7) << c.text() << f;
            if (c.left == 0 && c.right == 0 && !c.turnedRound()) {
                // Its scale changes with the latitude and the bow decides where the diagonal starts: 0.1
                // image points are about 2 cm here.
                const CLLocationCoordinate2D again = side->coordinate({x, 0});
                EXPECT_NEAR(side->point(again, 0).x, x, 0.1) << c.text() << f;
                ++inverse;
            }
        }
    }
    EXPECT_GT(inverse, 200);
}

TEST(SideviewMapping, cornersThatTieAreTheLaterOnesAndDueSouthIsExactly180Degrees) {
    for (
        const char* box :
        {R"("southLatitude": 53.54, "northLatitude": 53.542, "westLongitude": 9.96, "eastLongitude": 9.964})",
         R"("southLatitude": -33.9, "northLatitude": -33.8, "westLongitude": 151.2, "eastLongitude": 151.3})",
         R"("southLatitude": -0.1, "northLatitude": 0.1, "westLongitude": -0.2, "eastLongitude": 0.3})"}) {
        // With the bow at the right and the bearing due north, the north is at the right end.
        const auto side = projectionOf(std::string(R"({"bearing": 0, )") + box);
        ASSERT_TRUE(side);
        EXPECT_EQ(side->minimumCoordinate().lon, side->maximumCoordinate().lon);
        EXPECT_GT(side->minimumCoordinate().lat, side->maximumCoordinate().lat);
        EXPECT_GT(side->minimumCoordinate().lon,
                  parseText(std::string(R"({"bearing": 0, )") + box)->westLongitude);
        EXPECT_EQ(side->bearingToTarget() / DEG_TO_RAD_CONST, 180);
        EXPECT_NEAR(side->point(locationOf(side->minimumCoordinate()), 0).x, 1000, 1e-6);
        EXPECT_NEAR(side->point(locationOf(side->maximumCoordinate()), 0).x, 0, 1e-6);
        for (const char* south : {"180", "-180", "540"}) {
            const auto turned = projectionOf(R"({"bearing": )" + std::string(south) + ", " + box);
            ASSERT_TRUE(turned);
            EXPECT_NEAR(turned->point(locationOf(turned->minimumCoordinate()), 0).x, 1000, 1e-3) << south;
        }
    }
}

} // namespace
} // namespace trelmix
