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

/// A JPEG file of the same pixels over white, four pixels sharing a colour; empty when memory runs out or a
/// side has more than 65500 pixels. Any thread.
/// @param quality 1 to 100.
std::vector<std::byte> encodeJpeg(int width, int height, std::span<const std::uint8_t> pixels, int quality);

/// A lossy WebP file, with an alpha channel unless `isOpaque`; empty when memory runs out or a side has more
/// than 16383 pixels. Any thread.
/// @param quality 1 to 100.
std::vector<std::byte> encodeWebp(int width, int height, std::span<const std::uint8_t> pixels, bool isOpaque,
                                  int quality);

} // namespace trelmix
