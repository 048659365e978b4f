#pragma once

#include <Trelmix/Platform/CLLocation.h>
#include <Trelmix/Platform/Result.h>
#include <Trelmix/TileIndex.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace trelmix::apps {

/// The deepest zoom at which indices are still counted.
inline constexpr std::int64_t kDeepestTileZoom = 30;
/// Larger tile files are taken for damaged.
inline constexpr std::uint64_t kMaximumTileBytes = 32ULL << 20U;

/// The text with the tile's numbers in place of {z}, {x} and {y}.
std::string filledTemplate(std::string_view text, const TileIndex& tile);

/// The corners of a rectangle on the map, degrees.
struct TileBounds {
    CLLocationCoordinate2D southWest;
    CLLocationCoordinate2D northEast;
};

/// What the tiles of one zoom from (west, north) to (east, south), both included, cover.
TileBounds boundsOfTiles(std::int64_t zoom, std::int64_t west, std::int64_t north, std::int64_t east,
                         std::int64_t south);

using TileBytes = std::vector<std::byte>;

/// Where encoded tiles lie. All operations may come from any thread.
class TileStore {
public:
    virtual ~TileStore() = default;
    /// The file of that tile of the world; no value when the store has none, a failure when it cannot be
    /// read.
    virtual Result<std::optional<TileBytes>> tile(const TileIndex& tile) const = 0;
    /// What the store covers; empty when it does not know. May look through many files.
    virtual std::optional<TileBounds> bounds() const = 0;
    /// No tile is there at lower zooms, as far as the store knows.
    virtual std::int64_t lowestZoom() const { return 0; }
    /// Where the tiles come from, for showing in the picture; may hold HTML. Empty when the store does not
    /// say.
    virtual std::string attribution() const = 0;
    /// For messages.
    virtual const std::string& name() const = 0;
};

} // namespace trelmix::apps
