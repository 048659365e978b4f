#pragma once

#include <Trelmix/Platform/UIImage.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace trelmix {

/// An opaque picture whose pixel (x, y) has the colour `color(x, y)`: {red, green, blue}, 0 to 255.
template <class Color>
std::shared_ptr<const UIImage> painted(int width, int height, const Color& color) {
    std::vector<std::uint8_t> pixels;
    pixels.reserve(4 * static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            for (const auto channel : color(x, y)) {
                pixels.push_back(static_cast<std::uint8_t>(channel));
            }
            pixels.push_back(255);
        }
    }
    return UIImage::withPixels(width, height, std::move(pixels));
}

/// A picture of one colour, premultiplied.
inline std::shared_ptr<const UIImage> plainImage(int width, int height,
                                                 std::array<std::uint8_t, 4> color = {255, 255, 255, 255}) {
    std::vector<std::uint8_t> pixels;
    for (int i = 0; i < width * height; ++i) {
        pixels.insert(pixels.end(), color.begin(), color.end());
    }
    return UIImage::withPixels(width, height, std::move(pixels));
}

/// The same, opaque.
template <class Channel>
std::shared_ptr<const UIImage> plainImage(int width, int height, const std::array<Channel, 3>& color) {
    return painted(width, height, [&](int, int) { return color; });
}

/// Red, green, blue and alpha.
inline std::array<int, 4> pixelAt(const UIImage& image, int x, int y) {
    const auto at = image.pixels().subspan(static_cast<std::size_t>(y * image.pixelWidth() + x) * 4, 4);
    return {at[0], at[1], at[2], at[3]};
}

/// Red, green and blue.
inline std::array<int, 3> colorAt(const UIImage& image, int x, int y) {
    const auto pixel = pixelAt(image, x, y);
    return {pixel[0], pixel[1], pixel[2]};
}

inline int pixelsOtherThan(std::array<int, 4> color, const UIImage& image) {
    int count = 0;
    for (int i = 0; i < image.pixelWidth() * image.pixelHeight(); ++i) {
        count += pixelAt(image, i % image.pixelWidth(), i / image.pixelWidth()) != color;
    }
    return count;
}

/// Of two values at one place; 256 where there are more of the one.
inline int largestDifference(std::span<const std::uint8_t> a, std::span<const std::uint8_t> b) {
    int largest = a.size() == b.size() ? 0 : 256;
    for (std::size_t i = 0; largest < 256 && i < a.size(); ++i) {
        largest = std::max(largest, std::abs(a[i] - b[i]));
    }
    return largest;
}

/// Nothing when these are not a picture's bytes.
inline std::shared_ptr<const UIImage> decoded(const std::string& bytes) {
    return UIImage::withData(std::as_bytes(std::span(bytes)));
}

} // namespace trelmix
