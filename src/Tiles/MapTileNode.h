#pragma once

#include "Engine/OverlayNode.h"
#include "Platform/Foundation/RunLoop.h"
#include "Tiles/SingleMapTileNode.h"
#include "Tiles/TileGround.h"
#include "Tiles/TileImages.h"

#include <Trelmix/TrelmixMapTileLayer.h>

#include <map>
#include <memory>
#include <optional>
#include <vector>

namespace trelmix {

/// A raster map: keeps one node for each tile that the view needs, has `TileImages` get their images, and
/// takes tiles of other zooms away when those of the current one cover them (`TileCoverage`).
///
/// The check runs in the overlay update, on whichever thread that is; answers and the clean-up on the main
/// thread. All under the scene lock. Longer than other classes, as a third of it hands the
/// layer's public settings on.
class MapTileNode final : public OverlayNode<TrelmixMapTileLayer> {
public:
    static std::shared_ptr<MapTileNode> make();
    ~MapTileNode() override;

    bool synchronousLayer() const override;
    void setSynchronousLayer(bool synchronous) override;
    bool imageUrlLayer() const override;
    void setImageUrlLayer(bool isUrlLayer) override;
    ImageUrlConstructor imageUrlConstructor() const override;
    void setImageUrlConstructor(ImageUrlConstructor constructor) override;
    std::optional<std::size_t> imageCacheLimit() const override;
    void setImageCacheLimit(std::optional<std::size_t> bytes) override;
    void provideTileForX(std::int64_t x, std::int64_t y, std::int64_t zoom,
                         std::shared_ptr<const UIImage> image) override;
    TileCounts tileCounts() const override;
    std::string description() const override;
    void setVisible(bool visible) override;
    void setOpacity(double opacity) override;

    void clearEverything() override;
    void addToMap(TrelmixMapEngineSceneView& mapSceneView) override;
    void update(float zoom, Radians rotation, Radians viewingAngle) override;

    // What TileImages asks and tells.
    std::shared_ptr<MapTileNode> self();
    std::shared_ptr<TrelmixMapEngineDelegate> delegateOfEngine() const;
    bool shows(const TileIndex& tile) const { return shownTile(tile) != nullptr; }
    /// Gives the answer to the tile's node, if there is one.
    void show(const TileIndex& tile, TileAnswer answer);
    void trimImageCache();
    /// The next check does not wait for the camera to move.
    void checkWithoutMovement();

private:
    using Level = std::map<TileIndex, std::shared_ptr<SingleMapTileNode>>;
    using Nodes = std::vector<std::shared_ptr<SingleMapTileNode>>;

    /// What the camera was when the tiles were checked last.
    struct Check {
        /// Public.
        float zoom = 0;
        Radians rotation{-3.4};
        Radians viewingAngle{-1.0};
        std::optional<WorldMapPoint> target;
        double timestamp = 0;
        /// What it wanted beyond the bounding box: the clean-up waits for it too.
        std::vector<TileIndex> beyondBox;
    };

    MapTileNode();

    bool needsToRecalculateTiles(float zoom, Radians rotation, Radians viewingAngle) const;
    /// Has a frame wanted that long from now.
    void checkLater(double seconds);
    void checkTilesAtCurrentZoomLevel(const std::vector<TileIndex>& tiles);
    Nodes takeUnneeded(Level& level, const std::vector<TileIndex>& needed);
    void clearMapData();
    SingleMapTileNode* shownTile(const TileIndex& tile) const;

    // Tiles of other zooms, one second after an image came.
    void restartTileCleanupTimer();
    void scheduleTileCleanup();
    void stopTileCleanupTimer();
    void checkTilesAtOtherZoomLevels();

    TileImages _images{*this};
    Check _lastCheck;
    /// By whole zoom.
    std::map<std::int64_t, Level> _mapTiles;
    std::shared_ptr<Timer> _tileCleanupTimer;
    std::shared_ptr<Timer> _checkTimer;
    bool _startedCleanupTimer = false;
};

} // namespace trelmix
