#include "common/scene/GeoJson.h"

#include "common/Files.h"
#include "common/JsonCursor.h"
#include "common/scene/SceneFile.h"

namespace trelmix::apps {

namespace {

std::optional<UIColor> styleColor(const JsonValue& properties, std::string_view key) {
    const JsonValue* value = properties.find(key);
    const std::string* text = value != nullptr ? value->text() : nullptr;
    if (text == nullptr) {
        return std::nullopt;
    }
    // The style allows colours with and without the leading sign.
    return colorFromHex(text->starts_with('#') ? *text : "#" + *text);
}

std::optional<double> styleNumber(const JsonValue& properties, std::string_view key, double most) {
    const JsonValue* value = properties.find(key);
    const auto number = value != nullptr ? value->number() : std::nullopt;
    return number && *number >= 0 && *number <= most ? number : std::nullopt;
}

GeoJsonStyle readStyle(const JsonValue& properties) {
    GeoJsonStyle style;
    style.stroke = styleColor(properties, "stroke");
    style.strokeOpacity = styleNumber(properties, "stroke-opacity", 1);
    style.strokeWidth = styleNumber(properties, "stroke-width", 1000);
    style.fill = styleColor(properties, "fill");
    style.fillOpacity = styleNumber(properties, "fill-opacity", 1);
    style.markerColor = styleColor(properties, "marker-color");
    return style;
}

CLLocationCoordinate2D readPosition(const JsonCursor& at) {
    if (at.size() < 2) {
        at.fail("must be a position: longitude and latitude");
    }
    return {at.item(1).number(-90, 90), at.item(0).number(-180, 180)};
}

CoordinateList readPositions(const JsonCursor& at) {
    CoordinateList positions;
    const std::size_t count = at.size();
    positions.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        const JsonCursor item = at.item(i);
        positions.push_back(readPosition(item));
    }
    return positions;
}

void readLine(const JsonCursor& at, GeoJsonFeature& feature) {
    CoordinateList line = readPositions(at);
    if (line.size() == 1) {
        at.fail("a line needs at least two positions");
    }
    if (!line.empty()) {
        feature.lines.push_back(std::move(line));
    }
}

void readArea(const JsonCursor& at, GeoJsonFeature& feature) {
    GeoJsonArea area;
    const std::size_t count = at.size();
    for (std::size_t i = 0; i < count; ++i) {
        const JsonCursor item = at.item(i);
        CoordinateList ring = readPositions(item);
        if (ring.size() > 1 && ring.front() == ring.back()) {
            ring.pop_back();
        }
        if (ring.size() < 3) {
            item.fail("a ring needs at least four positions, the last like the first");
        }
        area.rings.push_back(std::move(ring));
    }
    if (!area.rings.empty()) {
        feature.areas.push_back(std::move(area));
    }
}

void readPoint(const JsonCursor& at, GeoJsonFeature& feature) {
    if (at.size() > 0) {
        feature.points.push_back(readPosition(at));
    }
}

template <class Read>
void readEach(const JsonCursor& at, GeoJsonFeature& feature, Read read) {
    const std::size_t count = at.size();
    for (std::size_t i = 0; i < count; ++i) {
        const JsonCursor item = at.item(i);
        read(item, feature);
    }
}

// Collections may hold collections; the parser's limit on nesting bounds the recursion.
void readGeometry(const JsonCursor& at, GeoJsonFeature& feature) {
    const JsonCursor typeAt = at.required("type");
    const std::string& type = typeAt.text();
    if (type == "GeometryCollection") {
        const JsonCursor geometries = at.required("geometries");
        readEach(geometries, feature, readGeometry);
        return;
    }
    const bool isKnown = type == "Point" || type == "MultiPoint" || type == "LineString" ||
                         type == "MultiLineString" || type == "Polygon" || type == "MultiPolygon";
    if (!isKnown) {
        typeAt.fail("names no kind of geometry: " + quotedJson(type));
    }
    const JsonCursor coordinates = at.required("coordinates");
    if (type == "Point") {
        readPoint(coordinates, feature);
    } else if (type == "MultiPoint") {
        readEach(coordinates, feature, readPoint);
    } else if (type == "LineString") {
        readLine(coordinates, feature);
    } else if (type == "MultiLineString") {
        readEach(coordinates, feature, readLine);
    } else if (type == "Polygon") {
        readArea(coordinates, feature);
    } else {
        readEach(coordinates, feature, readArea);
    }
}

GeoJsonFeature readFeature(const JsonCursor& at) {
    const JsonCursor typeAt = at.required("type");
    if (typeAt.text() != "Feature") {
        typeAt.fail("must be \"Feature\"");
    }
    GeoJsonFeature feature;
    if (const auto properties = at.member("properties")) {
        feature.style = readStyle(properties->value());
        if (properties->value().object() != nullptr) {
            feature.properties = std::make_shared<JsonValue>(properties->value());
        }
    }
    if (const auto geometry = at.member("geometry"); geometry && !geometry->value().isNull()) {
        readGeometry(*geometry, feature);
    }
    return feature;
}

GeoJsonFile readTop(const JsonCursor& root) {
    GeoJsonFile file;
    const JsonCursor typeAt = root.required("type");
    const std::string& type = typeAt.text();
    if (const JsonValue* attribution = root.value().find("attribution")) {
        file.attribution = attribution->text() != nullptr ? *attribution->text() : std::string();
    }
    if (type == "FeatureCollection") {
        const JsonCursor features = root.required("features");
        const std::size_t count = features.size();
        file.features.reserve(count);
        for (std::size_t i = 0; i < count; ++i) {
            const JsonCursor feature = features.item(i);
            file.features.push_back(readFeature(feature));
        }
    } else if (type == "Feature") {
        file.features.push_back(readFeature(root));
    } else {
        readGeometry(root, file.features.emplace_back());
    }
    return file;
}

} // namespace

Result<GeoJsonFile> parseGeoJson(std::string_view text) {
    const auto json = parseJson(text);
    if (!json) {
        return Result<GeoJsonFile>::failure(json.reason());
    }
    try {
        return readTop(JsonCursor(*json));
    } catch (const JsonError& error) {
        return Result<GeoJsonFile>::failure(error.what());
    }
}

Result<GeoJsonFile> readGeoJsonFile(const std::string& path) {
    const auto bytes = loadFile(path, kMaximumJsonBytes);
    if (!bytes) {
        return Result<GeoJsonFile>::failure(path + ": " + bytes.reason());
    }
    auto file = parseGeoJson({reinterpret_cast<const char*>(bytes->data()), bytes->size()});
    return file ? std::move(file) : Result<GeoJsonFile>::failure(path + ": " + file.reason());
}

} // namespace trelmix::apps
