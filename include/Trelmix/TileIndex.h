/// @file
/// Names for the squares of a raster map.
#pragma once

#include <compare>
#include <cstdint>

namespace trelmix {

/// A tile of the usual grid: at zoom z the world is 2^z tiles wide and as many high.
struct TileIndex {
    /// Column, eastward from longitude -180 degrees.
    std::int64_t x = 0;
    /// Row, southward from the northern edge.
    std::int64_t y = 0;
    /// Whole zoom.
    std::int64_t zoom = 0;
    /// By column, row and zoom, for keys of maps and sets.
    friend auto operator<=>(const TileIndex&, const TileIndex&) = default; // NOLINT(modernize-use-nullptr)
};

/// Whether the world has such a tile: a zoom from 0 to 62, a column and a row from 0 to 2^zoom - 1.
inline bool isInWorld(const TileIndex& tile) {
    constexpr std::int64_t kDeepestCountable = 62;
    if (tile.zoom < 0 || tile.zoom > kDeepestCountable) {
        return false;
    }
    const std::int64_t side = std::int64_t{1} << tile.zoom;
    return tile.x >= 0 && tile.x < side && tile.y >= 0 && tile.y < side;
}

} // namespace trelmix
