#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace trelmix {

/// A PNG file of premultiplied RGBA pixels, three channels when `isOpaque`, else four; empty when memory runs
/// out. Decoding it gives the same premultiplied pixels back. Made for speed rather than for the smallest
/// file. Any thread.
std::vector<std::byte> encodePng(int width, int height, std::span<const std::uint8_t> pixels, bool isOpaque);

} // namespace trelmix
