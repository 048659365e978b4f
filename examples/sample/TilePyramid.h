/// @file
/// Cuts the town into tiles.
#pragma once

#include "GroundFrame.h"
#include "PalettePng.h"
#include "TownModel.h"

#include <functional>
#include <vector>

namespace trelmix::sample {

/// Tiles of one zoom level: columns from the west, rows from the north, both ends included.
struct TileRange {
    int zoom;
    int left;
    int top;
    int right;
    int bottom;

    int count() const { return (right - left + 1) * (bottom - top + 1); }
    /// The whole tiles that a rectangle around the centre touches; half sizes in metres.
    static TileRange around(int zoom, double halfWidth, double halfHeight);
};

struct Tile {
    int zoom;
    int column;
    int row; ///< from the north
    std::vector<std::byte> png;
};

/// The tiles of all zoom levels of the town, 15 to 19; `threads` of them at work.
std::vector<Tile> paintTown(const TownModel& model, int threads);
std::vector<TileRange> townRanges();

} // namespace trelmix::sample
