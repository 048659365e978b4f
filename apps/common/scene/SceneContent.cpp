#include "common/scene/SceneContent.h"

#include "common/JsonCursor.h"
#include "common/picture/AttributionText.h"
#include "common/picture/Drawing.h"
#include "common/scene/SceneImage.h"
#include "common/tiles/MbtilesArchive.h"
#include "common/tiles/TileDirectory.h"

#include <algorithm>
#include <map>

namespace trelmix::apps {

namespace {

/// Opens what the scene names; throws `JsonError` with the place in the scene.
class Loader {
public:
    SceneContent load(const SceneFile& scene) {
        SceneContent content;
        std::vector<std::string> attributions;
        for (const auto& tiles : scene.tiles) {
            content.tiles.push_back(openTiles(tiles, placeOf("tiles", content.tiles.size())));
            const auto& source = content.tiles.back();
            attributions.push_back(
                tiles.attribution.value_or(source ? source->store().attribution() : std::string()));
        }
        for (const auto& plan : scene.levelPlans) {
            const std::string place = placeOf("levelPlans", content.levelPlans.size());
            content.levelPlans.push_back(image(plan.image, place + ".image"));
            attributions.push_back(plan.attribution);
        }
        for (const auto& marker : scene.markers) {
            const std::string place = placeOf("markers", content.markerIcons.size());
            content.markerIcons.push_back(image(marker.icon, place + ".icon"));
        }
        for (const auto& geojson : scene.geojson) {
            content.geojson.push_back(openGeoJson(geojson, placeOf("geojson", content.geojson.size())));
            attributions.push_back(geojson.attribution.value_or(content.geojson.back().file.attribution));
        }
        content.attribution = joinedAttributions(attributions);
        return content;
    }

private:
    static std::string placeOf(const char* section, std::size_t index) {
        return std::string(section) + "[" + std::to_string(index) + "]";
    }

    static std::shared_ptr<const TileSource> openTiles(const SceneTiles& tiles, const std::string& place) {
        if (!tiles.url.empty()) {
            return nullptr;
        }
        if (tiles.mbtiles.empty()) {
            return std::make_shared<TileSource>(std::make_unique<TileDirectory>(tiles.directory));
        }
        auto archive = MbtilesArchive::open(tiles.mbtiles);
        if (!archive) {
            throw JsonError(place + ".mbtiles: " + archive.reason());
        }
        return std::make_shared<TileSource>(std::move(*archive));
    }

    // Overlays that name the same file share one image, and with it one texture.
    std::shared_ptr<const UIImage> image(const std::string& path, const std::string& place) {
        if (path.empty()) {
            return nullptr;
        }
        auto& known = _images[path];
        if (!known) {
            auto loaded = loadSceneImage(path);
            if (!loaded) {
                throw JsonError(place + ": " + loaded.reason());
            }
            known = std::move(*loaded);
        }
        return known;
    }

    SceneGeoJsonContent openGeoJson(const SceneGeoJson& geojson, const std::string& place) {
        auto file = readGeoJsonFile(geojson.file);
        if (!file) {
            throw JsonError(place + ".file: " + file.reason());
        }
        SceneGeoJsonContent content{std::move(*file), {}};
        const auto addIcon = [&](const GeoJsonStyle& style, const std::string& at) {
            if (style.icon) {
                content.icons[*style.icon] = image(*style.icon, at + ".icon");
            }
        };
        addIcon(geojson.style, place);
        for (std::size_t i = 0; i < geojson.rules.size(); ++i) {
            addIcon(geojson.rules[i].style, place + "." + placeOf("style", i));
        }
        return content;
    }

    std::map<std::string, std::shared_ptr<const UIImage>> _images;
};

} // namespace

Result<SceneContent> loadSceneContent(const SceneFile& scene, const std::string& scenePath) {
    try {
        return Loader().load(scene);
    } catch (const JsonError& error) {
        // What stands before the file's name is its place in a scene.
        const std::string_view reason = error.what();
        return Result<SceneContent>::failure(
            isDataFile(scenePath)
                ? std::string(reason.substr(std::min(reason.find(scenePath), reason.size())))
                : scenePath + ": " + std::string(reason));
    }
}

} // namespace trelmix::apps
