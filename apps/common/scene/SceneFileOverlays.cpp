#include "common/scene/SceneFileOverlays.h"

#include "common/scene/SceneFileGeoJson.h"
#include "common/scene/SceneFileReading.h"

namespace trelmix::apps {

namespace {

std::vector<CLLocationCoordinate2D> readCoordinates(const JsonCursor& at, std::size_t least) {
    const std::size_t count = at.size();
    if (count < least) {
        at.fail("needs at least " + std::to_string(least) + " coordinates");
    }
    std::vector<CLLocationCoordinate2D> coordinates;
    coordinates.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        const JsonCursor item = at.item(i);
        coordinates.push_back(readCoordinate(item));
    }
    return coordinates;
}

bool flagOr(const JsonCursor& at, std::string_view key, bool otherwise) {
    const auto flag = at.member(key);
    return flag ? flag->boolean() : otherwise;
}

CLLocationCoordinate2D requiredCoordinate(const JsonCursor& at) {
    const JsonCursor coordinate = at.required("coordinate");
    return readCoordinate(coordinate);
}

SceneLevelPlan readLevelPlan(const JsonCursor& at, const std::string& folder) {
    at.expectObject({"image", "southWest", "northEast", "rotation", "level", "attribution"}, kOverlayKeys);
    SceneLevelPlan plan;
    plan.overlay = readOverlay(at);
    plan.image = readPath(at.required("image"), folder);
    const JsonCursor southWest = at.required("southWest");
    const JsonCursor northEast = at.required("northEast");
    plan.box = readBox(southWest, northEast);
    plan.rotation = optionalNumber(at, "rotation", -3600, 3600).value_or(0);
    if (const auto level = at.member("level")) {
        plan.level = level->integer();
    }
    if (const auto attribution = at.member("attribution")) {
        plan.attribution = attribution->text();
    }
    return plan;
}

SceneMarker readMarker(const JsonCursor& at, const std::string& folder) {
    at.expectObject({"coordinate", "icon", "groundAnchor", "flat", "rotation", "draggable"}, kOverlayKeys);
    SceneMarker marker;
    marker.overlay = readOverlay(at);
    marker.coordinate = requiredCoordinate(at);
    if (const auto icon = at.member("icon")) {
        marker.icon = readPath(*icon, folder);
    }
    if (const auto anchor = at.member("groundAnchor")) {
        if (anchor->size() != 2) {
            anchor->fail("must be two numbers: across and down");
        }
        marker.anchor = CGPoint{anchor->item(0).number(-100, 100), anchor->item(1).number(-100, 100)};
    }
    marker.flat = flagOr(at, "flat", false);
    marker.rotation = optionalNumber(at, "rotation", -3600, 3600).value_or(0);
    marker.draggable = flagOr(at, "draggable", false);
    return marker;
}

SceneCircle readCircle(const JsonCursor& at) {
    at.expectObject({"coordinate", "radius", "color"}, kOverlayKeys);
    SceneCircle circle;
    circle.overlay = readOverlay(at);
    circle.coordinate = requiredCoordinate(at);
    circle.radius = at.required("radius").number(0, kMaximumMetres);
    circle.color = optionalColor(at);
    return circle;
}

ScenePolygon readPolygon(const JsonCursor& at) {
    at.expectObject({"corners", "color"}, kOverlayKeys);
    ScenePolygon polygon;
    polygon.overlay = readOverlay(at);
    polygon.corners = readCoordinates(at.required("corners"), 3);
    polygon.color = optionalColor(at);
    return polygon;
}

ScenePolyline readPolyline(const JsonCursor& at) {
    at.expectObject({"vertices", "color", "width"}, kOverlayKeys);
    ScenePolyline line;
    line.overlay = readOverlay(at);
    line.vertices = readCoordinates(at.required("vertices"), 2);
    line.color = optionalColor(at);
    line.width = optionalWidth(at);
    return line;
}

} // namespace

void readOverlaySections(const JsonCursor& root, const std::string& folder, SceneFile& scene) {
    forEachItem(root, "levelPlans",
                [&](const JsonCursor& at) { scene.levelPlans.push_back(readLevelPlan(at, folder)); });
    forEachItem(root, "markers",
                [&](const JsonCursor& at) { scene.markers.push_back(readMarker(at, folder)); });
    forEachItem(root, "circles", [&](const JsonCursor& at) { scene.circles.push_back(readCircle(at)); });
    forEachItem(root, "polygons", [&](const JsonCursor& at) { scene.polygons.push_back(readPolygon(at)); });
    forEachItem(root, "polylines",
                [&](const JsonCursor& at) { scene.polylines.push_back(readPolyline(at)); });
    forEachItem(root, "geojson",
                [&](const JsonCursor& at) { scene.geojson.push_back(readGeoJson(at, folder)); });
}

} // namespace trelmix::apps
