#pragma once

#include "common/scene/SceneContent.h"
#include "common/tiles/TileServer.h"

#include <Trelmix/TrelmixMapEngine.h>
#include <Trelmix/TrelmixMapTileLayer.h>

#include <memory>
#include <string>
#include <vector>

namespace trelmix::apps {

/// An engine with everything a scene describes on it. Main thread only.
struct MapScene {
    // Destroyed last: its threads answer the layers.
    std::shared_ptr<TileServer> tileServer;
    std::shared_ptr<TrelmixMapEngine> engine;
    std::vector<std::shared_ptr<TrelmixMapTileLayer>> layers;
    /// For each layer the address that its tiles come from, without its query, which may hold a key; empty
    /// where they come from files.
    std::vector<std::string> addresses;
    /// Everything but the tile layers, in the scene's order of sections.
    std::vector<std::shared_ptr<TrelmixMapOverlay>> overlays;
};

/// An engine of that size, with the scene's background, limits and this camera, but without overlays.
std::shared_ptr<TrelmixMapEngine> makeEngine(const SceneFile& scene, const SceneCamera& camera,
                                             CGSize viewSize);

/// The whole scene; `tileServer` becomes the engine's delegate.
MapScene buildMapScene(const SceneFile& scene, const SceneContent& content, const SceneCamera& camera,
                       CGSize viewSize, std::shared_ptr<TileServer> tileServer);

/// How the tiles in view of all layers stand.
TileCounts countOf(const MapScene& map);

/// A line for each layer with an address that failed for tiles in view, or gave nothing for any: "31 of 34
/// tiles of https://... failed: connection refused". Single tiles that a server has not are no failures.
std::vector<std::string> tileFailures(const MapScene& map);

} // namespace trelmix::apps
