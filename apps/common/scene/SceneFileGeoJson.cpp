#include "common/scene/SceneFileGeoJson.h"

#include "common/scene/GeoJson.h"
#include "common/scene/SceneFileReading.h"

namespace trelmix::apps {

namespace {

constexpr std::size_t kLengthWithOpacity = 9;

/// "#rrggbbaa" says an opacity too.
void readColorAndOpacity(const JsonCursor& at, std::string_view key, std::optional<UIColor>& color,
                         std::optional<double>& opacity) {
    if (const auto text = at.member(key)) {
        const UIColor read = readColor(*text);
        color = read.colorWithAlphaComponent(1);
        if (text->text().size() == kLengthWithOpacity) {
            opacity = read.alpha;
        }
    }
}

std::optional<double> numberOr(std::optional<double> number, std::optional<double> otherwise) {
    return number ? number : otherwise;
}

/// The keys that a rule and the whole entry share.
void readPointKeys(const JsonCursor& at, const std::string& folder, GeoJsonStyle& style) {
    style.radius = optionalNumber(at, "radius", 0, kMaximumMetres);
    if (const auto icon = at.member("icon")) {
        style.icon = readPath(*icon, folder);
    }
}

GeoJsonStyle readFixedStyle(const JsonCursor& at, const std::string& folder) {
    GeoJsonStyle style;
    readColorAndOpacity(at, "color", style.stroke, style.strokeOpacity);
    readColorAndOpacity(at, "color", style.fill, style.fillOpacity);
    readColorAndOpacity(at, "color", style.markerColor, style.markerOpacity);
    style.strokeWidth = optionalWidth(at);
    readPointKeys(at, folder, style);
    return style;
}

GeoJsonScalar readScalar(const JsonCursor& at) {
    auto scalar = scalarOf(at.value());
    if (!scalar) {
        at.fail("must be a text, a number, true, false or null");
    }
    return std::move(*scalar);
}

std::vector<GeoJsonScalar> readValues(const JsonCursor& at) {
    if (at.value().array() == nullptr) {
        return {readScalar(at)};
    }
    std::vector<GeoJsonScalar> values;
    const std::size_t count = at.size();
    for (std::size_t i = 0; i < count; ++i) {
        const JsonCursor item = at.item(i);
        values.push_back(readScalar(item));
    }
    return values;
}

GeoJsonRule readRule(const JsonCursor& at, const std::string& folder) {
    at.expectObject({"where", "stroke", "stroke-opacity", "stroke-width", "fill", "fill-opacity",
                     "marker-color", "radius", "icon", "visible", "zIndex"});
    GeoJsonRule rule;
    if (const auto where = at.member("where")) {
        const auto* members = where->value().object();
        if (members == nullptr) {
            where->fail("must be an object");
        }
        for (const auto& member : *members) {
            const JsonCursor value = where->required(member.key);
            rule.where.emplace_back(member.key, readValues(value));
        }
    }
    GeoJsonStyle& style = rule.style;
    readColorAndOpacity(at, "stroke", style.stroke, style.strokeOpacity);
    readColorAndOpacity(at, "fill", style.fill, style.fillOpacity);
    readColorAndOpacity(at, "marker-color", style.markerColor, style.markerOpacity);
    style.strokeOpacity = numberOr(optionalNumber(at, "stroke-opacity", 0, 1), style.strokeOpacity);
    style.fillOpacity = numberOr(optionalNumber(at, "fill-opacity", 0, 1), style.fillOpacity);
    style.strokeWidth = optionalNumber(at, "stroke-width", 0, kMaximumLineWidth);
    readPointKeys(at, folder, style);
    const SceneOverlay keys = readOverlay(at);
    style.visible = keys.visible;
    style.zIndex = keys.zIndex;
    return rule;
}

} // namespace

SceneGeoJson readGeoJson(const JsonCursor& at, const std::string& folder) {
    at.expectObject({"file", "color", "width", "radius", "icon", "style", "attribution"}, kOverlayKeys);
    SceneGeoJson geojson;
    geojson.overlay = readOverlay(at);
    geojson.file = readPath(at.required("file"), folder);
    geojson.style = readFixedStyle(at, folder);
    forEachItem(at, "style",
                [&](const JsonCursor& rule) { geojson.rules.push_back(readRule(rule, folder)); });
    if (const auto attribution = at.member("attribution")) {
        geojson.attribution = attribution->text();
    }
    return geojson;
}

} // namespace trelmix::apps
