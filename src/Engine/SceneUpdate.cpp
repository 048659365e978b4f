#include "Engine/SceneUpdate.h"

#include "Engine/GeoNode.h"
#include "Platform/Foundation/SceneLock.h"

namespace trelmix {

void clearNodes(SCNScene& scene) {
    const auto nodes = scene.childNodes();
    for (const auto& node : *nodes) {
        if (node->takesFrameUpdates() && node->scene() == &scene) {
            static_cast<GeoNode&>(*node).clearEverything();
        }
    }
}

void setUpGeoNodes(SCNScene& scene, const std::shared_ptr<CameraProjection>& projection) {
    const auto nodes = scene.childNodes();
    for (const auto& node : *nodes) {
        if (node->takesFrameUpdates() && node->scene() == &scene) {
            static_cast<GeoNode&>(*node).setup(projection);
        }
    }
}

void updatePossibleGeoNodes(SCNScene& scene, float zoom, Radians rotation, Radians viewingAngle) {
    // Updates call the application, which may add and remove anything: the walk has its own list.
    const auto nodes = scene.childNodes();
    for (const auto& node : *nodes) {
        if (node->takesFrameUpdates() && node->scene() == &scene) {
            static_cast<GeoNode&>(*node).update(zoom, rotation, viewingAngle);
        }
    }
}

TileCounts tileCounts(SCNScene& scene) {
    const SceneLock lock;
    TileCounts counts;
    const auto nodes = scene.childNodes();
    for (const auto& node : *nodes) {
        if (const auto* const layer = dynamic_cast<const TrelmixMapTileLayer*>(node.get())) {
            counts += layer->tileCounts();
        }
    }
    return counts;
}

} // namespace trelmix
