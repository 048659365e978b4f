#pragma once

#include "common/Json.h"
#include "common/scene/SceneContent.h"

#include <Trelmix/TrelmixMapEngine.h>
#include <Trelmix/TrelmixMapOverlay.h>

#include <memory>
#include <string>
#include <vector>

namespace trelmix::apps {

/// What an overlay made from a scene is: its user data (`userInfo`).
struct SceneTag {
    /// Empty when the scene gives none.
    std::string id;
    /// Those of the GeoJSON feature it was made from; empty for everything else.
    std::shared_ptr<const JsonValue> properties;
};

/// Puts the overlays above the tiles on the engine's map.
std::vector<std::shared_ptr<TrelmixMapOverlay>>
addSceneOverlays(const std::shared_ptr<TrelmixMapEngine>& engine, const SceneFile& scene,
                 const SceneContent& content);

/// What every overlay takes; call it before `setMap`.
void applyOverlayKeys(const SceneOverlay& keys, TrelmixMapOverlay& overlay);

} // namespace trelmix::apps
