#include "common/scene/GeoJsonHoles.h"

#include <algorithm>
#include <limits>

namespace trelmix::apps {

namespace {

// Twice the area in square degrees, positive for counterclockwise rings seen from above. Mercator keeps the
// sign.
double turningSense(const CoordinateList& ring) {
    double sum = 0;
    for (std::size_t i = 0; i < ring.size(); ++i) {
        const auto& a = ring[i];
        const auto& b = ring[(i + 1) % ring.size()];
        // Relative to one corner: small rings far from the origin would lose their area to rounding.
        sum += (a.longitude - ring[0].longitude) * (b.latitude - ring[0].latitude) -
               (b.longitude - ring[0].longitude) * (a.latitude - ring[0].latitude);
    }
    return sum;
}

std::size_t nearestCorner(const CoordinateList& ring, CLLocationCoordinate2D place) {
    std::size_t nearest = 0;
    double least = std::numeric_limits<double>::max();
    for (std::size_t i = 0; i < ring.size(); ++i) {
        const double across = ring[i].longitude - place.longitude;
        const double up = ring[i].latitude - place.latitude;
        if (const double distance = across * across + up * up; distance < least) {
            least = distance;
            nearest = i;
        }
    }
    return nearest;
}

struct Bridge {
    std::size_t outerCorner;
    std::size_t hole;
};

// Short bridges cross little; past this much searching any corner will do, so that no file takes minutes.
constexpr std::size_t kMaximumSearch = 200'000'000;

std::vector<Bridge> bridgesTo(const CoordinateList& outer, const std::vector<CoordinateList>& rings) {
    const bool searches = outer.size() <= kMaximumSearch / rings.size();
    std::vector<Bridge> bridges;
    bridges.reserve(rings.size());
    for (std::size_t hole = 1; hole < rings.size(); ++hole) {
        if (!rings[hole].empty()) {
            bridges.push_back({searches ? nearestCorner(outer, rings[hole].front()) : 0, hole});
        }
    }
    std::stable_sort(bridges.begin(), bridges.end(),
                     [](const Bridge& a, const Bridge& b) { return a.outerCorner < b.outerCorner; });
    return bridges;
}

} // namespace

CoordinateList outlineWithHoles(const std::vector<CoordinateList>& rings) {
    if (rings.empty()) {
        return {};
    }
    const CoordinateList& outer = rings.front();
    if (rings.size() == 1 || outer.empty()) {
        return outer;
    }
    const bool outerTurnsLeft = turningSense(outer) > 0;
    const auto bridges = bridgesTo(outer, rings);
    CoordinateList outline;
    auto bridge = bridges.begin();
    for (std::size_t i = 0; i < outer.size(); ++i) {
        outline.push_back(outer[i]);
        for (; bridge != bridges.end() && bridge->outerCorner == i; ++bridge) {
            const CoordinateList& hole = rings[bridge->hole];
            // The bridge's end comes twice: where the hole begins and where it closes.
            if ((turningSense(hole) > 0) == outerTurnsLeft) {
                outline.push_back(hole.front());
                outline.insert(outline.end(), hole.rbegin(), hole.rend());
            } else {
                outline.insert(outline.end(), hole.begin(), hole.end());
                outline.push_back(hole.front());
            }
            outline.push_back(outer[i]);
        }
    }
    return outline;
}

} // namespace trelmix::apps
