// Every key that docs/scene-file.md lists, set in a scene: it is accepted, and reaches what it is about.
#include "common/scene/MapScene.h"
#include "common/scene/SceneOverlays.h"
#include "common/scene/SceneSideview.h"
#include "support/Pixels.h"
#include "support/ScratchFolder.h"

#include <Trelmix/TrelmixLevelPlanNode.h>
#include <Trelmix/TrelmixMapCircle.h>
#include <Trelmix/TrelmixMapMarker.h>
#include <Trelmix/TrelmixMapPolygon.h>
#include <Trelmix/TrelmixMapPolyline.h>

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <sstream>

using namespace trelmix;
using namespace trelmix::apps;

namespace {

using Members = std::map<std::string, std::string>;

std::ostream& operator<<(std::ostream& out, const UIColor& c) {
    return out << std::lround(c.red * 255) << ',' << std::lround(c.green * 255) << ','
               << std::lround(c.blue * 255) << '/' << std::lround(c.alpha * 100);
}
std::ostream& operator<<(std::ostream& out, CLLocationCoordinate2D place) {
    return out << std::lround(place.latitude * 100) << '/' << std::lround(place.longitude * 100);
}

void tell(std::ostream& out, const TrelmixMapOverlay& overlay) {
    const std::any info = overlay.userInfo();
    const auto* tag = std::any_cast<SceneTag>(&info);
    out << "z " << overlay.zIndex() << (overlay.visible() ? "" : " hidden") << " opacity "
        << overlay.opacity() << (overlay.tappable() ? " tappable" : "") << " id " << (tag ? tag->id : "");
    if (const auto* marker = dynamic_cast<const TrelmixMapMarker*>(&overlay)) {
        out << " marker " << marker->coordinate() << " icon " << marker->markerIcon()->pixelWidth()
            << " tint " << marker->tint() << " anchor " << marker->groundAnchor().x << '/'
            << marker->groundAnchor().y << (marker->isFlat() ? " flat" : "") << " turned "
            << marker->markerRotation() << (marker->isDraggable() ? " draggable" : "");
    } else if (const auto* circle = dynamic_cast<const TrelmixMapCircle*>(&overlay)) {
        out << " circle " << circle->coordinate() << " radius " << circle->radius() << " in "
            << *circle->color();
    } else if (const auto* polygon = dynamic_cast<const TrelmixMapPolygon*>(&overlay)) {
        out << " polygon of " << polygon->polygonCorners().size() << " in " << *polygon->color();
    } else if (const auto* line = dynamic_cast<const TrelmixMapPolyline*>(&overlay)) {
        out << " line of " << line->polylineVertices().size() << " in " << line->color() << " width "
            << line->width();
    } else if (const auto* plan = dynamic_cast<const TrelmixLevelPlanNode*>(&overlay)) {
        out << " plan " << plan->levelPlanImage()->pixelWidth() << ' ' << plan->southWest() << ' '
            << plan->northEast() << " turned " << plan->levelPlanRotation();
    }
    out << '\n';
}

/// What became of a scene, as text.
std::string told(const std::string& text, const ScratchFolder& folder) {
    const auto scene = parseSceneFile(text, folder.path(""));
    if (!scene) {
        return scene.reason();
    }
    const auto content = loadSceneContent(*scene, "scene");
    if (!content) {
        return content.reason();
    }
    const CGSize size{scene->view.width, scene->view.height};
    const auto map = buildMapScene(*scene, *content, scene->camera.value_or(SceneCamera{{1, 2}, 17, 0, 0}),
                                   size, std::make_shared<TileServer>());
    const auto camera = map.engine->camera();
    std::ostringstream out;
    out << "view " << size.width << 'x' << size.height << '*' << scene->view.scale << " on "
        << *map.engine->backgroundColor() << "\ncamera " << camera->target() << " zoom " << camera->zoom()
        << " heading " << std::lround(camera->rotation()) << " tilt " << std::lround(camera->viewingAngle())
        << "\nlimits " << map.engine->minZoom() << '-' << map.engine->maxZoom() << ' '
        << map.engine->cameraTargetBoundsSouthWest() << ' ' << map.engine->cameraTargetBoundsNorthEast()
        << "\nattribution " << content->attribution << '\n';
    for (std::size_t i = 0; i < map.layers.size(); ++i) {
        const auto& source = content->tiles[i];
        out << "tiles " << (source ? source->store().name() : scene->tiles[i].url) << ' ';
        tell(out, *map.layers[i]);
    }
    for (const auto& plan : scene->levelPlans) {
        out << "level " << plan.level.value_or(-1) << '\n';
    }
    for (const auto& overlay : map.overlays) {
        tell(out, *overlay);
    }
    if (scene->sideView) {
        const auto side = makeSceneSideview(*scene->sideView, "scene", size, map.engine);
        if (!side) {
            return side.reason();
        }
        const bool natural = (*side)->behaviour() == SideviewBehaviour::natural();
        out << (natural ? "natural " : "") << "side on " << (*side)->levelNumber() << " of "
            << (*side)->levelNumbers().size() << " user "
            << ((*side)->userPositionIcon() ? (*side)->userPositionIcon()->pixelWidth() : 0) << " markers "
            << scene->sideView->markers.size() << " path "
            << (scene->sideView->path ? scene->sideView->path->points.size() : 0) << '\n';
    }
    return out.str();
}

/// A section's keys by their headings; keys in one row have one meaning.
std::map<std::string, std::set<std::string>> documentedKeys() {
    std::ifstream file(TRELMIX_SCENE_DOCUMENT);
    std::map<std::string, std::set<std::string>> keys;
    std::string section;
    const std::regex code("`([A-Za-z-]+)`");
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with("##")) {
            section = std::regex_replace(line, std::regex("^#+ |\""), "");
        } else if (line.starts_with("| `")) {
            const std::string first = line.substr(0, line.find('|', 1));
            for (std::sregex_iterator it(first.begin(), first.end(), code), end; it != end; ++it) {
                keys[section].insert((*it)[1]);
            }
        }
    }
    return keys;
}

struct KeyCase {
    const char* section;
    const char* key;
    const char* value;
    /// What the scene's text then says, and does not say without the key.
    const char* expected;
};

struct SectionCase {
    const char* heading;
    /// The scene, with % where the members stand.
    std::string frame;
    /// What stands there besides.
    Members others;
};

std::string sceneOf(const SectionCase& section, Members members) {
    members.insert(section.others.begin(), section.others.end());
    std::string text;
    for (const auto& [key, value] : members) {
        text += (text.empty() ? "\"" : ", \"") + key + "\": " + value;
    }
    return std::string(section.frame).replace(section.frame.find('%'), 1, text);
}

constexpr const char* kHere = R"({"lat": 1, "lon": 2})";
constexpr const char* kThere = R"({"lat": 3, "lon": 4})";

std::vector<SectionCase> sections() {
    const std::string ring = std::string("[") + kHere + ", " + kThere + R"(, {"lat": 1, "lon": 4}])";
    return {
        {"view", R"({"view": {%}})", {}},
        {"camera", R"({"camera": {%}})", {{"target", kHere}, {"zoom", "17"}}},
        {"limits", R"({"limits": {%}})", {}},
        {"Overlays",
         R"({"circles": [{"coordinate": {"lat": 1, "lon": 2}, "radius": 5, %}]})",
         {{"color", "\"#fff\""}}},
        {"tiles", R"({"tiles": [{%}]})", {}},
        {"levelPlans",
         R"({"levelPlans": [{%}]})",
         {{"image", "\"six.png\""}, {"southWest", kHere}, {"northEast", kThere}}},
        {"markers", R"({"markers": [{%}]})", {{"coordinate", kHere}}},
        {"circles", R"({"circles": [{%}]})", {{"coordinate", kHere}, {"radius", "5"}}},
        {"polygons", R"({"polygons": [{%}]})", {{"corners", ring}}},
        {"polylines", R"({"polylines": [{%}]})", {{"vertices", ring}}},
        {"geojson", R"({"geojson": [{%}]})", {{"file", "\"town.geojson\""}}},
        {"style of geojson",
         R"({"geojson": [{"file": "town.geojson", "color": "#00000080", "style": [
             {"fill": "#111111", "marker-color": "#111111", "radius": 3}, {%}]}]})",
         {}},
        {"sideView", R"({"sideView": {%}})", {{"image", "\"six.png\""}, {"levels", "\"levels.json\""}}},
    };
}

constexpr KeyCase kKeys[] = {
    {"view", "width", "320", "view 320x"},
    {"view", "height", "200", "x200*"},
    {"view", "scale", "2", "*2 on"},
    {"view", "background", "\"#ff0000\"", "on 255,0,0/100"},
    {"camera", "target", kThere, "camera 300/400"},
    {"camera", "zoom", "19", "zoom 19"},
    {"camera", "rotation", "30", "heading 30"},
    {"camera", "viewingAngle", "40", "tilt 40"},
    // Corners come in pairs.
    {"limits", "minZoom", R"(16, "maxZoom": 16)", "limits 16-16"},
    {"limits", "maxZoom", "21", "-21 "},
    {"limits", "southWest", R"({"lat": 0, "lon": 1}, "northEast": {"lat": 2, "lon": 3})", " 0/100 200/300"},
    {"limits", "northEast", R"({"lat": 2, "lon": 3}, "southWest": {"lat": 0, "lon": 1})", " 0/100 200/300"},
    {"Overlays", "zIndex", "40", "z 40"},
    {"Overlays", "visible", "false", "hidden"},
    {"Overlays", "opacity", "0.5", "opacity 0.5"},
    {"Overlays", "tappable", "true", "tappable"},
    {"Overlays", "id", "\"name\"", "id name"},
    {"tiles", "directory", "\"t/{z}/{x}/{y}.png\"", "t/{z}/{x}/{y}.png z 25"},
    {"tiles", "url", "\"http://a/{z}/{x}/{y}\"", "tiles http://a/{z}/{x}/{y} z 25"},
    {"tiles", "attribution", R"("us", "directory": "{z}/{x}/{y}")", "attribution us"},
    {"levelPlans", "image", "\"nine.png\"", "plan 9"},
    {"levelPlans", "southWest", R"({"lat": 0, "lon": 0})", " 0/0 300/400"},
    {"levelPlans", "northEast", R"({"lat": 5, "lon": 5})", " 100/200 500/500"},
    {"levelPlans", "rotation", "-15", "turned -15"},
    {"levelPlans", "level", "3", "level 3"},
    {"levelPlans", "attribution", "\"us\"", "attribution us"},
    {"markers", "coordinate", kThere, "marker 300/400"},
    {"markers", "icon", "\"six.png\"", "icon 6 tint 255,255,255/100 anchor 0.5/0.5"},
    {"markers", "groundAnchor", "[0.25, 2]", "anchor 0.25/2"},
    {"markers", "flat", "true", "flat"},
    {"markers", "rotation", "15", "turned 15"},
    {"markers", "draggable", "true", "draggable"},
    {"circles", "coordinate", kThere, "circle 300/400"},
    {"circles", "radius", "7", "radius 7"},
    {"circles", "color", "\"#01020380\"", "in 1,2,3/50"},
    {"polygons", "corners",
     R"([{"lat": 0, "lon": 0}, {"lat": 1, "lon": 0}, {"lat": 1, "lon": 1}, {"lat": 0, "lon": 1}])",
     "polygon of 4"},
    {"polygons", "color", "\"#010203\"", "in 1,2,3/100"},
    {"polylines", "vertices", R"([{"lat": 0, "lon": 0}, {"lat": 1, "lon": 0}])", "line of 2"},
    {"polylines", "color", "\"#010203\"", "in 1,2,3/100"},
    {"polylines", "width", "9", "width 9"},
    {"geojson", "file", "\"dot.geojson\"", "attribution dots"},
    {"geojson", "color", "\"#010203\"", "polygon of 3 in 1,2,3/60"},
    {"geojson", "width", "9", "width 9"},
    {"geojson", "radius", "8", "radius 8 in 126,126,126/100"},
    {"geojson", "icon", "\"six.png\"", "icon 6"},
    {"geojson", "style", R"([{"fill": "#010203"}])", "polygon of 3 in 1,2,3/60"},
    {"geojson", "attribution", "\"us\"", "attribution us"},
    // Of two rules the later one comes first; what the feature itself says, a red line, before both.
    {"style of geojson", "where", R"({"kind": ["wood", "park"], "rank": 1, "none": null}, "fill": "#222222")",
     "polygon of 3 in 34,34,34/50"},
    {"style of geojson", "stroke", "\"#010203\"", "line of 4 in 1,2,3/50"},
    {"style of geojson", "stroke-opacity", "0.25", "in 255,0,0/25"},
    {"style of geojson", "stroke-width", "9", "line of 2 in 255,0,0/50 width 9"},
    {"style of geojson", "fill", "\"#010203ff\"", "in 1,2,3/100"},
    {"style of geojson", "fill-opacity", "0.25", "in 17,17,17/25"},
    {"style of geojson", "marker-color", "\"#010203\"", "radius 3 in 1,2,3/50"},
    {"style of geojson", "radius", "8", "radius 8"},
    {"style of geojson", "icon", "\"none.png\"", "geojson[0].style[1].icon"},
    {"style of geojson", "visible", "false", "hidden"},
    {"style of geojson", "zIndex", "44", "z 44"},
    {"sideView", "behaviour", "\"natural\"", "natural side on 3"},
    {"sideView", "image", "\"none.png\"", "sideView.image: "},
    {"sideView", "levels", "\"two.json\"", "side on 3 of 2"},
    {"sideView", "displayedLevel", "7", "side on 7"},
    {"sideView", "userPosition", R"({"lat": 0, "lon": 0, "level": 3, "icon": "six.png"})", "user 6"},
    {"sideView", "markers", R"([{"identifier": "a", "icon": "six.png", "lat": 0, "lon": 0, "level": 3}])",
     "markers 1"},
    {"sideView", "path",
     R"({"points": [{"lat": 0, "lon": 0, "level": 3}, {"lat": 0, "lon": 1, "level": 3}]})", "path 2"},
};

void writeFiles(const ScratchFolder& folder) {
    folder.write("six.png", plainImage(6, 6)->pngData());
    folder.write("nine.png", plainImage(9, 9)->pngData());
    folder.write("dot.geojson", R"({"type": "Point", "coordinates": [0, 0], "attribution": "dots"})");
    folder.write("town.geojson", R"({"type": "FeatureCollection", "features": [
        {"type": "Feature", "properties": {"kind": "park", "rank": 1.0}, "geometry":
            {"type": "Polygon", "coordinates": [[[0, 0], [1, 0], [1, 1], [0, 0]]]}},
        {"type": "Feature", "properties": {"kind": "park", "rank": 2, "none": 0, "stroke": "#ff0000"}, "geometry":
            {"type": "LineString", "coordinates": [[0, 0], [1, 1]]}},
        {"type": "Feature", "properties": null, "geometry": {"type": "Point", "coordinates": [0, 0]}}]})");
    const std::string level =
        R"({"levelNumber": 3, "levelbounds": [{"relativeheight": 0, "ceilingheight": 5}]})";
    const std::string box = R"({"bearing": 90, "southLatitude": -0.001, "northLatitude": 0.001,
        "westLongitude": -0.002, "eastLongitude": 0.002, "levels": [)";
    folder.write("levels.json", box + level + "]}");
    folder.write("two.json",
                 box + level +
                     R"(, {"levelNumber": 4, "levelbounds": [{"relativeheight": 5, "ceilingheight": 5}]}]})");
}

} // namespace

TEST(SceneKeys, everyDocumentedOneReachesWhatItIsAbout) {
    const ScratchFolder folder;
    writeFiles(folder);
    auto documented = documentedKeys();
    documented["tiles"].erase("mbtiles"); // has tests of its own
    for (const SectionCase& section : sections()) {
        std::set<std::string> tried;
        const std::string plain = told(sceneOf(section, {}), folder);
        for (const KeyCase& c : kKeys) {
            if (c.section != std::string(section.heading)) {
                continue;
            }
            const std::string text = told(sceneOf(section, {{c.key, c.value}}), folder);
            EXPECT_NE(text.find(c.expected), std::string::npos) << section.heading << "." << c.key << "\n"
                                                                << text;
            EXPECT_EQ(plain.find(c.expected), std::string::npos) << section.heading << "." << c.key << "\n"
                                                                 << plain;
            tried.insert(c.key);
        }
        EXPECT_EQ(tried, documented[section.heading]) << section.heading;
        documented.erase(section.heading);
    }
    for (const auto& [heading, keys] : documented) {
        EXPECT_TRUE(keys.empty()) << heading;
    }
}
