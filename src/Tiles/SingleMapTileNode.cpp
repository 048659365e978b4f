#include "Tiles/SingleMapTileNode.h"

#include "Geo/GeoUtils.h"
#include "Tiles/MapTileNode.h"

#include <cmath>

namespace trelmix {

std::shared_ptr<SingleMapTileNode> SingleMapTileNode::make(TileKey key,
                                                           const std::shared_ptr<MapTileNode>& layer) {
    return std::shared_ptr<SingleMapTileNode>(new SingleMapTileNode(key, layer));
}

SingleMapTileNode::SingleMapTileNode(TileKey key, const std::shared_ptr<MapTileNode>& layer)
    : _key(key), _mapTileNode(layer) {
    const double s = std::exp2(static_cast<double>(ZOOMLEVEL_MAX) - static_cast<double>(key.zoom));
    _mapTileDimension = 256.0 * s;
    _mapTileCenter = {(2.0 * static_cast<double>(key.x) + 1.0) * 128.0 * s,
                      (2.0 * static_cast<double>(key.y) + 1.0) * 128.0 * s};
    setLayerIndex(key.zoom);
    SCNNode::setOpacity(layer->SCNNode::opacity());
    setIsHidden(layer->isHidden());
}

Coordinate SingleMapTileNode::initialTargetCoordinateForProjection() const {
    return GeoUtils::coordinateOfScenePoint(_mapTileCenter);
}

void SingleMapTileNode::addToMap(TrelmixMapEngineSceneView& mapSceneView) {
    GeoNode::addToMap(mapSceneView);
    // It may be drawn before its first update, and counts as its layer among equals.
    applyRenderingOrder();
    if (const auto layer = _mapTileNode.lock()) {
        setDrawSequence(layer->drawSequence());
    }
}

void SingleMapTileNode::setup(const std::shared_ptr<CameraProjection>& projection) {
    GeoNode::setup(projection);
    if (!tileImage()) {
        if (const auto layer = _mapTileNode.lock()) {
            layer->requestTileImage(*this);
        }
    }
    setupTileTexture();
}

void SingleMapTileNode::finishLoading(TileAnswer answer) {
    _answer = std::move(answer);
    setupTileTexture();
}

void SingleMapTileNode::setupTileTexture() {
    const auto image = tileImage();
    if (!image || !cameraProjection()) {
        setGeometry(nullptr);
        return;
    }
    const WorldMapPoint origin = cameraProjection()->initialMapPoint();
    const auto column = static_cast<double>(_key.x);
    const auto row = static_cast<double>(_key.y);
    auto plane = std::make_shared<SCNPlane>(_mapTileDimension, _mapTileDimension);
    plane->setSceneEdges(
        {column * _mapTileDimension - origin.x, (column + 1.0) * _mapTileDimension - origin.x,
         -((row + 1.0) * _mapTileDimension - origin.y), -(row * _mapTileDimension - origin.y)});
    auto material = std::make_shared<SCNMaterial>();
    material->readsFromDepthBuffer = false;
    material->diffuse = image;
    plane->setMaterials({std::move(material)});
    setExactPosition({_mapTileCenter.x - origin.x, -(_mapTileCenter.y - origin.y), exactPosition().z});
    setGeometry(std::move(plane));
}

} // namespace trelmix
