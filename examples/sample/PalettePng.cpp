#include "PalettePng.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <spng.h>
#include <unordered_map>

namespace trelmix::sample {

namespace {

using Colour = std::uint32_t;
constexpr std::size_t kExactColours = 150;
constexpr std::size_t kColours = 256;

int part(Colour colour, int shift) {
    return static_cast<int>((colour >> shift) & 0xFF);
}

int distance(Colour a, Colour b) {
    const int r = part(a, 16) - part(b, 16);
    const int g = part(a, 8) - part(b, 8);
    const int blue = part(a, 0) - part(b, 0);
    return 2 * r * r + 3 * g * g + blue * blue;
}

struct Count {
    Colour colour;
    int count;
};

/// Commonest first; equal counts by colour, so that the file is the same on every machine.
void sortByCount(std::vector<Count>& counts) {
    std::sort(counts.begin(), counts.end(), [](const Count& a, const Count& b) {
        return a.count != b.count ? a.count > b.count : a.colour < b.colour;
    });
}

std::vector<Count> histogram(TilePixels pixels) {
    std::vector<Colour> sorted(pixels.begin(), pixels.end());
    std::sort(sorted.begin(), sorted.end());
    std::vector<Count> counts;
    for (const Colour colour : sorted) {
        if (counts.empty() || counts.back().colour != colour) {
            counts.push_back({colour, 0});
        }
        ++counts.back().count;
    }
    sortByCount(counts);
    return counts;
}

/// The common colours as they are, then the fullest cells of a coarse colour cube for the rest.
std::vector<Colour> choosePalette(const std::vector<Count>& counts) {
    std::vector<Colour> palette;
    const bool fits = counts.size() <= kColours;
    const std::size_t exact = fits ? counts.size() : kExactColours;
    for (std::size_t i = 0; i < exact; ++i) {
        palette.push_back(counts[i].colour);
    }
    if (fits) {
        return palette;
    }
    constexpr Colour kCell = 0xF0F0F0;
    std::vector<Count> cells;
    std::unordered_map<Colour, std::size_t> cellOf;
    for (std::size_t i = exact; i < counts.size(); ++i) {
        const Colour key = counts[i].colour & kCell;
        const auto [place, isNew] = cellOf.try_emplace(key, cells.size());
        // The first colour of a cell is its commonest and stands for it.
        if (isNew) {
            cells.push_back({counts[i].colour, 0});
        }
        cells[place->second].count += counts[i].count;
    }
    sortByCount(cells);
    for (std::size_t i = 0; i < cells.size() && palette.size() < kColours; ++i) {
        palette.push_back(cells[i].colour);
    }
    return palette;
}

std::vector<std::byte> encode(spng_plte& palette, const std::vector<std::uint8_t>& indices) {
    const std::unique_ptr<spng_ctx, decltype(&spng_ctx_free)> context(spng_ctx_new(SPNG_CTX_ENCODER),
                                                                      &spng_ctx_free);
    if (!context) {
        return {};
    }
    spng_ihdr header{};
    header.width = kTileSize;
    header.height = kTileSize;
    header.bit_depth = 8;
    header.color_type = SPNG_COLOR_TYPE_INDEXED;
    spng_set_option(context.get(), SPNG_ENCODE_TO_BUFFER, 1);
    spng_set_option(context.get(), SPNG_IMG_COMPRESSION_LEVEL, 6);
    spng_set_option(context.get(), SPNG_FILTER_CHOICE, SPNG_DISABLE_FILTERING);
    if (spng_set_ihdr(context.get(), &header) != 0 || spng_set_plte(context.get(), &palette) != 0 ||
        spng_encode_image(context.get(), indices.data(), indices.size(), SPNG_FMT_PNG,
                          SPNG_ENCODE_FINALIZE) != 0) {
        return {};
    }
    std::size_t length = 0;
    int error = 0;
    const std::unique_ptr<void, decltype(&std::free)> png(spng_get_png_buffer(context.get(), &length, &error),
                                                          &std::free);
    if (!png || error != 0) {
        return {};
    }
    std::vector<std::byte> bytes(length);
    std::memcpy(bytes.data(), png.get(), length);
    return bytes;
}

} // namespace

std::vector<std::byte> palettePng(TilePixels pixels) {
    const std::vector<Count> counts = histogram(pixels);
    const std::vector<Colour> palette = choosePalette(counts);
    spng_plte colours{};
    colours.n_entries = static_cast<std::uint32_t>(palette.size());
    for (std::size_t i = 0; i < palette.size(); ++i) {
        colours.entries[i] = {static_cast<std::uint8_t>(part(palette[i], 16)),
                              static_cast<std::uint8_t>(part(palette[i], 8)),
                              static_cast<std::uint8_t>(part(palette[i], 0)), 0};
    }
    std::unordered_map<Colour, std::uint8_t> indexOf;
    for (const Count& count : counts) {
        const auto nearest = std::min_element(palette.begin(), palette.end(), [&](Colour a, Colour b) {
            return distance(a, count.colour) < distance(b, count.colour);
        });
        indexOf[count.colour] = static_cast<std::uint8_t>(nearest - palette.begin());
    }
    std::vector<std::uint8_t> indices(pixels.size());
    for (std::size_t i = 0; i < pixels.size(); ++i) {
        indices[i] = i > 0 && pixels[i] == pixels[i - 1] ? indices[i - 1] : indexOf[pixels[i]];
    }
    return encode(colours, indices);
}

} // namespace trelmix::sample
