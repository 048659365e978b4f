#include "Tiles/MapTileNode.h"

#include "Engine/TrelmixMapEngineSceneView.h"
#include "Platform/Foundation/Clock.h"
#include "Platform/Foundation/Thread.h"
#include "Platform/Foundation/WakeUp.h"
#include "Tiles/TileCoverage.h"

#include <cmath>
#include <set>
#include <utility>

namespace trelmix {

namespace {

/// Seconds between two checks, however far the camera moves.
constexpr double kCheckInterval = 1.0;
constexpr float kZoomThreshold = 0.4F;
/// Radians.
constexpr float kAngleThreshold = 0.2F;
/// Map points of the rounded zoom.
constexpr double kTargetThreshold = 200.0;
/// Seconds from the first image that arrives to the clean-up; images arriving meanwhile do not postpone it.
constexpr double kCleanupDelay = 1.0;

bool isFarFrom(Radians a, Radians b) {
    return std::abs(static_cast<float>((a - b).value)) >= kAngleThreshold;
}

} // namespace

std::shared_ptr<MapTileNode> MapTileNode::make() {
    return std::shared_ptr<MapTileNode>(new MapTileNode);
}

MapTileNode::MapTileNode() {
    setLayerIndex(25);
}

MapTileNode::~MapTileNode() {
    stopTileCleanupTimer();
    if (_checkTimer) {
        _checkTimer->invalidate();
    }
}

std::shared_ptr<MapTileNode> MapTileNode::self() {
    return std::static_pointer_cast<MapTileNode>(shared_from_this());
}

bool MapTileNode::synchronousLayer() const {
    return readOnMain("synchronousLayer", _images.source().isSynchronous);
}

void MapTileNode::setSynchronousLayer(bool synchronous) {
    if (const MainEntry entry{"setSynchronousLayer"}) {
        _images.source().isSynchronous = synchronous;
    }
}

bool MapTileNode::imageUrlLayer() const {
    return readOnMain("imageUrlLayer", _images.source().isUrlLayer);
}

void MapTileNode::setImageUrlLayer(bool isUrlLayer) {
    if (const MainEntry entry{"setImageUrlLayer"}) {
        _images.source().isUrlLayer = isUrlLayer;
    }
}

MapTileNode::ImageUrlConstructor MapTileNode::imageUrlConstructor() const {
    return readOnMain("imageUrlConstructor", _images.source().address);
}

void MapTileNode::setImageUrlConstructor(ImageUrlConstructor constructor) {
    if (const MainEntry entry{"setImageUrlConstructor"}) {
        _images.source().address.swap(constructor);
        // What the old one holds is the application's, and may call back when it goes.
        callOut([&constructor] { constructor = nullptr; });
    }
}

std::optional<std::size_t> MapTileNode::imageCacheLimit() const {
    const MainEntry entry{"imageCacheLimit"};
    return entry ? _images.cache().limit() : std::nullopt;
}

void MapTileNode::setImageCacheLimit(std::optional<std::size_t> bytes) {
    if (const MainEntry entry{"setImageCacheLimit"}) {
        _images.cache().setLimit(bytes);
        trimImageCache();
    }
}

void MapTileNode::provideTileForX(std::int64_t x, std::int64_t y, std::int64_t zoom,
                                  std::shared_ptr<const UIImage> image) {
    _images.provide({x, y, zoom}, {std::move(image), false, {}});
}

std::string MapTileNode::description() const {
    return "Tile layer";
}

void MapTileNode::setVisible(bool visible) {
    if (const MainEntry entry{"setVisible"}) {
        setIsHidden(!visible);
        for (const auto& [zoom, tiles] : _mapTiles) {
            for (const auto& [index, tile] : tiles) {
                tile->setIsHidden(!visible);
            }
        }
    }
}

void MapTileNode::setOpacity(double opacity) {
    if (const MainEntry entry{"setOpacity"}) {
        SCNNode::setOpacity(opacity);
        for (const auto& [zoom, tiles] : _mapTiles) {
            for (const auto& [index, tile] : tiles) {
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
    const auto level = _mapTiles.find(roundedZoom(_lastCheck.zoom));
    if (level == _mapTiles.end()) {
        return counts;
    }
    counts.wanted = level->second.size();
    const TileAnswer* told = nullptr;
    for (const auto& [index, tile] : level->second) {
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
    _images.clear();
    const auto levels = std::exchange(_mapTiles, {});
    for (const auto& [zoom, tiles] : levels) {
        for (const auto& [index, tile] : tiles) {
            tile->attachTo(nullptr);
        }
    }
    // A clean-up that was pending is gone with its timer; the next image schedules another.
    stopTileCleanupTimer();
    _lastCheck = {};
}

void MapTileNode::update(float zoom, Radians rotation, Radians viewingAngle) {
    applyRenderingOrder();
    if (!attachedMap() || !cameraProjection()) {
        return;
    }
    const float publicZoom = zoom + 1.0F;
    if (!needsToRecalculateTiles(publicZoom, rotation, viewingAngle)) {
        return;
    }
    if (const double sinceLast = Clock::now() - _lastCheck.timestamp; sinceLast < kCheckInterval) {
        checkLater(kCheckInterval - sinceLast);
        return;
    }
    TileNeed need = tilesInView(*cameraProjection(), publicZoom);
    _lastCheck = {publicZoom,   rotation,
                  viewingAngle, cameraProjection()->cameraTargetMapPoint(),
                  Clock::now(), std::move(need.beyondBox)};
    checkTilesAtCurrentZoomLevel(need.tiles);
}

void MapTileNode::checkWithoutMovement() {
    _lastCheck.target.reset();
    WakeUp::signal(Wake::frame);
}

void MapTileNode::checkLater(double seconds) {
    if (!_checkTimer || !_checkTimer->isValid()) {
        _checkTimer = Timer::scheduledTimer(seconds, false, [] { WakeUp::signal(Wake::frame); });
    }
}

bool MapTileNode::needsToRecalculateTiles(float zoom, Radians rotation, Radians viewingAngle) const {
    if (!_lastCheck.target) {
        return true;
    }
    const WorldMapPoint target = cameraProjection()->cameraTargetMapPoint();
    if (std::abs(_lastCheck.zoom - zoom) > kZoomThreshold ||
        std::abs(std::round(_lastCheck.zoom) - std::round(zoom)) >= 0.5F) {
        return true;
    }
    const double s = std::exp2(static_cast<double>(ZOOMLEVEL_MAX) - std::round(static_cast<double>(zoom)));
    return std::abs(_lastCheck.target->x - target.x) / s > kTargetThreshold ||
           std::abs(_lastCheck.target->y - target.y) / s > kTargetThreshold ||
           isFarFrom(rotation, _lastCheck.rotation) || isFarFrom(viewingAngle, _lastCheck.viewingAngle);
}

/// Takes out the nodes of a zoom that are no longer needed or have lost their answer.
MapTileNode::Nodes MapTileNode::takeUnneeded(Level& level, const std::vector<TileIndex>& needed) {
    const std::set<TileIndex> kept(needed.begin(), needed.end());
    Nodes taken;
    std::erase_if(level, [&](const auto& entry) {
        const bool goes = _images.takeLost(entry.first) || !kept.contains(entry.first);
        if (goes) {
            taken.push_back(entry.second);
        }
        return goes;
    });
    return taken;
}

void MapTileNode::checkTilesAtCurrentZoomLevel(const std::vector<TileIndex>& tiles) {
    const auto keep = self();
    Level& level = _mapTiles[roundedZoom(_lastCheck.zoom)];
    const Nodes dropped = takeUnneeded(level, tiles);
    Nodes made;
    for (const TileIndex& index : tiles) {
        if (const auto [entry, isNew] = level.try_emplace(index); isNew) {
            entry->second = SingleMapTileNode::make(index, *this);
            made.push_back(entry->second);
        }
    }
    // From here on the lock is released now and then, and the layer may be cleared or taken off the map: by
    // the application when it is asked for an image, or by another thread.
    const std::uint64_t generation = _images.generation();
    const auto map = attachedMap();
    for (const auto& tile : dropped) {
        tile->attachTo(nullptr);
    }
    for (const auto& tile : made) {
        if (_images.generation() != generation || attachedMap() != map) {
            break;
        }
        tile->attachTo(map);
        // It counts as its layer among equals.
        tile->setDrawSequence(drawSequence());
        _images.request(tile->index());
    }
    if (cameraProjection()) {
        _images.startDownloads(*cameraProjection());
    }
    trimImageCache();
}

SingleMapTileNode* MapTileNode::shownTile(const TileIndex& tile) const {
    const auto level = _mapTiles.find(tile.zoom);
    if (level == _mapTiles.end()) {
        return nullptr;
    }
    const auto found = level->second.find(tile);
    return found == level->second.end() ? nullptr : found->second.get();
}

std::shared_ptr<TrelmixMapEngineDelegate> MapTileNode::delegateOfEngine() const {
    const auto engine = std::dynamic_pointer_cast<TrelmixMapEngineSceneView>(attachedMap());
    return engine ? engine->currentDelegate() : nullptr;
}

void MapTileNode::show(const TileIndex& tile, TileAnswer answer) {
    if (auto* const node = shownTile(tile)) {
        if (answer.image) {
            restartTileCleanupTimer();
        }
        node->finishLoading(std::move(answer));
    }
}

void MapTileNode::trimImageCache() {
    TileImageCache& cache = _images.cache();
    if (!cache.isOverLimit()) {
        return;
    }
    std::size_t shown = 0;
    for (const auto& [zoom, tiles] : _mapTiles) {
        for (const auto& [index, tile] : tiles) {
            cache.touch(index);
            ++shown;
        }
    }
    cache.trim(shown);
}

void MapTileNode::restartTileCleanupTimer() {
    if ((_tileCleanupTimer && _tileCleanupTimer->isValid()) || _startedCleanupTimer) {
        return;
    }
    _startedCleanupTimer = true;
    if (Thread::isMainThread()) {
        scheduleTileCleanup();
        return;
    }
    DispatchQueue::main().async([weak = std::weak_ptr(self()), generation = _images.generation()] {
        const SceneLock lock;
        const auto layer = weak.lock();
        if (layer && layer->_images.generation() == generation) {
            layer->scheduleTileCleanup();
        }
    });
}

void MapTileNode::scheduleTileCleanup() {
    stopTileCleanupTimer();
    _startedCleanupTimer = true;
    _tileCleanupTimer = Timer::scheduledTimer(kCleanupDelay, false, [weak = std::weak_ptr(self())] {
        if (const auto layer = weak.lock()) {
            layer->checkTilesAtOtherZoomLevels();
        }
    });
}

void MapTileNode::stopTileCleanupTimer() {
    _startedCleanupTimer = false;
    if (_tileCleanupTimer) {
        _tileCleanupTimer->invalidate();
        _tileCleanupTimer = nullptr;
    }
}

void MapTileNode::checkTilesAtOtherZoomLevels() {
    const SceneLock lock;
    const auto keep = self();
    stopTileCleanupTimer();
    if (!cameraProjection()) {
        return;
    }
    TileLevels levels;
    for (const auto& [zoom, tiles] : _mapTiles) {
        for (auto& states = levels[zoom]; const auto& [index, tile] : tiles) {
            states[index] = {tile->finishedLoading(), tile->tileImage() != nullptr};
        }
    }
    const CoverageNeed need{boundingBoxTiles(*cameraProjection()), roundedZoom(cameraProjection()->mapZoom()),
                            _lastCheck.beyondBox};
    Nodes covered;
    for (const TileIndex& index : coveredTiles(levels, roundedZoom(_lastCheck.zoom), need)) {
        covered.push_back(_mapTiles[index.zoom].extract(index).mapped());
    }
    for (const auto& tile : covered) {
        tile->attachTo(nullptr);
    }
    trimImageCache();
}

} // namespace trelmix
