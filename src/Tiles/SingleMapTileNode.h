#pragma once

#include "Engine/GeoNode.h"
#include "Tiles/TileGround.h"
#include "Tiles/TileImageCache.h"

#include <memory>
#include <optional>

namespace trelmix {

class MapTileNode;

/// One square of a tile layer. It keeps its image for life and is never used for another tile.
class SingleMapTileNode final : public GeoNode {
public:
    static std::shared_ptr<SingleMapTileNode> make(TileKey key, const std::shared_ptr<MapTileNode>& layer);

    const TileKey& key() const { return _key; }
    std::shared_ptr<const UIImage> tileImage() const { return _answer ? _answer->image : nullptr; }
    /// True once the question for the image has been answered, with an image or with none.
    bool finishedLoading() const { return _answer.has_value(); }
    const std::optional<TileAnswer>& answer() const { return _answer; }
    /// Takes the answer and shows it.
    void finishLoading(TileAnswer answer);

    Coordinate initialTargetCoordinateForProjection() const override;
    void addToMap(TrelmixMapEngineSceneView& mapSceneView) override;
    void setup(const std::shared_ptr<CameraProjection>& projection) override;

private:
    SingleMapTileNode(TileKey key, const std::shared_ptr<MapTileNode>& layer);
    void setupTileTexture();

    TileKey _key;
    /// Zoom-22 map points: side and centre.
    double _mapTileDimension;
    WorldMapPoint _mapTileCenter;
    std::weak_ptr<MapTileNode> _mapTileNode;
    std::optional<TileAnswer> _answer;
};

} // namespace trelmix
