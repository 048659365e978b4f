#include "Overlays/PolygonNode.h"

#include "Overlays/ScenePlace.h"

namespace trelmix {

namespace {

/// Scene units above the map.
constexpr double kHeight = 0.05;

} // namespace

std::shared_ptr<PolygonNode> PolygonNode::make() {
    return std::shared_ptr<PolygonNode>(new PolygonNode);
}

PolygonNode::PolygonNode() {
    setLayerIndex(26);
}

void PolygonNode::setColor(std::optional<UIColor> color) {
    if (const MainEntry entry{"setColor"}) {
        _color = color;
        preparePolygon();
    }
}

void PolygonNode::setPolygonCorners(std::vector<CLLocation> corners) {
    if (const MainEntry entry{"setPolygonCorners"}) {
        _polygonCorners = std::move(corners);
        _lastShape = nullptr;
        preparePolygon();
    }
}

void PolygonNode::preparePolygon() {
    if (!cameraProjection()) {
        return;
    }
    if (!_lastShape) {
        _lastShape = std::make_shared<SCNShape>(outline());
        _lastOrigin = cameraProjection()->initialMapPoint();
    }
    auto material = std::make_shared<SCNMaterial>();
    material->readsFromDepthBuffer = false;
    if (_color) {
        material->diffuse = *_color;
    }
    auto shape = std::make_shared<SCNShape>(*_lastShape);
    shape->setMaterials({std::move(material)});
    setGeometry(std::move(shape));
}

std::shared_ptr<const UIBezierPath> PolygonNode::outline() const {
    auto path = std::make_shared<UIBezierPath>();
    for (const CLLocation& corner : _polygonCorners) {
        const auto place = scenePlaceOf(corner.coordinate(), *cameraProjection());
        if (!place) {
            continue;
        }
        if (path->isEmpty()) {
            path->moveToPoint({place->x, -place->y});
        } else {
            path->addLineToPoint({place->x, -place->y});
        }
    }
    path->closePath();
    return path;
}

Coordinate PolygonNode::initialTargetCoordinateForProjection() const {
    return _polygonCorners.empty() ? Coordinate{} : coordinateOf(_polygonCorners.front().coordinate());
}

void PolygonNode::setup(const std::shared_ptr<CameraProjection>& projection) {
    OverlayNode::setup(projection);
    if (projection && _lastOrigin != projection->initialMapPoint()) {
        _lastShape = nullptr;
    }
    setExactPosition({exactPosition().x, exactPosition().y, kHeight});
}

void PolygonNode::addToMap(TrelmixMapEngineSceneView& mapSceneView) {
    OverlayNode::addToMap(mapSceneView);
    preparePolygon();
}

std::string PolygonNode::description() const {
    return "Polygon " + descriptionOf(_polygonCorners);
}

} // namespace trelmix
