#include "GroundFrame.h"

namespace trelmix::sample {

namespace {

constexpr double kPi = std::numbers::pi;
/// Fine enough that a coordinate survives the way through pixels to a millionth of a millimetre.
constexpr int kReferenceZoom = 22;

double worldSize(int zoom) {
    return std::ldexp(256.0, zoom);
}

} // namespace

GlobalPixel globalPixelAt(LatLon coordinate, int zoom) {
    const double latitude = coordinate.lat * kPi / 180;
    const double x = (coordinate.lon + 180) / 360;
    const double y = 0.5 - std::log(std::tan(kPi / 4 + latitude / 2)) / (2 * kPi);
    return {x * worldSize(zoom), y * worldSize(zoom)};
}

LatLon latLonAt(GlobalPixel pixel, int zoom) {
    const double x = pixel.x / worldSize(zoom);
    const double y = pixel.y / worldSize(zoom);
    const double latitude = 2 * std::atan(std::exp((0.5 - y) * 2 * kPi)) - kPi / 2;
    return {latitude * 180 / kPi, x * 360 - 180};
}

double pixelsPerMetre(int zoom) {
    return worldSize(zoom) / (2 * kPi * kEarthRadius * std::cos(kCentre.lat * kPi / 180));
}

GlobalPixel globalPixelOf(Pt ground, int zoom) {
    const GlobalPixel centre = globalPixelAt(kCentre, zoom);
    const double scale = pixelsPerMetre(zoom);
    return {centre.x + ground.x * scale, centre.y + ground.y * scale};
}

Pt groundAt(GlobalPixel pixel, int zoom) {
    const GlobalPixel centre = globalPixelAt(kCentre, zoom);
    const double scale = pixelsPerMetre(zoom);
    return {(pixel.x - centre.x) / scale, (pixel.y - centre.y) / scale};
}

LatLon latLonOf(Pt ground) {
    return latLonAt(globalPixelOf(ground, kReferenceZoom), kReferenceZoom);
}

} // namespace trelmix::sample
