#include <Trelmix/TrelmixMapEngineFactory.h>

#include "Engine/TrelmixMapEngineSceneView.h"
#include "Overlays/CircleNode.h"
#include "Overlays/PolygonNode.h"
#include "Overlays/PolylineNode.h"
#include "Platform/Foundation/CallerFault.h"
#include "Tiles/MapTileNode.h"

namespace trelmix {

std::shared_ptr<TrelmixMapEngine> TrelmixMapEngineFactory::createMap(const MapBehaviour& behaviour) {
    requireMainThread("createMap");
    return TrelmixMapEngineSceneView::make({}, behaviour);
}

std::shared_ptr<TrelmixMapTileLayer> TrelmixMapEngineFactory::createMapTilesNode() {
    requireMainThread("createMapTilesNode");
    return MapTileNode::make();
}

std::shared_ptr<TrelmixLevelPlanNode>
TrelmixMapEngineFactory::createLevelPlanNodeWith(std::shared_ptr<const UIImage> image,
                                                 CLLocationCoordinate2D southWest,
                                                 CLLocationCoordinate2D northEast) {
    requireMainThread("createLevelPlanNodeWith");
    return TrelmixMapEngineSceneView::createLevelPlanNode(std::move(image), southWest, northEast);
}

std::shared_ptr<TrelmixMapMarker>
TrelmixMapEngineFactory::createMapMarkerWith(std::shared_ptr<const UIImage> icon,
                                             CLLocationCoordinate2D coordinate) {
    requireMainThread("createMapMarkerWith");
    return TrelmixMapEngineSceneView::createMapMarker(std::move(icon), coordinate);
}

std::shared_ptr<TrelmixMapCircle>
TrelmixMapEngineFactory::createMapCircleWithCoordinate(CLLocationCoordinate2D coordinate, double radius) {
    requireMainThread("createMapCircleWithCoordinate");
    auto circle = CircleNode::make();
    circle->setCoordinate(coordinate);
    circle->setRadius(radius);
    return circle;
}

std::shared_ptr<TrelmixMapPolygon>
TrelmixMapEngineFactory::createMapPolygonWithCorners(std::vector<CLLocation> corners) {
    requireMainThread("createMapPolygonWithCorners");
    auto polygon = PolygonNode::make();
    polygon->setPolygonCorners(std::move(corners));
    return polygon;
}

std::shared_ptr<TrelmixMapPolyline>
TrelmixMapEngineFactory::createMapPolylineWithVertices(std::vector<CLLocation> vertices) {
    requireMainThread("createMapPolylineWithVertices");
    auto polyline = PolylineNode::make();
    polyline->setPolylineVertices(std::move(vertices));
    return polyline;
}

} // namespace trelmix
