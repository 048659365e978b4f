#pragma once

#include "Camera/CameraFrame.h"

#include <optional>

namespace trelmix {

/// Ground, a map point of the scene, that is to be seen at a point of the screen.
struct HeldGround {
    WorldMapPoint ground;
    ScreenPoint point;
};

/// Cameras that show ground where it is held: the arithmetic of fingers on the map. Pure functions; any
/// thread. Where no camera does, or a number is not finite, the pose comes back as it was.
namespace GroundHold {

/// Map points of the scene that a screen point shows at the camera's target.
double scaleAtTarget(const CameraPose& pose, const CameraStage& stage);

/// Moves the target alone.
CameraPose holding(const CameraPose& pose, const CameraStage& stage, const HeldGround& held);

/// Moves, turns and zooms so that both are held, to a hundredth of a screen point; empty where that does not
/// succeed, as for two fingers at one place.
std::optional<CameraPose> holding(const CameraPose& pose, const CameraStage& stage, const HeldGround& first,
                                  const HeldGround& second);

/// What a camera may change besides its target.
struct Freedom {
    bool zoom = true;
    bool rotation = true;
};

/// Holds the middle, and brings what is free of the distance and direction between the two others as near as
/// it can.
CameraPose holdingMiddle(const CameraPose& pose, const CameraStage& stage, const HeldGround& middle,
                         const HeldGround& first, const HeldGround& second, Freedom freedom);

/// A pose with another target, its latitude with it.
CameraPose withTarget(CameraPose pose, WorldMapPoint target);

} // namespace GroundHold

} // namespace trelmix
