#pragma once

#include "Camera/CameraProjection.h"
#include "Geo/GeoTypes.h"

#include <optional>
#include <string>
#include <vector>

namespace trelmix {

/// Where a coordinate lies relative to the scene's origin. Nothing where the plane has no such place: at a
/// pole, beyond it, and for numbers that are not finite or far beyond the world.
std::optional<OpenGlPoint> scenePlaceOf(CLLocationCoordinate2D coordinate,
                                        const CameraProjection& projection);

/// The coordinate at a scene position.
CLLocationCoordinate2D coordinateAt(Vector3d scenePosition, const CameraProjection& projection);

/// "[<latitude,longitude>, ...]": the text form of a list of places.
std::string descriptionOf(const std::vector<CLLocation>& locations);

/// How large things of a given size are in the scene, at the latitude where an overlay first needed it; the
/// latitude is kept for the overlay's life, also when it moves.
class GroundScale {
public:
    /// Metres that one scene unit covers. Greater than 0.
    double metersPerMappointMax(double latitude);
    /// Scene units per screen point for something at `latitude`, at an internal zoom. Nothing while the ratio
    /// is not a positive number: the view is empty and sizes stay as they are.
    std::optional<float> unitsPerScreenPoint(double ratio, double latitude, float zoom);

private:
    std::optional<double> _metersPerMappointMax;
};

} // namespace trelmix
