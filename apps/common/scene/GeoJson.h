#pragma once

#include "common/Json.h"
#include "common/scene/GeoJsonStyle.h"

#include <Trelmix/Platform/CLLocation.h>
#include <Trelmix/Platform/Result.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace trelmix::apps {

using CoordinateList = std::vector<CLLocationCoordinate2D>;

/// Rings without the repeated last position: the outer one, then its holes.
struct GeoJsonArea {
    std::vector<CoordinateList> rings;
};

/// What one feature draws; multi forms and collections are taken apart, a null geometry leaves everything
/// empty.
struct GeoJsonFeature {
    /// As they stand in the file; empty when there are none.
    std::shared_ptr<const JsonValue> properties;
    /// What its simple style properties say; senseless ones are absent.
    GeoJsonStyle style;
    CoordinateList points;
    std::vector<CoordinateList> lines;
    std::vector<GeoJsonArea> areas;
};

struct GeoJsonFile {
    std::vector<GeoJsonFeature> features;
    /// The top object's own "attribution" text, empty when it has none.
    std::string attribution;
};

/// Reads RFC 7946: a geometry, a feature or a collection. Altitudes and unknown members are passed over,
/// lines across the antimeridian are left as they are. The reason names the place and what is wrong there.
Result<GeoJsonFile> parseGeoJson(std::string_view text);
/// The same for a file; the reason begins with its path.
Result<GeoJsonFile> readGeoJsonFile(const std::string& path);

} // namespace trelmix::apps
