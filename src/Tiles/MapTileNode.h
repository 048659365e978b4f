#pragma once

#include "Engine/OverlayNode.h"
#include "Platform/Foundation/RunLoop.h"
#include "Tiles/SingleMapTileNode.h"
#include "Tiles/TileGround.h"
#include "Tiles/TileImageCache.h"

#include <Trelmix/TrelmixMapTileLayer.h>

#include <map>
#include <memory>
#include <optional>
#include <unordered_set>
#include <vector>

namespace trelmix {

/// A raster map: decides which tiles the view needs, keeps one node for each of them, asks for their images
/// once, and takes tiles of other zooms away when those of the current one cover them.
///
/// The check runs in the overlay update, on whichever thread that is; answers and the clean-up on the main
/// thread. All under the scene lock, which is released around every question to the application.
class MapTileNode final : public OverlayNode<TrelmixMapTileLayer> {
public:
    static std::shared_ptr<MapTileNode> make();
    ~MapTileNode() override;

    bool synchronousLayer() const override { return readOnMain("synchronousLayer", _synchronousLayer); }
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
    void update(float zoom, float rotation, float viewingAngle) override;

    /// Called by a tile node that has no image yet.
    void requestTileImage(SingleMapTileNode& node);

private:
    using TileList = std::vector<std::shared_ptr<SingleMapTileNode>>;
    struct CoverageNeed;
    struct Download;

    MapTileNode();
    std::shared_ptr<MapTileNode> self();

    // Which tiles (MapTileNode.cpp)
    bool needsToRecalculateTiles(float zoom, float rotation, float viewingAngle);
    void checkTilesAtCurrentZoomLevel(const std::vector<TileKey>& tiles);
    void dropUnneeded(std::int64_t zoom, std::vector<TileKey>& tiles);
    void clearMapData();

    // Their images (TileImages.cpp)
    bool readCachedTile(SingleMapTileNode& node);
    void acceptTile(TileKey key, TileAnswer answer, bool internally);
    void provideOnMainThread(TileKey key, TileAnswer answer, bool internally);
    bool loadsFromUrls() const { return _imageUrlLayer && _imageUrlConstructor; }
    void trimImageCache();
    std::shared_ptr<SingleMapTileNode> shownTile(const TileKey& key) const;
    std::shared_ptr<TrelmixMapEngineDelegate> delegateOfEngine() const;
    void askDelegateAtOnce(const TileKey& key);
    void askDelegate(const TileKey& key);

    // Their way over the network (TileDownload.cpp)
    std::optional<URL> addressOf(const TileKey& key) const;
    void createMapUrlTileDownloadTask(const TileKey& key);
    void acceptDownload(const TileKey& key, std::uint64_t generation, std::optional<TileAnswer> answer);

    // Tiles of other zooms (TileCleanup.cpp)
    void restartTileCleanupTimer();
    void scheduleTileCleanup();
    void checkTilesAtOtherZoomLevels();
    bool isCoveredByLevels(const SingleMapTileNode& node, const std::vector<std::int64_t>& levels,
                           std::int64_t current, const CoverageNeed& need) const;
    bool isCoveredByTiles(const SingleMapTileNode& node, std::int64_t level, const CoverageNeed& need) const;

    bool _synchronousLayer = false;
    bool _imageUrlLayer = false;
    ImageUrlConstructor _imageUrlConstructor;
    /// Tiles whose images are on their way from their addresses.
    std::unordered_set<TileKey, TileKeyHash> _downloads;
    /// Tiles that nobody is going to answer, as their downloads were dropped: the next check asks anew.
    std::unordered_set<TileKey, TileKeyHash> _lostTiles;
    float _lastTileCheckZoom = 0;
    float _lastTileCheckRotation = -3.4F;
    float _lastTileCheckViewingAngle = -1.0F;
    std::optional<WorldMapPoint> _lastTileCheckTarget;
    double _lastTileCheckTimestamp = 0;
    /// What the last check wanted beyond the bounding box: the clean-up waits for it too.
    std::vector<TileKey> _lastTilesBeyondBox;
    /// By whole zoom, in order of creation.
    std::map<std::int64_t, TileList> _mapTiles;
    TileImageCache _mapTileImages;
    std::shared_ptr<Timer> _tileCleanupTimer;
    bool _startedCleanupTimer = false;
    /// Counts clearings, so that a check notices that the application cleared the layer while it was asked.
    std::uint64_t _generation = 0;
};

} // namespace trelmix
