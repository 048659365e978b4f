// GeoJSON is either read, with coordinates that are on the map and areas that give an outline, or refused.
#include "common/scene/GeoJsonHoles.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace trelmix;
    using namespace trelmix::apps;
    const auto file = parseGeoJson({reinterpret_cast<const char*>(data), size});
    if (!file) {
        return file.reason().empty() ? (std::abort(), 0) : 0;
    }
    for (const GeoJsonFeature& feature : file->features) {
        for (const GeoJsonArea& area : feature.areas) {
            const CoordinateList outline = outlineWithHoles(area.rings);
            if (outline.size() < 3 ||
                !std::all_of(outline.begin(), outline.end(), CLLocationCoordinate2DIsValid)) {
                std::abort();
            }
        }
        if (!std::all_of(feature.points.begin(), feature.points.end(), CLLocationCoordinate2DIsValid)) {
            std::abort();
        }
    }
    return 0;
}
