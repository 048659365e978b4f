#include "Overlays/CircleNode.h"

#include "Platform/Scene/SCNAction.h"

#include <algorithm>

namespace trelmix {

namespace {

/// Scene units above the map.
constexpr double kHeight = 0.05;
/// Scene units; a thousand times the world, and far from where floats end.
constexpr double kLargestDiameter = 1e12;

} // namespace

std::shared_ptr<CircleNode> CircleNode::make() {
    return std::shared_ptr<CircleNode>(new CircleNode);
}

CircleNode::CircleNode() {
    setLayerIndex(27);
    // A circle that has never had a place must not show at the origin.
    setScale({0, 0, 0});
    prepareCircle();
}

void CircleNode::setCoordinate(CLLocationCoordinate2D coordinate) {
    if (const MainEntry entry{"setCoordinate"}) {
        store(coordinate);
        showAtOnce();
    }
}

void CircleNode::setRadius(double radius) {
    if (const MainEntry entry{"setRadius"}) {
        _radius = radius;
        showAtOnce();
    }
}

void CircleNode::setColor(std::optional<UIColor> color) {
    if (const MainEntry entry{"setColor"}) {
        _color = color;
        prepareCircle();
    }
}

void CircleNode::updateCircleWithCoordinate(CLLocationCoordinate2D coordinate, double radius, bool animated,
                                            double duration) {
    const MainEntry entry{"updateCircleWithCoordinate"};
    if (!entry || !cameraProjection()) {
        return;
    }
    _radius = radius;
    store(coordinate);
    if (!animated) {
        showAtOnce();
    } else if (isPlaced()) {
        runAction(SCNAction::group(
            {SCNAction::moveTo(_place.positionAt(0), duration), SCNAction::scaleTo(diameter(), duration)}));
    }
}

void CircleNode::prepareCircle() {
    auto material = std::make_shared<SCNMaterial>();
    material->readsFromDepthBuffer = false;
    if (_color) {
        material->diffuse = *_color;
    }
    auto plane = std::make_shared<SCNPlane>(1.0, 1.0);
    plane->setCornerRadius(0.5);
    plane->setMaterials({std::move(material)});
    setGeometry(std::move(plane));
}

/// A centre without a place leaves the circle where it is.
void CircleNode::store(CLLocationCoordinate2D coordinate) {
    _coordinate = coordinate;
    if (cameraProjection()) {
        _place.moveTo(coordinate, *cameraProjection());
    }
}

bool CircleNode::isPlaced() const {
    return cameraProjection() && CLLocationCoordinate2DIsValid(_coordinate) && _place.point();
}

float CircleNode::diameter() {
    const double units = 2.0 * _radius / _groundScale.metersPerMappointMax(_coordinate.latitude);
    // Not std::clamp: what is not a number counts as 0.
    return static_cast<float>(units > 0 ? std::min(units, kLargestDiameter) : 0.0);
}

void CircleNode::showAtOnce() {
    if (isPlaced()) {
        const float scale = diameter();
        setExactPosition(_place.positionAt(exactPosition().z));
        setScale({scale, scale, scale});
    }
}

void CircleNode::setup(const std::shared_ptr<CameraProjection>& projection) {
    OverlayNode::setup(projection);
    _groundScale.setFollowsLatitude(projection && projection->stage().zoomIsScale);
    setExactPosition({exactPosition().x, exactPosition().y, kHeight});
    if (!geometry() || geometry()->materials().empty()) {
        prepareCircle();
    }
    // Another engine has another origin: one whose centre has become invalid stays at its last place.
    if (projection && !CLLocationCoordinate2DIsValid(_coordinate) &&
        _place.moveTo(_place.coordinate(), *projection)) {
        setExactPosition(_place.positionAt(kHeight));
    }
    setCoordinate(_coordinate);
}

void CircleNode::addToMap(TrelmixMapEngineSceneView& mapSceneView) {
    OverlayNode::addToMap(mapSceneView);
    // Leaving the scene before may have cut a move short.
    showAtOnce();
}

std::string CircleNode::description() const {
    return "Circle " + descriptionOf(_coordinate);
}

} // namespace trelmix
