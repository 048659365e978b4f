/// Small image files made on the spot by the libraries' own encoders.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace trelmix {

using FileBytes = std::vector<std::byte>;

struct PngSpec {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::uint8_t bitDepth = 8;
    std::uint8_t colorType = 6;
    bool isInterlaced = false;
    /// RGBA entries.
    std::vector<std::uint32_t> palette = {};
    std::optional<std::uint8_t> transparentGrey = {};
    bool hasGamma = false;
};

/// @param samples as the file format lays them out, 16-bit samples in the machine's order.
FileBytes pngFile(const PngSpec& spec, const std::vector<std::uint8_t>& samples);
/// Whose details come in several passes.
FileBytes progressiveJpegFile(int width, int height, const std::vector<std::uint8_t>& rgb);
/// Cyan, magenta, yellow and black, each as what it leaves of the light.
FileBytes inkJpegFile(int width, int height, const std::vector<std::uint8_t>& cmyk);

} // namespace trelmix
