#include "common/scene/SceneFile.h"

#include "common/Files.h"
#include "common/scene/SceneFileOverlays.h"
#include "common/scene/SceneFileReading.h"
#include "common/scene/SceneFileSideview.h"
#include "common/tiles/TileStore.h"

#include <Trelmix/Platform/UIImage.h>
#include <Trelmix/Platform/URL.h>

#include <cmath>
#include <filesystem>
#include <set>

namespace trelmix::apps {

namespace {

constexpr double kMaximumPixels = 16384;
constexpr std::string_view kArchiveEnding = ".mbtiles";
constexpr std::string_view kGeoJsonEnding = ".geojson";

int hexDigit(char c) {
    if (c >= '0' && c <= '9') {
        return c - '0';
    }
    const char lower = static_cast<char>(c | 0x20);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

SceneView readView(const JsonCursor& at) {
    at.expectObject({"width", "height", "scale", "background"});
    SceneView view;
    if (const auto width = at.member("width")) {
        view.width = width->number(1, kMaximumPixels);
    }
    if (const auto height = at.member("height")) {
        view.height = height->number(1, kMaximumPixels);
    }
    if (const auto scale = at.member("scale")) {
        view.scale = scale->number(0.1, 16);
    }
    if (const auto background = at.member("background")) {
        view.background = readColor(*background);
    }
    if (const std::string fault = faultOfViewSize(view.width, view.height, view.scale); !fault.empty()) {
        at.fail(fault);
    }
    return view;
}

SceneCamera readCamera(const JsonCursor& at) {
    at.expectObject({"target", "zoom", "rotation", "viewingAngle"});
    SceneCamera camera;
    const JsonCursor target = at.required("target");
    camera.target = readCoordinate(target);
    camera.zoom = at.required("zoom").number(0, 30);
    if (const auto rotation = at.member("rotation")) {
        camera.rotation = rotation->number(-3600, 3600);
    }
    if (const auto angle = at.member("viewingAngle")) {
        camera.viewingAngle = angle->number(0, 90);
    }
    return camera;
}

SceneLimits readLimits(const JsonCursor& at) {
    at.expectObject({"minZoom", "maxZoom", "southWest", "northEast"});
    SceneLimits limits;
    if (const auto zoom = at.member("minZoom")) {
        limits.minZoom = zoom->number(0, 30);
    }
    if (const auto zoom = at.member("maxZoom")) {
        limits.maxZoom = zoom->number(0, 30);
    }
    if (limits.minZoom && limits.maxZoom && *limits.minZoom > *limits.maxZoom) {
        at.fail("minZoom must not be greater than maxZoom");
    }
    if (at.member("southWest") || at.member("northEast")) {
        const JsonCursor southWest = at.required("southWest");
        const JsonCursor northEast = at.required("northEast");
        limits.target = readBox(southWest, northEast);
    }
    return limits;
}

void expectTemplate(const JsonCursor& at) {
    for (const std::string_view part : {"{z}", "{x}", "{y}"}) {
        if (at.text().find(part) == std::string::npos) {
            at.fail("must contain " + std::string(part));
        }
    }
}

void expectAddress(const JsonCursor& at) {
    const std::string filled = filledTemplate(at.text(), {});
    if (const std::size_t brace = filled.find_first_of("{}"); brace != std::string::npos) {
        at.fail("has the unknown placeholder " +
                quotedJson(filled.substr(brace, filled.find('}', brace) - brace + 1)) +
                "; known are {z}, {x} and {y}");
    }
    if (!URL::fromString(filled)) {
        at.fail("must be an address like \"https://host/{z}/{x}/{y}.png\"");
    }
}

SceneTiles readTiles(const JsonCursor& at, const std::string& folder) {
    at.expectObject({"mbtiles", "directory", "url", "attribution", "zIndex", "visible", "id"});
    SceneTiles tiles;
    tiles.overlay = readOverlay(at);
    const auto mbtiles = at.member("mbtiles");
    const auto directory = at.member("directory");
    const auto url = at.member("url");
    if (int{mbtiles.has_value()} + int{directory.has_value()} + int{url.has_value()} != 1) {
        at.fail("needs exactly one of the keys \"mbtiles\", \"directory\" and \"url\"");
    }
    if (mbtiles) {
        tiles.mbtiles = readPath(*mbtiles, folder);
    } else if (directory) {
        tiles.directory = readPath(*directory, folder);
        expectTemplate(*directory);
    } else {
        tiles.url = url->text();
        expectTemplate(*url);
        expectAddress(*url);
    }
    if (const auto attribution = at.member("attribution")) {
        tiles.attribution = attribution->text();
    }
    return tiles;
}

void refuseDoubledIds(const SceneFile& scene) {
    std::set<std::string> seen;
    const auto check = [&](const auto& list) {
        for (const auto& entry : list) {
            const std::string& id = entry.overlay.id;
            if (!id.empty() && !seen.insert(id).second) {
                throw JsonError("the id " + quotedJson(id) + " is given to two overlays");
            }
        }
    };
    check(scene.tiles);
    check(scene.levelPlans);
    check(scene.markers);
    check(scene.circles);
    check(scene.polygons);
    check(scene.polylines);
    check(scene.geojson);
}

SceneFile readScene(const JsonCursor& root, const std::string& folder) {
    root.expectObject({"view", "camera", "limits", "tiles", "levelPlans", "markers", "circles", "polygons",
                       "polylines", "geojson", "sideView", "behaviour"});
    SceneFile scene;
    if (const auto behaviour = root.member("behaviour")) {
        scene.behaviour = isNatural(*behaviour) ? MapBehaviour::natural() : MapBehaviour{};
    }
    if (const auto view = root.member("view")) {
        scene.view = readView(*view);
    }
    if (const auto camera = root.member("camera")) {
        scene.camera = readCamera(*camera);
    }
    if (const auto limits = root.member("limits")) {
        scene.limits = readLimits(*limits);
    }
    forEachItem(root, "tiles", [&](const JsonCursor& at) { scene.tiles.push_back(readTiles(at, folder)); });
    readOverlaySections(root, folder, scene);
    if (const auto sideView = root.member("sideView")) {
        scene.sideView = readSideview(*sideView, folder);
    }
    refuseDoubledIds(scene);
    return scene;
}

SceneFile sceneHolding(const std::string& dataFile) {
    SceneFile scene;
    if (dataFile.ends_with(kArchiveEnding)) {
        scene.tiles.emplace_back().mbtiles = dataFile;
    } else {
        scene.geojson.emplace_back().file = dataFile;
    }
    return scene;
}

} // namespace

Result<SceneFile> parseSceneFile(std::string_view text, const std::string& folder) {
    const auto json = parseJson(text);
    if (!json) {
        return Result<SceneFile>::failure(json.reason());
    }
    try {
        return readScene(JsonCursor(*json), folder);
    } catch (const JsonError& error) {
        return Result<SceneFile>::failure(error.what());
    }
}

bool isDataFile(const std::string& path) {
    return path.ends_with(kArchiveEnding) || path.ends_with(kGeoJsonEnding);
}

Result<SceneFile> readSceneFile(const std::string& path) {
    if (isDataFile(path)) {
        return sceneHolding(path);
    }
    const auto bytes = loadFile(path, kMaximumJsonBytes);
    if (!bytes) {
        return Result<SceneFile>::failure(path + ": " + bytes.reason());
    }
    const std::string_view text(reinterpret_cast<const char*>(bytes->data()), bytes->size());
    auto scene = parseSceneFile(text, std::filesystem::path(path).parent_path().string());
    return scene ? std::move(scene) : Result<SceneFile>::failure(path + ": " + scene.reason());
}

std::string faultOfViewSize(double width, double height, double scale) {
    if (!(width >= 1) || !(height >= 1) || !(scale > 0) || !(width * scale >= 1) || !(height * scale >= 1)) {
        return "the picture must be at least 1 x 1 points and pixels";
    }
    if (!(width * scale <= kMaximumPixels) || !(height * scale <= kMaximumPixels)) {
        return "the picture must not have more than " + jsonNumber(kMaximumPixels) + " pixels a side";
    }
    if (std::round(width * scale) * std::round(height * scale) >
        static_cast<double>(UIImage::kMaximumPixelCount)) {
        return "the picture must not have more than " + std::to_string(UIImage::kMaximumPixelCount) +
               " pixels in all";
    }
    return {};
}

std::string faultOfCamera(const SceneCamera& camera) {
    if (!CLLocationCoordinate2DIsValid(camera.target)) {
        return "the target must have a latitude from -90 to 90 and a longitude from -180 to 180";
    }
    if (!(camera.zoom >= 0 && camera.zoom <= 30)) {
        return "the zoom must be a number from 0 to 30";
    }
    if (!(std::abs(camera.rotation) <= 3600)) {
        return "the rotation must be a number from -3600 to 3600";
    }
    if (!(camera.viewingAngle >= 0 && camera.viewingAngle <= 90)) {
        return "the viewing angle must be a number from 0 to 90";
    }
    return {};
}

std::optional<UIColor> colorFromHex(std::string_view text) {
    if (text.empty() || text.front() != '#') {
        return std::nullopt;
    }
    text.remove_prefix(1);
    const std::size_t digits = text.size() == 3 ? 1 : 2;
    if (text.size() != 3 && text.size() != 6 && text.size() != 8) {
        return std::nullopt;
    }
    double components[4] = {0, 0, 0, 1};
    for (std::size_t i = 0; i * digits < text.size(); ++i) {
        const int high = hexDigit(text[i * digits]);
        const int low = hexDigit(text[i * digits + digits - 1]);
        if (high < 0 || low < 0) {
            return std::nullopt;
        }
        components[i] = (high * 16 + low) / 255.0;
    }
    return UIColor{components[0], components[1], components[2], components[3]};
}

} // namespace trelmix::apps
