// How tiles of other zooms go once the current ones cover the same ground.

#include "Platform/Foundation/Thread.h"
#include "Tiles/MapTileNode.h"

#include <algorithm>
#include <cmath>

namespace trelmix {

namespace {

/// Seconds from the first image that arrives to the clean-up; images arriving meanwhile do not postpone it.
constexpr double kCleanupDelay = 1.0;

struct Span {
    double first;
    double last;
    bool contains(double i) const { return i >= first && i <= last; }
    Span intersected(Span other) const { return {std::max(first, other.first), std::min(last, other.last)}; }
    double count() const { return last >= first ? last - first + 1.0 : 0.0; }
};

/// Columns and rows as doubles: exact far beyond every index, and free of overflow.
struct Area {
    Span columns;
    Span rows;
    bool contains(const TileKey& key) const {
        return columns.contains(static_cast<double>(key.x)) && rows.contains(static_cast<double>(key.y));
    }
    Area intersected(const Area& other) const {
        return {columns.intersected(other.columns), rows.intersected(other.rows)};
    }
    double count() const { return columns.count() * rows.count(); }
};

Span scaled(std::int64_t first, std::int64_t last, double factor) {
    return {std::trunc(static_cast<double>(first) * factor), std::trunc(static_cast<double>(last) * factor)};
}

/// The tiles of a finer zoom that make up a tile, or the tile of a coarser one that holds it.
Area descendants(const TileKey& key, std::int64_t zoom) {
    const double f = std::exp2(static_cast<double>(zoom - key.zoom));
    if (zoom >= key.zoom) {
        return {{static_cast<double>(key.x) * f, (static_cast<double>(key.x) + 1.0) * f - 1.0},
                {static_cast<double>(key.y) * f, (static_cast<double>(key.y) + 1.0) * f - 1.0}};
    }
    const double x = std::floor(static_cast<double>(key.x) * f);
    const double y = std::floor(static_cast<double>(key.y) * f);
    return {{x, x}, {y, y}};
}

} // namespace

/// Which tiles a covered one may not lack: those in the view's box, and those that its ground touches beyond
/// it.
struct MapTileNode::CoverageNeed {
    TileBox box;
    std::int64_t boxZoom = 0;
    const std::vector<TileKey>& beyondBox;

    Area boxAt(std::int64_t zoom) const {
        const double g = std::exp2(static_cast<double>(zoom - boxZoom));
        return {scaled(box.eastMostTile, box.westMostTile, g),
                scaled(box.northMostTile, box.southMostTile, g)};
    }

    /// Counts the tiles of `zoom` that are needed inside `area`, and tells which they are.
    double countIn(const Area& area, std::int64_t zoom, std::vector<Area>& parts) const {
        const Area inBox = boxAt(zoom);
        parts.push_back(area.intersected(inBox));
        double count = parts.front().count();
        for (const TileKey& key : beyondBox) {
            const Area part = descendants(key, zoom).intersected(area);
            const bool isNew = part.count() > 0 && part.intersected(inBox).count() < part.count() &&
                               std::none_of(parts.begin() + 1, parts.end(), [&part](const Area& other) {
                                   return other.intersected(part).count() > 0;
                               });
            if (isNew) {
                count += part.count() - part.intersected(inBox).count();
                parts.push_back(part);
            }
        }
        return count;
    }
};

void MapTileNode::restartTileCleanupTimer() {
    if ((_tileCleanupTimer && _tileCleanupTimer->isValid()) || _startedCleanupTimer) {
        return;
    }
    _startedCleanupTimer = true;
    if (Thread::isMainThread()) {
        scheduleTileCleanup();
        return;
    }
    DispatchQueue::main().async([weak = std::weak_ptr(self()), generation = _generation] {
        const SceneLock lock;
        const auto layer = weak.lock();
        if (layer && layer->_generation == generation) {
            layer->scheduleTileCleanup();
        }
    });
}

void MapTileNode::scheduleTileCleanup() {
    if (_tileCleanupTimer) {
        _tileCleanupTimer->invalidate();
    }
    _tileCleanupTimer = Timer::scheduledTimer(kCleanupDelay, false, [weak = std::weak_ptr(self())] {
        if (const auto layer = weak.lock()) {
            layer->checkTilesAtOtherZoomLevels();
        }
    });
}

void MapTileNode::checkTilesAtOtherZoomLevels() {
    const SceneLock lock;
    const auto keep = self();
    _startedCleanupTimer = false;
    if (_tileCleanupTimer) {
        _tileCleanupTimer->invalidate();
        _tileCleanupTimer = nullptr;
    }
    if (!cameraProjection()) {
        return;
    }
    const std::int64_t current = roundedZoom(_lastTileCheckZoom);
    const CoverageNeed need{boundingBoxTiles(*cameraProjection()), roundedZoom(cameraProjection()->mapZoom()),
                            _lastTilesBeyondBox};
    std::vector<std::int64_t> levels;
    for (const auto& [zoom, tiles] : _mapTiles) {
        levels.push_back(zoom);
    }
    TileList covered;
    for (const std::int64_t zoom : levels) {
        if (zoom == current) {
            continue;
        }
        TileList& tiles = _mapTiles[zoom];
        const auto firstCovered = std::stable_partition(tiles.begin(), tiles.end(), [&](const auto& tile) {
            return !isCoveredByLevels(*tile, levels, current, need);
        });
        covered.insert(covered.end(), firstCovered, tiles.end());
        tiles.erase(firstCovered, tiles.end());
    }
    for (const auto& tile : covered) {
        tile->attachTo(nullptr);
    }
    trimImageCache();
}

bool MapTileNode::isCoveredByLevels(const SingleMapTileNode& node, const std::vector<std::int64_t>& levels,
                                    std::int64_t current, const CoverageNeed& need) const {
    if (isCoveredByTiles(node, current, need)) {
        return true;
    }
    const std::int64_t finest = levels.back();
    if (finest <= node.key().zoom || finest == current) {
        return false;
    }
    return std::any_of(levels.begin(), levels.end(), [&](std::int64_t level) {
        return level > node.key().zoom && isCoveredByTiles(node, level, need);
    });
}

bool MapTileNode::isCoveredByTiles(const SingleMapTileNode& node, std::int64_t level,
                                   const CoverageNeed& need) const {
    const auto found = _mapTiles.find(level);
    if (found == _mapTiles.end() || found->second.empty() || level == node.key().zoom) {
        return false;
    }
    const Area area = descendants(node.key(), level);
    if (node.key().zoom > level) {
        const auto parent = std::find_if(found->second.begin(), found->second.end(),
                                         [&area](const auto& tile) { return area.contains(tile->key()); });
        return parent != found->second.end() && (*parent)->finishedLoading();
    }
    std::vector<Area> parts;
    const double needed = need.countIn(area, level, parts);
    double matched = 0;
    bool hasImage = false;
    for (const auto& tile : found->second) {
        const bool isNeeded = std::any_of(parts.begin(), parts.end(),
                                          [&tile](const Area& part) { return part.contains(tile->key()); });
        if (isNeeded && tile->finishedLoading()) {
            matched += 1;
            hasImage = hasImage || tile->tileImage() != nullptr;
        }
    }
    return needed > 0 && matched >= needed && hasImage;
}

} // namespace trelmix
