/// @file
/// Small PNG files of map tiles.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace trelmix::sample {

/// 256 x 256 pixels, rows from the top, as 0x00RRGGBB.
inline constexpr int kTileSize = 256;
using TilePixels = std::span<const std::uint32_t>;

/// With a palette of at most 256 colours. The commonest colours keep their exact value, so flat ground never
/// changes its shade from tile to tile; the blends along edges take the nearest. Empty when memory runs out.
std::vector<std::byte> palettePng(TilePixels pixels);

} // namespace trelmix::sample
