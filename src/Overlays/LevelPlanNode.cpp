#include "Overlays/LevelPlanNode.h"

#include "Engine/TrelmixMapEngineSceneView.h"
#include "Geo/GeoUtils.h"
#include "Overlays/ScenePlace.h"

#include <algorithm>
#include <cmath>

namespace trelmix {

namespace {

bool isBetweenThePoles(CLLocationCoordinate2D coordinate) {
    return CLLocationCoordinate2DIsValid(coordinate) && std::abs(coordinate.latitude) < 90.0;
}

} // namespace

std::shared_ptr<LevelPlanNode> LevelPlanNode::make(Coordinate southWest, Coordinate northEast) {
    return std::shared_ptr<LevelPlanNode>(new LevelPlanNode(southWest, northEast));
}

LevelPlanNode::LevelPlanNode(Coordinate southWest, Coordinate northEast)
    : _southWest(locationOf(southWest)), _northEast(locationOf(northEast)) {
    setLayerIndex(25);
}

void LevelPlanNode::setSouthWest(CLLocationCoordinate2D corner) {
    if (const MainEntry entry{"setSouthWest"}) {
        _southWest = corner;
        rebuild();
    }
}

void LevelPlanNode::setNorthEast(CLLocationCoordinate2D corner) {
    if (const MainEntry entry{"setNorthEast"}) {
        _northEast = corner;
        rebuild();
    }
}

void LevelPlanNode::setLevelPlanImage(std::shared_ptr<const UIImage> image) {
    if (const MainEntry entry{"setLevelPlanImage"}) {
        _levelPlanImage = std::move(image);
        rebuild();
    }
}

void LevelPlanNode::setLevelPlanRotation(double degrees) {
    const MainEntry entry{"setLevelPlanRotation"};
    if (entry && std::isfinite(degrees)) {
        _levelPlanRotation = degrees;
        rebuild();
    }
}

void LevelPlanNode::rebuild() {
    if (const auto projection = cameraProjection()) {
        setup(projection);
    }
}

/// Empty when the corners span nothing or have no place.
std::shared_ptr<SCNPlane> LevelPlanNode::plane() const {
    if (!isBetweenThePoles(_southWest) || !isBetweenThePoles(_northEast)) {
        return nullptr;
    }
    const Coordinate southWest = coordinateOf(_southWest);
    const Coordinate northEast = coordinateOf(_northEast);
    const Coordinate northWest{northEast.lat, southWest.lon};
    const double scale =
        GeoUtils::mapPointsPerMeter(initialTargetCoordinateForProjection().lat, ZOOMLEVEL_MAX);
    const double width = GeoUtils::distanceBetween(northEast, northWest) * scale;
    const double height = GeoUtils::distanceBetween(southWest, northWest) * scale;
    return width > 0 && height > 0 ? std::make_shared<SCNPlane>(width, height) : nullptr;
}

void LevelPlanNode::setup(const std::shared_ptr<CameraProjection>& projection) {
    OverlayNode::setup(projection);
    const auto centre = scenePlaceOf(locationOf(initialTargetCoordinateForProjection()), *projection);
    auto rectangle = centre ? plane() : nullptr;
    if (!rectangle) {
        setGeometry(nullptr);
        return;
    }
    auto material = std::make_shared<SCNMaterial>();
    if (_levelPlanImage) {
        material->diffuse = _levelPlanImage;
    } else {
        material->diffuse = UIColor::clearColor();
    }
    rectangle->setMaterials({std::move(material)});
    setExactPosition({centre->x, -centre->y, exactPosition().z});
    setExactEulerAngles({0, 0, Radians::fromDegrees(_levelPlanRotation).value});
    setGeometry(std::move(rectangle));
}

Coordinate LevelPlanNode::initialTargetCoordinateForProjection() const {
    return {(_southWest.latitude + _northEast.latitude) * 0.5,
            (_southWest.longitude + _northEast.longitude) * 0.5};
}

void LevelPlanNode::setupInitialCameraZoom(TrelmixMapEngineSceneView& mapSceneView) {
    // The height at which the camera shows one map point of its zoom per screen point; in a higher view
    // everything is larger on screen.
    constexpr double kFittingHeight = 591.2;
    constexpr float kLowest = 14.0F;
    constexpr float kHighest = 22.0F;
    const auto& projection = *mapSceneView.cameraProjection();
    const float fit = projection.unlimitedZoomToFit(coordinateOf(_southWest), coordinateOf(_northEast));
    const double height = projection.mapDimensions().y;
    const double enlargement = height > kFittingHeight ? std::log2(height / kFittingHeight) : 0.0;
    const auto zoom = static_cast<float>(static_cast<double>(fit) - enlargement);
    mapSceneView.cameraPath().applyInitialZoom(std::isnan(zoom) ? kLowest
                                                                : std::clamp(zoom, kLowest, kHighest));
}

std::string LevelPlanNode::description() const {
    return "LevelPlan " + descriptionOf(_southWest) + " " + descriptionOf(_northEast);
}

} // namespace trelmix
