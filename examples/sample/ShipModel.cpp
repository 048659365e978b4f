#include "ShipModel.h"

#include "TownModel.h"

namespace trelmix::sample {

namespace {

constexpr double kShipU = 262;
/// Two metres of fenders between the quay at v = 45 and the hull.
constexpr double kShipV = 45 + 2 + kShipBeam / 2;

} // namespace

static_assert(kShipHeading == kQuayBearing, "the ship lies along the quay");

Pt shipPoint(double forward, double starboard) {
    return quayPoint(kShipU + forward, kShipV + starboard);
}

LatLon shipCoordinate(double forward, double starboard) {
    return latLonOf(shipPoint(forward, starboard));
}

double halfBeam(double forward) {
    constexpr double kHalf = kShipLength / 2;
    if (std::abs(forward) > kHalf) {
        return 0;
    }
    const double toBow = (kHalf - forward) / 52;
    const double toStern = (forward + kHalf) / 14;
    const double bow = toBow >= 1 ? 1 : std::sqrt(1 - std::pow(1 - toBow, 2.1));
    const double stern = toStern >= 1 ? 1 : 0.72 + 0.28 * std::sqrt(1 - (1 - toStern) * (1 - toStern));
    return kShipBeam / 2 * std::min(bow, stern);
}

Path hullOutline(double inset) {
    Path port;
    Path starboard;
    const double half = kShipLength / 2 - inset;
    for (double x = -half; x<half; x += x> 30 ? 1 : 3) {
        const double y = std::max(0.0, halfBeam(x) - inset);
        port.push_back({x, -y});
        starboard.push_back({x, y});
    }
    port.push_back({half, 0});
    port.insert(port.end(), starboard.rbegin(), starboard.rend());
    return port;
}

} // namespace trelmix::sample
