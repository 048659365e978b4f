#pragma once

#include "Camera/CameraProjection.h"

#include <Trelmix/TileIndex.h>

#include <cstdint>
#include <vector>

namespace trelmix {

/// Columns and rows at one zoom: the lowest and the highest column, the lowest and the highest row. The first
/// two names do not follow the compass; the values do.
struct TileBox {
    std::int64_t eastMostTile = 1;
    std::int64_t westMostTile = 1;
    std::int64_t northMostTile = 1;
    std::int64_t southMostTile = 1;
};

/// What the view needs: a box of tiles, and the tiles beyond it.
struct TileNeed {
    /// The box with its margin, columns outside, then the others, those nearest the target first.
    std::vector<TileIndex> tiles;
    /// The tiles that the visible ground touches outside the box, in order of columns and rows.
    std::vector<TileIndex> beyondBox;
};

/// Whole zoom of a zoom's tiles: the nearest, halves away from zero.
std::int64_t roundedZoom(float zoom);

/// The box around the corners of the view, limited along each axis to twice the distance from the target to
/// the middle of the bottom edge, in tiles of the projection's rounded zoom. (1, 1, 1, 1) when the corners
/// have no finite place.
TileBox boundingBoxTiles(const CameraProjection& projection);

/// Every tile that the view needs at `zoom` (public): the bounding box with a margin of one tile, completed
/// by each tile that the visible ground touches within reach. At most `kMostTiles`, those nearest the target;
/// none for zooms outside the grid.
///
/// The source is longer than others: the ground in reach, its extent in each column and the search over both
/// limits are one computation.
TileNeed tilesInView(const CameraProjection& projection, float zoom);

/// Tiles of one zoom, sorted so that those on ground that the view shows come first, and those nearest the
/// target first among both.
std::vector<TileIndex> viewFirst(const CameraProjection& projection, std::vector<TileIndex> tiles);

/// Several times what a usual view needs; only a view squeezed to a sliver sees more ground.
inline constexpr std::size_t kMostTiles = 512;

} // namespace trelmix
