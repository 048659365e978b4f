#include "common/scene/GeoJsonHoles.h"

#include <cmath>
#include <gtest/gtest.h>

using namespace trelmix;
using namespace trelmix::apps;

namespace {

struct Measure {
    double area = 0, length = 0;
};

Measure measureOf(const CoordinateList& outline) {
    Measure sum;
    for (std::size_t i = 0; i < outline.size(); ++i) {
        const auto& a = outline[i];
        const auto& b = outline[(i + 1) % outline.size()];
        sum.area += (a.longitude * b.latitude - b.longitude * a.latitude) / 2;
        sum.length += std::hypot(b.longitude - a.longitude, b.latitude - a.latitude);
    }
    return sum;
}

CoordinateList square(double centre, double halfSide, bool counterclockwise) {
    CoordinateList ring = {{centre - halfSide, centre - halfSide},
                           {centre - halfSide, centre + halfSide},
                           {centre + halfSide, centre + halfSide},
                           {centre + halfSide, centre - halfSide}};
    if (!counterclockwise) {
        ring = {ring.rbegin(), ring.rend()};
    }
    return ring;
}

} // namespace

TEST(GeoJsonHoles, theOutlineEnclosesTheRingWithoutItsHolesHoweverTheyTurn) {
    for (int turns = 0; turns < 8; ++turns) {
        const auto outline =
            outlineWithHoles({square(0, 10, (turns & 1) != 0), square(-5, 1, (turns & 2) != 0),
                              square(4.3, 2, (turns & 4) != 0)});
        EXPECT_NEAR(std::abs(measureOf(outline).area), 400 - 4 - 16, 1e-9);
        EXPECT_LT(measureOf(outline).length, 80 + 8 + 16 + 4 * 10) << "each hole by the corner next to it";
    }
}

TEST(GeoJson, everyKindOfGeometryIsTakenApart) {
    const auto file = parseGeoJson(R"({"type": "FeatureCollection", "attribution": "somebody", "features": [
        {"type": "Feature", "geometry": null, "properties": null},
        {"type": "Feature", "properties": {"stroke": "#f00", "stroke-width": 4, "fill": "00ff00", "fill-opacity": 0.25,
                                           "marker-color": "no colour", "stroke-opacity": "much"},
         "geometry": {"type": "GeometryCollection", "geometries": [
            {"type": "Point", "coordinates": [1, 2, 300]},
            {"type": "MultiPoint", "coordinates": [[3, 4], [5, 6]]},
            {"type": "LineString", "coordinates": [[0, 0], [1, 1]]},
            {"type": "MultiLineString", "coordinates": [[[0, 0], [1, 1]], [[2, 2], [3, 3]]]},
            {"type": "Polygon", "coordinates": [[[0, 0], [9, 0], [9, 9], [0, 0]], [[5, 1], [6, 1], [6, 2], [5, 1]]]},
            {"type": "GeometryCollection", "geometries": [
               {"type": "MultiPolygon", "coordinates": [[[[0, 0], [9, 0], [9, 9], [0, 0]]], []]}]}]}}]})");
    ASSERT_TRUE(file) << file.reason();
    EXPECT_EQ(file->attribution, "somebody");
    ASSERT_EQ(file->features.size(), 2U);
    EXPECT_TRUE(file->features[0].points.empty());
    const GeoJsonFeature& feature = file->features[1];
    EXPECT_EQ(feature.points, (CoordinateList{{2, 1}, {4, 3}, {6, 5}}));
    EXPECT_EQ(feature.lines.size(), 3U);
    ASSERT_EQ(feature.areas.size(), 2U);
    EXPECT_EQ(feature.areas[0].rings.size(), 2U);
    EXPECT_EQ(feature.areas[0].rings[0].size(), 3U) << "the repeated last position is dropped";
    EXPECT_EQ(feature.style.stroke, (UIColor{1, 0, 0, 1}));
    EXPECT_EQ(feature.style.strokeWidth, 4);
    EXPECT_EQ(feature.style.fill, (UIColor{0, 1, 0, 1}));
    EXPECT_EQ(feature.style.fillOpacity, 0.25);
    EXPECT_FALSE(feature.style.markerColor) << "senseless styles are passed over";
    EXPECT_FALSE(feature.style.strokeOpacity);
}

TEST(GeoJson, everyFaultIsNamedWithItsPlace) {
    const std::pair<const char*, const char*> cases[] = {
        {R"({"type": "Topology"})", "type: names no kind of geometry"},
        {R"({"type": "FeatureCollection"})", "needs the key \"features\""},
        {R"({"type": "FeatureCollection", "features": [{"type": "Point"}]})",
         "features[0].type: must be \"Feature\""},
        {R"({"type": "Point", "coordinates": [0, 91]})", "coordinates[1]: must be a number from -90"},
        {R"({"type": "Point", "coordinates": [7]})", "coordinates: must be a position"},
        {R"({"type": "LineString", "coordinates": [[0, 0]]})", "coordinates: a line needs"},
        {R"({"type": "Polygon", "coordinates": [[[0, 0], [1, 1], [0, 0]]]})", "coordinates[0]: a ring needs"},
        {R"({"type": "MultiPoint", "coordinates": 5})", "coordinates: must be an array"},
        {R"({"type": "GeometryCollection", "geometries": [{"type": "Point", "coordinates": [[1, 2], 3]}]})",
         "geometries[0].coordinates[0]: must be a number"},
    };
    for (const auto& [text, reason] : cases) {
        const auto file = parseGeoJson(text);
        ASSERT_FALSE(file) << text;
        EXPECT_TRUE(file.reason().starts_with(reason)) << text << " -> " << file.reason();
    }
    std::string deep;
    for (int i = 0; i < 100'000; ++i) {
        deep += R"({"type":"GeometryCollection","geometries":[)";
    }
    EXPECT_FALSE(parseGeoJson(deep));
}
