#pragma once

#include "Camera/CameraProjection.h"
#include "Geo/GeoTypes.h"

#include <optional>
#include <string>
#include <vector>

namespace trelmix {

class GeoNode;

/// Where a coordinate lies relative to the scene's origin. Nothing where the plane has no such place: at a
/// pole, beyond it, and for numbers that are not finite or far beyond the world.
std::optional<OpenGlPoint> scenePlaceOf(CLLocationCoordinate2D coordinate,
                                        const CameraProjection& projection);

/// The coordinate at a scene position.
CLLocationCoordinate2D coordinateAt(Vector3d scenePosition, const CameraProjection& projection);

/// Where a node stands on its map right now, in a move too; invalid without a map and on another thread than
/// the main one.
CLLocationCoordinate2D presentedCoordinateOf(const GeoNode& node);

/// "[<latitude,longitude>, ...]": the text form of a list of places.
std::string descriptionOf(const std::vector<CLLocation>& locations);

/// Where something belongs: its last coordinate that has a place, and the place.
class GroundPlace {
public:
    /// False when the coordinate has no place in the scene: then it stays where it was.
    bool moveTo(CLLocationCoordinate2D coordinate, const CameraProjection& projection);
    /// Moves the place alone.
    void shiftBy(OpenGlPoint offset) { _point = OpenGlPoint{_point->x + offset.x, _point->y + offset.y}; }

    /// Invalid until it has had a place.
    CLLocationCoordinate2D coordinate() const { return _coordinate; }
    const std::optional<OpenGlPoint>& point() const { return _point; }
    /// The place as a position in the scene; needs one.
    Vector3d positionAt(double height) const { return {_point->x, -_point->y, height}; }

private:
    CLLocationCoordinate2D _coordinate = kCLLocationCoordinate2DInvalid;
    std::optional<OpenGlPoint> _point;
};

/// How large things of a given size are in the scene, at the latitude where an overlay first needed it; the
/// latitude is kept for the overlay's life, also when it moves.
class GroundScale {
public:
    /// True: the scale is that of the latitude asked for. False: of the first one that was.
    void setFollowsLatitude(bool follows) { _followsLatitude = follows; }
    /// Metres that one scene unit covers. Greater than 0.
    double metersPerMappointMax(double latitude);
    /// Scene units per screen point for something at `latitude`, at an internal zoom. Nothing while the ratio
    /// is not a positive number: the view is empty and sizes stay as they are.
    std::optional<float> unitsPerScreenPoint(double ratio, double latitude, float zoom);

private:
    std::optional<double> _metersPerMappointMax;
    bool _followsLatitude = false;
};

} // namespace trelmix
