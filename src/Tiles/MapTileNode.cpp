#include "Tiles/MapTileNode.h"

#include "Platform/Foundation/Clock.h"

#include <cmath>
#include <unordered_set>

namespace trelmix {

namespace {

/// Seconds between two checks, however far the camera moves.
constexpr double kCheckInterval = 1.0;
constexpr float kZoomThreshold = 0.4F;
constexpr float kAngleThreshold = 0.2F;
/// Map points of the rounded zoom.
constexpr double kTargetThreshold = 200.0;

} // namespace

std::shared_ptr<MapTileNode> MapTileNode::make() {
    return std::shared_ptr<MapTileNode>(new MapTileNode);
}

MapTileNode::MapTileNode() {
    setLayerIndex(25);
}

MapTileNode::~MapTileNode() {
    if (_tileCleanupTimer) {
        _tileCleanupTimer->invalidate();
    }
}

std::shared_ptr<MapTileNode> MapTileNode::self() {
    return std::static_pointer_cast<MapTileNode>(shared_from_this());
}

void MapTileNode::setSynchronousLayer(bool synchronous) {
    if (const MainEntry entry{"setSynchronousLayer"}) {
        _synchronousLayer = synchronous;
    }
}

bool MapTileNode::imageUrlLayer() const {
    return readOnMain("imageUrlLayer", _imageUrlLayer);
}

void MapTileNode::setImageUrlLayer(bool isUrlLayer) {
    if (const MainEntry entry{"setImageUrlLayer"}) {
        _imageUrlLayer = isUrlLayer;
    }
}

MapTileNode::ImageUrlConstructor MapTileNode::imageUrlConstructor() const {
    return readOnMain("imageUrlConstructor", _imageUrlConstructor);
}

void MapTileNode::setImageUrlConstructor(ImageUrlConstructor constructor) {
    if (const MainEntry entry{"setImageUrlConstructor"}) {
        _imageUrlConstructor.swap(constructor);
        // What the old one holds is the application's, and may call back when it goes.
        callOut([&constructor] { constructor = nullptr; });
    }
}

std::optional<std::size_t> MapTileNode::imageCacheLimit() const {
    const MainEntry entry{"imageCacheLimit"};
    return entry ? _mapTileImages.limit() : std::nullopt;
}

void MapTileNode::setImageCacheLimit(std::optional<std::size_t> bytes) {
    if (const MainEntry entry{"setImageCacheLimit"}) {
        _mapTileImages.setLimit(bytes);
        trimImageCache();
    }
}

std::string MapTileNode::description() const {
    return "Tile layer";
}

void MapTileNode::setVisible(bool visible) {
    if (const MainEntry entry{"setVisible"}) {
        setIsHidden(!visible);
        for (const auto& [zoom, tiles] : _mapTiles) {
            for (const auto& tile : tiles) {
                tile->setIsHidden(!visible);
            }
        }
    }
}

void MapTileNode::setOpacity(double opacity) {
    if (const MainEntry entry{"setOpacity"}) {
        SCNNode::setOpacity(opacity);
        for (const auto& [zoom, tiles] : _mapTiles) {
            for (const auto& tile : tiles) {
                tile->SCNNode::setOpacity(SCNNode::opacity());
            }
        }
    }
}

TileCounts MapTileNode::tileCounts() const {
    TileCounts counts;
    const MainEntry entry{"tileCounts"};
    if (!entry) {
        return counts;
    }
    const auto level = _mapTiles.find(roundedZoom(_lastTileCheckZoom));
    if (level == _mapTiles.end()) {
        return counts;
    }
    counts.wanted = level->second.size();
    const TileAnswer* told = nullptr;
    for (const auto& tile : level->second) {
        const auto& answer = tile->answer();
        if (!answer) {
            continue;
        }
        ++counts.answered;
        if (!answer->image) {
            ++(answer->isFailed ? counts.failed : counts.absent);
            const bool tellsMore = told == nullptr || (answer->isFailed && !told->isFailed);
            told = tellsMore && !answer->reason.empty() ? &*answer : told;
        }
    }
    counts.reason = told != nullptr ? told->reason : std::string();
    return counts;
}

void MapTileNode::addToMap(TrelmixMapEngineSceneView& mapSceneView) {
    OverlayNode::addToMap(mapSceneView);
    clearMapData();
}

void MapTileNode::clearEverything() {
    OverlayNode::clearEverything();
    clearMapData();
}

void MapTileNode::clearMapData() {
    ++_generation;
    _mapTileImages.clear();
    _downloads.clear();
    _lostTiles.clear();
    const auto levels = std::move(_mapTiles);
    _mapTiles.clear();
    for (const auto& [zoom, tiles] : levels) {
        for (const auto& tile : tiles) {
            tile->attachTo(nullptr);
        }
    }
    if (_tileCleanupTimer) {
        _tileCleanupTimer->invalidate();
        _tileCleanupTimer = nullptr;
    }
    // A clean-up that was pending is gone with its timer; the next image schedules another.
    _startedCleanupTimer = false;
    _lastTileCheckZoom = 0;
    _lastTileCheckRotation = -3.4F;
    _lastTileCheckViewingAngle = -1.0F;
    _lastTileCheckTarget.reset();
    _lastTileCheckTimestamp = 0;
    _lastTilesBeyondBox.clear();
}

void MapTileNode::update(float zoom, float rotation, float viewingAngle) {
    applyRenderingOrder();
    if (!attachedMap() || !cameraProjection()) {
        return;
    }
    const float publicZoom = zoom + 1.0F;
    if (!needsToRecalculateTiles(publicZoom, rotation, viewingAngle)) {
        return;
    }
    _lastTileCheckZoom = publicZoom;
    _lastTileCheckRotation = rotation;
    _lastTileCheckViewingAngle = viewingAngle;
    _lastTileCheckTarget = cameraProjection()->cameraTargetMapPoint();
    _lastTileCheckTimestamp = Clock::now();
    TileNeed need = tilesInView(*cameraProjection(), publicZoom);
    _lastTilesBeyondBox = std::move(need.beyondBox);
    checkTilesAtCurrentZoomLevel(need.tiles);
}

bool MapTileNode::needsToRecalculateTiles(float zoom, float rotation, float viewingAngle) {
    if (Clock::now() - _lastTileCheckTimestamp < kCheckInterval) {
        return false;
    }
    const WorldMapPoint target = cameraProjection()->cameraTargetMapPoint();
    if (!_lastTileCheckTarget) {
        _lastTileCheckTarget = target;
        return true;
    }
    if (std::abs(_lastTileCheckZoom - zoom) > kZoomThreshold ||
        std::abs(std::round(_lastTileCheckZoom) - std::round(zoom)) >= 0.5F) {
        return true;
    }
    const double s = std::exp2(static_cast<double>(ZOOMLEVEL_MAX) - std::round(static_cast<double>(zoom)));
    return std::abs(_lastTileCheckTarget->x - target.x) / s > kTargetThreshold ||
           std::abs(_lastTileCheckTarget->y - target.y) / s > kTargetThreshold ||
           std::abs(rotation - _lastTileCheckRotation) >= kAngleThreshold ||
           std::abs(viewingAngle - _lastTileCheckViewingAngle) >= kAngleThreshold;
}

/// Removes the nodes of a zoom that are no longer needed or have lost their answer, and from `tiles` those
/// that have one.
void MapTileNode::dropUnneeded(std::int64_t zoom, std::vector<TileKey>& tiles) {
    const std::unordered_set<TileKey, TileKeyHash> needed(tiles.begin(), tiles.end());
    std::unordered_set<TileKey, TileKeyHash> present;
    TileList kept;
    TileList dropped;
    for (const auto& tile : _mapTiles[zoom]) {
        const bool isLost = _lostTiles.erase(tile->key()) > 0;
        if (needed.contains(tile->key()) && !isLost) {
            present.insert(tile->key());
            kept.push_back(tile);
        } else {
            dropped.push_back(tile);
        }
    }
    _mapTiles[zoom] = std::move(kept);
    std::erase_if(tiles, [&present](const TileKey& key) { return present.contains(key); });
    for (const auto& tile : dropped) {
        tile->attachTo(nullptr);
    }
}

void MapTileNode::checkTilesAtCurrentZoomLevel(const std::vector<TileKey>& tiles) {
    const auto keep = self();
    const std::int64_t zoom = roundedZoom(_lastTileCheckZoom);
    std::vector<TileKey> missing = tiles;
    dropUnneeded(zoom, missing);
    TileList made;
    for (const TileKey& key : missing) {
        made.push_back(SingleMapTileNode::make(key, keep));
    }
    TileList& level = _mapTiles[zoom];
    level.insert(level.end(), made.begin(), made.end());
    // Attaching a tile asks the application for its image, and it may clear the layer or take it off the map.
    const std::uint64_t generation = _generation;
    const auto map = attachedMap();
    for (const auto& tile : made) {
        if (_generation != generation || attachedMap() != map) {
            break;
        }
        tile->attachTo(map);
    }
    trimImageCache();
}

} // namespace trelmix
