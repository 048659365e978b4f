/// @file
/// Geographic coordinates as the public interface exchanges them.
#pragma once

#include <Trelmix/Export.h>

#include <string>

namespace trelmix {

/// A place on the sphere, in degrees. Any numbers can be stored; see CLLocationCoordinate2DIsValid.
struct CLLocationCoordinate2D {
    double latitude = 0;  ///< positive north
    double longitude = 0; ///< positive east
    /// Equal in every member; NaN equals nothing.
    friend bool operator==(const CLLocationCoordinate2D&, const CLLocationCoordinate2D&) = default;
};

/// Marks an absent coordinate: (-180, -180), which no latitude can be.
inline constexpr CLLocationCoordinate2D kCLLocationCoordinate2DInvalid{-180.0, -180.0};

/// The coordinate of the two numbers, unchecked.
constexpr CLLocationCoordinate2D CLLocationCoordinate2DMake(double latitude, double longitude) {
    return {latitude, longitude};
}

/// True when the latitude lies in [-90, 90] and the longitude in [-180, 180]; false for anything that is
/// not a number.
constexpr bool CLLocationCoordinate2DIsValid(CLLocationCoordinate2D coordinate) {
    return coordinate.latitude >= -90.0 && coordinate.latitude <= 90.0 && coordinate.longitude >= -180.0 &&
           coordinate.longitude <= 180.0;
}

/// A coordinate with an altitude in metres. The side view reads the altitude of a path's points as their
/// level numbers. A plain value: copy it freely, on any thread.
class TRELMIX_API CLLocation {
public:
    CLLocation() = default;
    /// Degrees, unchecked, at altitude 0.
    CLLocation(double latitude, double longitude) : _coordinate{latitude, longitude} {}
    /// Degrees, unchecked; the altitude in metres.
    explicit CLLocation(CLLocationCoordinate2D coordinate, double altitude = 0)
        : _coordinate(coordinate), _altitude(altitude) {}

    /// What it was made of.
    CLLocationCoordinate2D coordinate() const { return _coordinate; }
    /// Metres; in the side view's paths the number of a level.
    double altitude() const { return _altitude; }

    /// Great-circle distance in metres on a sphere of radius 6371008.8 m (the mean earth radius); NaN when a
    /// coordinate is not finite.
    double distanceFromLocation(const CLLocation& other) const;

private:
    CLLocationCoordinate2D _coordinate;
    double _altitude = 0;
};

/// "<latitude,longitude>" with six decimals: the text form that descriptions of overlays use.
TRELMIX_API std::string descriptionOf(CLLocationCoordinate2D coordinate);

} // namespace trelmix
