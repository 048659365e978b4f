#include "common/scene/MapScene.h"

#include "common/scene/SceneOverlays.h"

#include <Trelmix/TrelmixMapEngineFactory.h>

namespace trelmix::apps {

namespace {

/// Bytes of each tile layer: enough for going back and forth without loading anew.
constexpr std::size_t kImageCacheLimit = std::size_t{128} << 20U;

void loadFromUrls(TrelmixMapTileLayer& layer, const std::string& urlTemplate) {
    layer.setImageUrlLayer(true);
    layer.setImageUrlConstructor([urlTemplate](std::uint64_t x, std::uint64_t y, std::uint64_t zoom) {
        return URL::fromString(
            filledTemplate(urlTemplate, {static_cast<std::int64_t>(x), static_cast<std::int64_t>(y),
                                         static_cast<std::int64_t>(zoom)}));
    });
}

} // namespace

std::shared_ptr<TrelmixMapEngine> makeEngine(const SceneFile& scene, const SceneCamera& camera,
                                             CGSize viewSize) {
    auto engine = TrelmixMapEngineFactory::createMap(scene.behaviour);
    // Sized before the first camera, which depends on the height of the view.
    engine->view()->setFrame({{0, 0}, viewSize});
    engine->view()->layoutIfNeeded();
    engine->setBackgroundColor(scene.view.background);
    const SceneLimits& limits = scene.limits;
    if (limits.maxZoom) {
        engine->setMaxZoom(static_cast<float>(*limits.maxZoom));
    }
    if (limits.minZoom) {
        engine->setMinZoom(static_cast<float>(*limits.minZoom));
    }
    if (limits.target) {
        engine->setCameraTargetBoundsSouthWest(limits.target->southWest);
        engine->setCameraTargetBoundsNorthEast(limits.target->northEast);
    }
    const auto zoom = static_cast<float>(camera.zoom);
    engine->initialiseWithTarget(camera.target, zoom);
    engine->setCamera(
        std::make_shared<TrelmixMapEngineCamera>(camera.target, camera.rotation, camera.viewingAngle, zoom),
        false);
    return engine;
}

MapScene buildMapScene(const SceneFile& scene, const SceneContent& content, const SceneCamera& camera,
                       CGSize viewSize, std::shared_ptr<TileServer> tileServer) {
    MapScene map;
    map.tileServer = std::move(tileServer);
    map.engine = makeEngine(scene, camera, viewSize);
    map.engine->setDelegate(map.tileServer);
    for (std::size_t i = 0; i < scene.tiles.size(); ++i) {
        auto layer = TrelmixMapEngineFactory::createMapTilesNode();
        applyOverlayKeys(scene.tiles[i].overlay, *layer);
        layer->setImageCacheLimit(kImageCacheLimit);
        if (content.tiles[i]) {
            map.tileServer->serve(layer, content.tiles[i]);
        } else {
            loadFromUrls(*layer, scene.tiles[i].url);
        }
        const std::string& url = scene.tiles[i].url;
        map.addresses.push_back(url.substr(0, url.find('?')));
        layer->setMap(map.engine);
        map.layers.push_back(std::move(layer));
    }
    map.overlays = addSceneOverlays(map.engine, scene, content);
    return map;
}

TileCounts countOf(const MapScene& map) {
    TileCounts counts;
    for (const auto& layer : map.layers) {
        counts += layer->tileCounts();
    }
    return counts;
}

std::vector<std::string> tileFailures(const MapScene& map) {
    std::vector<std::string> lines;
    for (std::size_t i = 0; i < map.addresses.size(); ++i) {
        if (map.addresses[i].empty()) {
            continue;
        }
        const TileCounts counts = map.layers[i]->tileCounts();
        // Tiles beyond the world are absent too, and nobody has a reason for them.
        const bool isNothingThere =
            counts.wanted > 0 && counts.absent + counts.failed == counts.wanted && !counts.reason.empty();
        const std::size_t failed = isNothingThere ? counts.wanted : counts.failed;
        if (failed > 0) {
            lines.push_back(std::to_string(failed) + " of " + std::to_string(counts.wanted) + " tiles of " +
                            map.addresses[i] + " failed: " + counts.reason);
        }
    }
    return lines;
}

} // namespace trelmix::apps
