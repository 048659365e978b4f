#pragma once

#include "Platform/Scene/SCNScene.h"

#include <Trelmix/TrelmixMapTileLayer.h>

namespace trelmix {

/// Tears down every overlay of a scene; the camera node stays.
void clearNodes(SCNScene& scene);

/// Tells every overlay of a scene about the camera, in order of addition. @param zoom the internal zoom.
/// @param rotation,viewingAngle radians.
void updatePossibleGeoNodes(SCNScene& scene, float zoom, float rotation, float viewingAngle);

/// Of all tile layers of a scene together.
TileCounts tileCounts(SCNScene& scene);

} // namespace trelmix
