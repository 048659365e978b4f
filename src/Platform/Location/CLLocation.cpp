#include <Trelmix/Platform/CLLocation.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <numbers>

namespace trelmix {
namespace {

constexpr double kMeanEarthRadius = 6371008.8;
constexpr double kRadiansPerDegree = std::numbers::pi / 180.0;

// Not printf: that writes the decimal point of the user's locale.
std::string withSixDecimals(double value) {
    std::array<char, 400> text{};
    const auto result =
        std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed, 6);
    return {text.data(), result.ptr};
}

bool isFinite(CLLocationCoordinate2D coordinate) {
    return std::isfinite(coordinate.latitude) && std::isfinite(coordinate.longitude);
}

} // namespace

double CLLocation::distanceFromLocation(const CLLocation& other) const {
    const CLLocationCoordinate2D to = other.coordinate();
    if (!isFinite(_coordinate) || !isFinite(to)) {
        return std::numeric_limits<double>::quiet_NaN();
    }
    const double fromLatitude = _coordinate.latitude * kRadiansPerDegree;
    const double toLatitude = to.latitude * kRadiansPerDegree;
    const double sinLatitude = std::sin((toLatitude - fromLatitude) / 2);
    const double sinLongitude = std::sin((to.longitude - _coordinate.longitude) * kRadiansPerDegree / 2);
    const double a = sinLatitude * sinLatitude +
                     std::cos(fromLatitude) * std::cos(toLatitude) * sinLongitude * sinLongitude;
    // Rounding takes `a` past 1 for antipodes.
    return 2 * kMeanEarthRadius * std::asin(std::sqrt(std::clamp(a, 0.0, 1.0)));
}

std::string descriptionOf(CLLocationCoordinate2D coordinate) {
    return "<" + withSixDecimals(coordinate.latitude) + "," + withSixDecimals(coordinate.longitude) + ">";
}

} // namespace trelmix
