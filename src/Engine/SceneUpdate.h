#pragma once

#include "Camera/CameraProjection.h"
#include "Geo/Radians.h"
#include "Platform/Scene/SCNScene.h"

#include <Trelmix/TrelmixMapTileLayer.h>

namespace trelmix {

/// Tears down every overlay of a scene; the camera node stays.
void clearNodes(SCNScene& scene);

/// Has every overlay of a scene take its place and measures from the projection anew.
void setUpGeoNodes(SCNScene& scene, const std::shared_ptr<CameraProjection>& projection);

/// Tells every overlay of a scene about the camera, in order of addition. @param zoom the internal zoom.
void updatePossibleGeoNodes(SCNScene& scene, float zoom, Radians rotation, Radians viewingAngle);

/// Of all tile layers of a scene together.
TileCounts tileCounts(SCNScene& scene);

} // namespace trelmix
