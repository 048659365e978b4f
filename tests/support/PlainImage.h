#pragma once

#include <Trelmix/Platform/UIImage.h>

#include <array>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

namespace trelmix {

/// A picture of one colour, premultiplied.
inline std::shared_ptr<const UIImage> plainImage(int width, int height,
                                                 std::array<std::uint8_t, 4> color = {255, 255, 255, 255}) {
    std::vector<std::uint8_t> pixels;
    for (int i = 0; i < width * height; ++i) {
        pixels.insert(pixels.end(), color.begin(), color.end());
    }
    return UIImage::withPixels(width, height, std::move(pixels));
}

} // namespace trelmix
