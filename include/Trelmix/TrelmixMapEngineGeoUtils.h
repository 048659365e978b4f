/// @file
/// Distances, bearings and the map-point plane.
#pragma once

#include <Trelmix/Export.h>
#include <Trelmix/Platform/CLLocation.h>

namespace trelmix {

/// Conversions on a sphere of radius 6372797.6 m and on its Mercator plane.
///
/// At zoom z (which may be fractional) the world is a square of 256 * 2^z map points: x runs east from
/// longitude -180, y runs south from the latitude 85.0511. Coordinates are degrees, bearings radians (0
/// north, pi/2 east), distances metres. Pure functions, any thread. Nothing is checked or limited: what is
/// not a number, or beyond +-90 degrees, gives what the formulas give, which may be infinite or NaN.
class TRELMIX_API TrelmixMapEngineGeoUtils {
public:
    /// Initial bearing of the great circle between the two, in [0, 2 pi); 0 for equal coordinates.
    static double getBearingFrom(CLLocationCoordinate2D from, CLLocationCoordinate2D to);
    /// Where one arrives. The longitude is not normalised: it can leave [-180, 180].
    /// @param withBearing radians
    /// @param distance metres along the great circle
    static CLLocationCoordinate2D getCoordinateFrom(CLLocationCoordinate2D from, double withBearing,
                                                    double distance);
    /// Length of the great circle in metres.
    static double getDistanceBetweenWithCoordinate1(CLLocationCoordinate2D coordinate1,
                                                    CLLocationCoordinate2D coordinate2);

    /// Latitude to map y. The latitude is not limited to the Mercator square: +90 gives a large negative
    /// number, -90 infinity.
    static double convertLatToMapY(double latitude, float zoom);
    /// Map y to latitude, in [-90, 90].
    static double convertMapYToLat(double y, float zoom);
    /// Longitude to map x; 0 at -180 degrees. Longitudes beyond the world go on.
    static double convertLongToMapX(double longitude, float zoom);
    /// Map x to longitude. A longitude outside the world is brought back by steps of 180 degrees (not 360),
    /// so 190 becomes 10 and 540 becomes 180; what is not finite gives NaN.
    static double convertMapXToLong(double x, float zoom);

    /// Metres that one map point covers at that latitude and zoom.
    static double metersPerMapPointAt(double latitude, float zoom);
    /// The reciprocal of metersPerMapPointAt.
    static double mapPointsPerMeterAt(double latitude, float zoom);
};

} // namespace trelmix
