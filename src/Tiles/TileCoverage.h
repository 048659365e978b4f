#pragma once

#include "Tiles/TileGround.h"

#include <cstdint>
#include <map>
#include <vector>

namespace trelmix {

/// How far a tile is that a layer shows.
struct TileState {
    /// The question for its image has been answered, with an image or with none.
    bool isAnswered = false;
    bool hasImage = false;
};

/// The tiles of a layer, by whole zoom; a zoom may be there without tiles.
using TileLevels = std::map<std::int64_t, std::map<TileIndex, TileState>>;

/// What the view needs: tiles that a covered one may not lack.
struct CoverageNeed {
    /// The tiles around the view's corners, at their zoom.
    TileBox box;
    std::int64_t boxZoom = 0;
    /// Those that its ground touches outside the box.
    std::vector<TileIndex> beyondBox;
};

/// The tiles of other zooms than the current one that may go, as answered ones cover their ground: the tile
/// of the current zoom that holds them, or all those that the view needs of the tiles of a finer zoom on
/// them, one with an image at least.
std::vector<TileIndex> coveredTiles(const TileLevels& levels, std::int64_t current, const CoverageNeed& need);

} // namespace trelmix
