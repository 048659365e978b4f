#pragma once

#include <Trelmix/Platform/Result.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace trelmix {

/// Pixels as a file gave them: premultiplied RGBA, rows from the top.
struct DecodedImage {
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> pixels;
};

/// Decodes a PNG, JPEG or WebP file, told apart by its first bytes. Colour profiles, gamma and the camera's
/// orientation note are ignored; of 16 bits a channel the upper 8 count. What is damaged, cut short, animated
/// or larger than `UIImage::kMaximumPixelCount` is refused. Any thread.
///
/// Its source is longer than others, as each of the three libraries lets something else through that has to
/// be refused.
Result<DecodedImage> decodeImage(std::span<const std::byte> data);

/// True when the size lies within what one image may have.
bool isImageSizeAllowed(std::int64_t width, std::int64_t height);

/// Multiplies the colours by alpha, rounded to the nearest.
void premultiply(std::span<std::uint8_t> rgba);

} // namespace trelmix
