#include "Tiles/SingleMapTileNode.h"

#include "Geo/GeoUtils.h"

#include <cmath>

namespace trelmix {

std::shared_ptr<SingleMapTileNode> SingleMapTileNode::make(const TileIndex& index, const SCNNode& layer) {
    return std::shared_ptr<SingleMapTileNode>(new SingleMapTileNode(index, layer));
}

SingleMapTileNode::SingleMapTileNode(const TileIndex& index, const SCNNode& layer) : _index(index) {
    const double s = std::exp2(static_cast<double>(ZOOMLEVEL_MAX) - static_cast<double>(index.zoom));
    _mapTileDimension = 256.0 * s;
    _mapTileCenter = {(2.0 * static_cast<double>(index.x) + 1.0) * 128.0 * s,
                      (2.0 * static_cast<double>(index.y) + 1.0) * 128.0 * s};
    setLayerIndex(index.zoom);
    SCNNode::setOpacity(layer.opacity());
    setIsHidden(layer.isHidden());
}

Coordinate SingleMapTileNode::initialTargetCoordinateForProjection() const {
    return GeoUtils::coordinateOfScenePoint(_mapTileCenter);
}

void SingleMapTileNode::addToMap(TrelmixMapEngineSceneView& mapSceneView) {
    GeoNode::addToMap(mapSceneView);
    // It may be drawn before its first update.
    applyRenderingOrder();
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
    const auto column = static_cast<double>(_index.x);
    const auto row = static_cast<double>(_index.y);
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
