#include <Trelmix/TrelmixMapEngineGeoUtils.h>

#include "Geo/GeoUtils.h"

namespace trelmix {

double TrelmixMapEngineGeoUtils::getBearingFrom(CLLocationCoordinate2D from, CLLocationCoordinate2D to) {
    return GeoUtils::bearing(coordinateOf(from), coordinateOf(to)).value;
}

CLLocationCoordinate2D TrelmixMapEngineGeoUtils::getCoordinateFrom(CLLocationCoordinate2D from,
                                                                   double withBearing, double distance) {
    return locationOf(GeoUtils::coordinate(coordinateOf(from), Radians(withBearing), distance));
}

double TrelmixMapEngineGeoUtils::getDistanceBetweenWithCoordinate1(CLLocationCoordinate2D coordinate1,
                                                                   CLLocationCoordinate2D coordinate2) {
    return GeoUtils::distanceBetween(coordinateOf(coordinate1), coordinateOf(coordinate2));
}

double TrelmixMapEngineGeoUtils::convertLatToMapY(double latitude, float zoom) {
    return GeoUtils::convertLatToMapY(latitude, zoom);
}

double TrelmixMapEngineGeoUtils::convertMapYToLat(double y, float zoom) {
    return GeoUtils::convertMapYToLat(y, zoom);
}

double TrelmixMapEngineGeoUtils::convertLongToMapX(double longitude, float zoom) {
    return GeoUtils::convertLongToMapX(longitude, zoom);
}

double TrelmixMapEngineGeoUtils::convertMapXToLong(double x, float zoom) {
    return GeoUtils::convertMapXToLong(x, zoom);
}

double TrelmixMapEngineGeoUtils::metersPerMapPointAt(double latitude, float zoom) {
    return GeoUtils::metersPerMapPoint(latitude, zoom);
}

double TrelmixMapEngineGeoUtils::mapPointsPerMeterAt(double latitude, float zoom) {
    return GeoUtils::mapPointsPerMeter(latitude, zoom);
}

} // namespace trelmix
