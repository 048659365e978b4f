#include "Overlays/PolylineNode.h"

#include "Geo/GeoUtils.h"

#include <algorithm>
#include <cmath>

namespace trelmix {

namespace {

/// Metres.
constexpr double kShortestLeg = 0.1;
/// 5 and 355 degrees.
constexpr double kReversal = 0.08726646259971647;
constexpr double kReversalBeyond = 6.19591884457987;

bool turnsBack(const CLLocation& from, const CLLocation& at, const CLLocation& to) {
    const Coordinate middle = coordinateOf(at.coordinate());
    const double difference = std::abs((GeoUtils::bearing(coordinateOf(from.coordinate()), middle) -
                                        GeoUtils::bearing(coordinateOf(to.coordinate()), middle))
                                           .value);
    return difference <= kReversal || difference >= kReversalBeyond;
}

} // namespace

std::shared_ptr<PolylineNode> PolylineNode::make() {
    return std::shared_ptr<PolylineNode>(new PolylineNode);
}

PolylineNode::PolylineNode() {
    setLayerIndex(28);
}

void PolylineNode::setColor(UIColor color) {
    if (const MainEntry entry{"setColor"}) {
        _color = color;
        _uniforms->setColor(color);
        showUniforms();
    }
}

void PolylineNode::setWidth(float width) {
    const MainEntry entry{"setWidth"};
    if (entry && std::isfinite(width)) {
        _width = width;
        _needsWidth = true;
        showUniforms();
    }
}

/// The list that is drawn is another one now, also for hosts that draw only what has changed.
void PolylineNode::showUniforms() {
    setGeometry(geometry());
}

void PolylineNode::setPolylineVertices(std::vector<CLLocation> vertices) {
    if (const MainEntry entry{"setPolylineVertices"}) {
        _polylineVertices = std::move(vertices);
        _needsWidth = true;
        preparePolyline();
    }
}

std::vector<CLLocation> PolylineNode::cleanedUp(const std::vector<CLLocation>& vertices) {
    std::vector<CLLocation> kept;
    kept.reserve(vertices.size());
    std::size_t next = 0;
    while (next < vertices.size()) {
        if (kept.size() < 2) {
            kept.push_back(vertices[next++]);
            continue;
        }
        const CLLocation& before = kept[kept.size() - 2];
        const CLLocation& middle = kept.back();
        if (turnsBack(before, middle, vertices[next]) ||
            before.distanceFromLocation(middle) <= kShortestLeg) {
            kept.pop_back();
        } else {
            kept.push_back(vertices[next++]);
        }
    }
    return kept;
}

void PolylineNode::preparePolyline() {
    if (!cameraProjection() || _polylineVertices.size() < 2 || _width <= 0) {
        return;
    }
    const CameraProjection& projection = *cameraProjection();
    std::erase_if(_polylineVertices, [&projection](const CLLocation& vertex) {
        return !scenePlaceOf(vertex.coordinate(), projection);
    });
    _polylineVertices = cleanedUp(_polylineVertices);
    std::vector<OpenGlPoint> points;
    points.reserve(_polylineVertices.size());
    for (const CLLocation& vertex : _polylineVertices) {
        points.push_back(*scenePlaceOf(vertex.coordinate(), projection));
    }
    updateGeometry(points);
}

bool PolylineNode::updateGeometry(const std::vector<OpenGlPoint>& points) {
    const OpenGlPoint first = points.empty() ? OpenGlPoint{} : points.front();
    std::vector<LineVector> relative;
    relative.reserve(points.size());
    for (const OpenGlPoint& point : points) {
        relative.push_back({static_cast<float>(point.x - first.x), -static_cast<float>(point.y - first.y)});
    }
    const auto mesh = LineMesh::between(relative);
    if (!mesh) {
        return false;
    }
    if (!_material) {
        _material = makeLineMaterial(_uniforms);
    }
    auto geometry = std::make_shared<SCNMeshGeometry>(mesh->data({first.x, -first.y, 0}));
    geometry->setMaterials({_material});
    setGeometry(std::move(geometry));
    return true;
}

void PolylineNode::update(float zoom, Radians, Radians) {
    if (!cameraProjection() || _polylineVertices.empty()) {
        return;
    }
    applyRenderingOrder();
    const double ratio = cameraProjection()->mapPointScreenPointRatio();
    if (!_needsWidth && zoom == _lastZoom && ratio == _lastRatio) {
        return;
    }
    _needsWidth = false;
    _lastZoom = zoom;
    _lastRatio = ratio;
    const double latitude = _polylineVertices.front().coordinate().latitude;
    if (const auto units = _groundScale.unitsPerScreenPoint(ratio, latitude, zoom)) {
        // A negative width would only turn the band over.
        _uniforms->setWidthInMapPoints(std::max(_width, 0.0F) * *units);
    }
}

Coordinate PolylineNode::initialTargetCoordinateForProjection() const {
    return _polylineVertices.empty() ? Coordinate{} : coordinateOf(_polylineVertices.front().coordinate());
}

void PolylineNode::setup(const std::shared_ptr<CameraProjection>& projection) {
    OverlayNode::setup(projection);
    _groundScale.setFollowsLatitude(projection && projection->stage().zoomIsScale);
    _needsWidth = true;
    if (projection && _origin != projection->initialMapPoint()) {
        // A mesh that is kept would stand elsewhere on another engine's map.
        setGeometry(nullptr);
        _origin = projection->initialMapPoint();
    }
}

void PolylineNode::addToMap(TrelmixMapEngineSceneView& mapSceneView) {
    OverlayNode::addToMap(mapSceneView);
    preparePolyline();
}

std::string PolylineNode::description() const {
    return "Polyline " + descriptionOf(_polylineVertices);
}

} // namespace trelmix
