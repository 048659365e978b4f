#pragma once

#include "Geo/Radians.h"
#include "Platform/Scene/SCNVector.h"

#include <array>

namespace trelmix {

/// One position of the camera.
struct CameraPose {
    /// What it looks at, a map point of the scene.
    WorldMapPoint target;
    /// Degrees; the latitude of the target, on which its distance depends.
    double latitude = 0;
    /// Internal: one less than the public zoom.
    float zoom = 0;
    /// Minus the public heading.
    Radians rotation;
    /// From the vertical.
    Radians viewingAngle;

    friend bool operator==(const CameraPose&, const CameraPose&) = default;
};

/// The plane that the camera looks at and the view that it looks through.
struct CameraStage {
    /// The scene's origin.
    WorldMapPoint initialMapPoint;
    /// Map points of the scene per metre, at the latitude of the origin.
    double mapPointsPerMeterMax = 1;
    /// Size of the view in screen points.
    ScreenPoint mapDimensions;
    /// True: 256 points of a tile of the public zoom are 256 points of the screen at the target. False: the
    /// camera stands as many metres away as a view 443 points high would want it, at the target's latitude,
    /// in a scene of the origin's scale.
    bool zoomIsScale = false;

    /// Metres of the scene between the camera and its target.
    double cameraDistance(double latitude, float zoom) const;
};

/// Everything about one camera position that does not depend on the point to convert, and the conversions.
///
/// A value: copy it to convert many points without looking at the projection again. Conversions allocate
/// nothing and may run on any thread.
///
/// Frames: "world" is metres east, north and up, its scale that of the scene's origin; "camera" is metres
/// right, up and toward the viewer, its origin in the camera, which looks along -z.
class CameraFrame {
public:
    CameraFrame(const CameraPose& pose, const CameraStage& stage);

    /// Where a coordinate is seen. One behind the camera is projected through its centre; see isInFront.
    ScreenPoint project(Coordinate coordinate) const;
    /// The same for a map point of the scene.
    ScreenPoint projectMapPoint(WorldMapPoint point) const;
    /// The map point of the scene under a screen point; above the horizon a place behind the camera, see
    /// seesGround.
    WorldMapPoint unproject(ScreenPoint point) const;

    /// False for ground behind the camera or in the plane through it, whose projection means nothing.
    bool isInFront(WorldMapPoint point) const;
    /// True when the ray through the screen point meets the ground in front of the camera; false above the
    /// horizon and where a number is not finite.
    bool seesGround(ScreenPoint point) const;

    /// Scene position (x east, y north, z up; map points) of the camera.
    Vector3d cameraPosition() const;
    /// Metres of the scene between the camera and its target.
    double distance() const { return _distance; }

    /// World to camera, row by row: Rx(viewing angle) * Rz(rotation).
    const std::array<double, 9>& rotation() const { return _rotation; }
    /// Camera to world.
    const std::array<double, 9>& invertedRotation() const { return _invertedRotation; }

private:
    Vector3d toCamera(WorldMapPoint point) const;
    OpenGlPoint groundOffset(ScreenPoint point) const;
    void setRotation(Radians rotation, Radians viewingAngle);
    void placeCamera(const CameraPose& pose);

    WorldMapPoint _initialMapPoint;
    WorldMapPoint _target;
    double _mapPointsPerMeterMax;
    double _distance;
    double _halfWidth;
    double _halfHeight;
    /// Map points per metre at the camera's zoom.
    double _mapPointsPerMeter;
    /// Metres at the camera's zoom.
    double _focalLength;
    /// Metres of the camera above the plane, and the same after its way through scene units.
    double _height;
    double _heightFromScene = 0;
    bool _isTilted;
    double _tangentOfElevation;
    /// Metres from the camera's foot back to its target, along the heading.
    double _planeShift;
    std::array<double, 9> _rotation{};
    std::array<double, 9> _invertedRotation{};
    double _sinRotation = 0;
    double _cosRotation = 0;
    /// From the scene's origin to the camera's foot, east and south: in map points, and in metres.
    OpenGlPoint _cameraOffset;
    OpenGlPoint _cameraOffsetMeters;
    Vector3d _turnedCamera;
};

} // namespace trelmix
