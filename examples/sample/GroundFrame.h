/// @file
/// Where the fictional town lies on the globe, and the Web Mercator arithmetic of its tiles.
#pragma once

#include "Shapes.h"

namespace trelmix::sample {

/// Degrees.
struct LatLon {
    double lat = 0;
    double lon = 0;
};

/// Global pixel of a zoom level: 256 * 2^zoom pixels around the world, x east from -180 degrees, y south from
/// the northern edge of the Mercator square.
struct GlobalPixel {
    double x = 0;
    double y = 0;
};

/// Open water of the Baltic: nothing real is near enough to be taken for this town.
inline constexpr LatLon kCentre{54.93, 14.02};

/// Metres are those at the centre's latitude on a sphere of this radius; over the two kilometres that are
/// drawn in detail the Mercator scale changes by less than a thousandth.
inline constexpr double kEarthRadius = 6372797.6;

GlobalPixel globalPixelAt(LatLon coordinate, int zoom);
LatLon latLonAt(GlobalPixel pixel, int zoom);
/// Pixels of a zoom level that one metre takes at the centre.
double pixelsPerMetre(int zoom);
GlobalPixel globalPixelOf(Pt ground, int zoom);
Pt groundAt(GlobalPixel pixel, int zoom);
LatLon latLonOf(Pt ground);

} // namespace trelmix::sample
