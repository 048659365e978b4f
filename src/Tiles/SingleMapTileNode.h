#pragma once

#include "Engine/GeoNode.h"
#include "Tiles/TileImageCache.h"

#include <memory>
#include <optional>

namespace trelmix {

/// One square of a tile layer, with the plane that shows its image once that is there. It is never used for
/// another tile.
class SingleMapTileNode final : public GeoNode {
public:
    /// As visible and as opaque as its layer is.
    static std::shared_ptr<SingleMapTileNode> make(const TileIndex& index, const SCNNode& layer);

    const TileIndex& index() const { return _index; }
    std::shared_ptr<const UIImage> tileImage() const { return _answer ? _answer->image : nullptr; }
    /// True once the question for the image has been answered, with an image or with none.
    bool finishedLoading() const { return _answer.has_value(); }
    const std::optional<TileAnswer>& answer() const { return _answer; }
    /// Takes the answer and shows it.
    void finishLoading(TileAnswer answer);

    Coordinate initialTargetCoordinateForProjection() const override;
    void addToMap(TrelmixMapEngineSceneView& mapSceneView) override;

private:
    SingleMapTileNode(const TileIndex& index, const SCNNode& layer);
    void setupTileTexture();

    TileIndex _index;
    /// Zoom-22 map points: side and centre.
    double _mapTileDimension;
    WorldMapPoint _mapTileCenter;
    std::optional<TileAnswer> _answer;
};

} // namespace trelmix
