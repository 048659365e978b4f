#include "common/tiles/TileStore.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace trelmix::apps {

namespace {

double latitudeOfRow(double row, double tilesAcross) {
    const double mercator = std::numbers::pi * (1 - 2 * row / tilesAcross);
    return std::atan(std::sinh(mercator)) * 180 / std::numbers::pi;
}

} // namespace

std::string filledTemplate(std::string_view text, const TileIndex& tile) {
    std::string filled;
    for (std::size_t i = 0; i < text.size();) {
        const std::string_view rest = text.substr(i, 3);
        if (rest == "{z}" || rest == "{x}" || rest == "{y}") {
            filled += std::to_string(rest[1] == 'z' ? tile.zoom : rest[1] == 'x' ? tile.x : tile.y);
            i += 3;
        } else {
            filled += text[i++];
        }
    }
    return filled;
}

TileBounds boundsOfTiles(std::int64_t zoom, std::int64_t west, std::int64_t north, std::int64_t east,
                         std::int64_t south) {
    const double across = std::exp2(static_cast<double>(zoom));
    const auto longitude = [&](double column) { return column / across * 360 - 180; };
    return {{latitudeOfRow(static_cast<double>(south) + 1, across), longitude(static_cast<double>(west))},
            {latitudeOfRow(static_cast<double>(north), across), longitude(static_cast<double>(east) + 1)}};
}

} // namespace trelmix::apps
