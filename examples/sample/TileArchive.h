/// @file
/// Writes tiles as an MBTiles archive.
#pragma once

#include "TilePyramid.h"

#include <string>
#include <vector>

namespace trelmix::sample {

/// Writes an archive anew. Empty when it went well, else what is wrong.
std::string writeArchive(const std::string& path, const std::string& name,
                         const std::vector<TileRange>& ranges, const std::vector<Tile>& tiles);

} // namespace trelmix::sample
