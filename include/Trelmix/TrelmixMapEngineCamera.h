/// @file
/// Where the map's camera is.
#pragma once

#include <Trelmix/Export.h>
#include <Trelmix/Platform/CLLocation.h>

namespace trelmix {

/// What the camera looks at, how the map is turned, how far the camera is tilted and how close it is.
///
/// A record of numbers: changing one that the engine handed out moves nothing. Created by the engine each
/// time it reports its camera, or by the application for TrelmixMapEngine::setCamera; the engine keeps none.
/// Values are stored unchecked and limited when the engine applies them. Any thread, one at a time.
class TRELMIX_API TrelmixMapEngineCamera {
public:
    /// Degrees and zoom levels as below, unchecked.
    TrelmixMapEngineCamera(CLLocationCoordinate2D target, double rotation, double viewingAngle, float zoom)
        : _target(target), _rotation(rotation), _viewingAngle(viewingAngle), _zoom(zoom) {}

    /// The coordinate in the middle of the view.
    CLLocationCoordinate2D target() const { return _target; }
    /// Degrees, unchecked.
    void setTarget(CLLocationCoordinate2D target) { _target = target; }

    /// Heading in degrees, clockwise from north: 90 shows east at the top.
    double rotation() const { return _rotation; }
    /// Degrees, unchecked.
    void setRotation(double rotation) { _rotation = rotation; }

    /// Tilt from the vertical in degrees, 0 (straight down) to 55.
    double viewingAngle() const { return _viewingAngle; }
    /// Degrees; limited where the record is applied.
    void setViewingAngle(double viewingAngle) { _viewingAngle = viewingAngle; }

    /// Zoom level, 15 to 23; one step doubles the scale. How much of the ground a point of the screen covers
    /// depends on more: the higher the view the less, and on the latitude of the engine's first target.
    float zoom() const { return _zoom; }
    /// Limited where the record is applied.
    void setZoom(float zoom) { _zoom = zoom; }

private:
    CLLocationCoordinate2D _target;
    double _rotation;
    double _viewingAngle;
    float _zoom;
};

} // namespace trelmix
