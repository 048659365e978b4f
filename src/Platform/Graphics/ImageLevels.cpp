#include "Platform/Graphics/ImageLevels.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace trelmix {
namespace {

/// The source pixels along one axis that one target pixel covers, with the part of each in units of 1 /
/// `total`.
struct Taps {
    std::size_t first = 0;
    int count = 1;
    std::array<std::uint64_t, 3> weights{1, 0, 0};
    std::uint64_t total = 1;
};

Taps tapsOf(std::size_t target, std::size_t sourceSize) {
    if (sourceSize == 1) {
        return {};
    }
    if (sourceSize % 2 == 0) {
        return {2 * target, 2, {1, 1, 0}, 2};
    }
    // 2h + 1 pixels become h: each covers 2 + 1/h of them, from target * (2 + 1/h) on.
    const std::uint64_t half = sourceSize / 2;
    return {2 * target, 3, {half - target, half, target + 1}, 2 * half + 1};
}

void halveEvenRow(const std::uint8_t* upper, const std::uint8_t* lower, std::uint8_t* target,
                  std::size_t width) {
    for (std::size_t x = 0; x < width; ++x, upper += 8, lower += 8, target += 4) {
        for (std::size_t c = 0; c < 4; ++c) {
            target[c] =
                static_cast<std::uint8_t>((upper[c] + upper[c + 4] + lower[c] + lower[c + 4] + 2) >> 2);
        }
    }
}

void averageRow(const std::uint8_t* source, std::size_t sourceWidth, const Taps& rows, std::uint8_t* target,
                std::size_t targetWidth) {
    for (std::size_t x = 0; x < targetWidth; ++x, target += 4) {
        const Taps columns = tapsOf(x, sourceWidth);
        const std::uint64_t total = rows.total * columns.total;
        for (std::size_t c = 0; c < 4; ++c) {
            std::uint64_t sum = total / 2;
            for (int i = 0; i < rows.count; ++i) {
                const std::uint8_t* row = source + static_cast<std::size_t>(i) * sourceWidth * 4;
                for (int j = 0; j < columns.count; ++j) {
                    const std::size_t at = (columns.first + static_cast<std::size_t>(j)) * 4 + c;
                    sum += rows.weights[static_cast<std::size_t>(i)] *
                           columns.weights[static_cast<std::size_t>(j)] * row[at];
                }
            }
            target[c] = static_cast<std::uint8_t>(sum / total);
        }
    }
}

} // namespace

std::vector<std::uint8_t> halvedLevel(int width, int height, std::span<const std::uint8_t> pixels) {
    const auto sourceWidth = static_cast<std::size_t>(width);
    const auto sourceHeight = static_cast<std::size_t>(height);
    const std::size_t targetWidth = std::max<std::size_t>(sourceWidth / 2, 1);
    const std::size_t targetHeight = std::max<std::size_t>(sourceHeight / 2, 1);
    const std::size_t stride = sourceWidth * 4;
    const bool isEven = sourceWidth % 2 == 0 && sourceHeight % 2 == 0;
    std::vector<std::uint8_t> level(targetWidth * targetHeight * 4);
    for (std::size_t y = 0; y < targetHeight; ++y) {
        const Taps rows = tapsOf(y, sourceHeight);
        const std::uint8_t* source = pixels.data() + rows.first * stride;
        std::uint8_t* target = level.data() + y * targetWidth * 4;
        if (isEven) {
            halveEvenRow(source, source + stride, target, targetWidth);
        } else {
            averageRow(source, sourceWidth, rows, target, targetWidth);
        }
    }
    return level;
}

} // namespace trelmix
