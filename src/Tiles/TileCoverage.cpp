#include "Tiles/TileCoverage.h"

#include <algorithm>
#include <cmath>

namespace trelmix {

namespace {

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
    bool contains(const TileIndex& tile) const {
        return columns.contains(static_cast<double>(tile.x)) && rows.contains(static_cast<double>(tile.y));
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
Area descendants(const TileIndex& tile, std::int64_t zoom) {
    const double f = std::exp2(static_cast<double>(zoom - tile.zoom));
    if (zoom >= tile.zoom) {
        return {{static_cast<double>(tile.x) * f, (static_cast<double>(tile.x) + 1.0) * f - 1.0},
                {static_cast<double>(tile.y) * f, (static_cast<double>(tile.y) + 1.0) * f - 1.0}};
    }
    const double x = std::floor(static_cast<double>(tile.x) * f);
    const double y = std::floor(static_cast<double>(tile.y) * f);
    return {{x, x}, {y, y}};
}

Area boxAt(const CoverageNeed& need, std::int64_t zoom) {
    const double g = std::exp2(static_cast<double>(zoom - need.boxZoom));
    return {scaled(need.box.eastMostTile, need.box.westMostTile, g),
            scaled(need.box.northMostTile, need.box.southMostTile, g)};
}

/// Counts the tiles of `zoom` that are needed inside `area`, and tells which they are.
double countNeeded(const CoverageNeed& need, const Area& area, std::int64_t zoom, std::vector<Area>& parts) {
    const Area inBox = boxAt(need, zoom);
    parts.push_back(area.intersected(inBox));
    double count = parts.front().count();
    for (const TileIndex& tile : need.beyondBox) {
        const Area part = descendants(tile, zoom).intersected(area);
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

bool isCoveredBy(const std::map<TileIndex, TileState>& tiles, std::int64_t level, const TileIndex& tile,
                 const CoverageNeed& need) {
    if (tile.zoom > level) {
        const std::int64_t up = tile.zoom - level;
        const auto parent = tiles.find({tile.x >> up, tile.y >> up, level});
        return parent != tiles.end() && parent->second.isAnswered;
    }
    const Area area = descendants(tile, level);
    std::vector<Area> parts;
    const double needed = countNeeded(need, area, level, parts);
    double matched = 0;
    bool hasImage = false;
    for (const auto& [index, state] : tiles) {
        const bool isNeeded = std::any_of(
            parts.begin(), parts.end(), [&index = index](const Area& part) { return part.contains(index); });
        if (isNeeded && state.isAnswered) {
            matched += 1;
            hasImage = hasImage || state.hasImage;
        }
    }
    return needed > 0 && matched >= needed && hasImage;
}

bool isCovered(const TileLevels& levels, std::int64_t current, const TileIndex& tile,
               const CoverageNeed& need) {
    const auto now = levels.find(current);
    if (now != levels.end() && isCoveredBy(now->second, current, tile, need)) {
        return true;
    }
    // While the current zoom is the finest, nothing but its own tiles takes others away.
    return levels.rbegin()->first != current &&
           std::any_of(levels.upper_bound(tile.zoom), levels.end(),
                       [&](const auto& level) { return isCoveredBy(level.second, level.first, tile, need); });
}

} // namespace

std::vector<TileIndex> coveredTiles(const TileLevels& levels, std::int64_t current,
                                    const CoverageNeed& need) {
    std::vector<TileIndex> covered;
    for (const auto& [zoom, tiles] : levels) {
        for (const auto& [tile, state] : tiles) {
            if (zoom != current && isCovered(levels, current, tile, need)) {
                covered.push_back(tile);
            }
        }
    }
    return covered;
}

} // namespace trelmix
