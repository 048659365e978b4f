#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace trelmix {

/// The next level of detail of premultiplied RGBA pixels: max(1, size / 2) pixels a side, each the mean of
/// exactly the area that it covers, rounded to the nearest. Where a size is odd the areas share the pixels on
/// their border.
std::vector<std::uint8_t> halvedLevel(int width, int height, std::span<const std::uint8_t> pixels);

} // namespace trelmix
