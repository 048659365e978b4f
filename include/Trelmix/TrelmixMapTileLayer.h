/// @file
/// A raster map made of square tiles.
#pragma once

#include <Trelmix/Platform/UIImage.h>
#include <Trelmix/Platform/URL.h>
#include <Trelmix/TrelmixMapOverlay.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace trelmix {

/// How the tiles stand that the last check of a layer found in view.
struct TileCounts {
    /// All of them, also those that are still on their way.
    std::size_t wanted = 0;
    /// With an image or without; all of them once nothing is on its way.
    std::size_t answered = 0;
    /// Answered without an image, as there is none: the delegate gave none, the server said so (status 204,
    /// 404 or 410), there is no such file, or the tile is beyond the world.
    std::size_t absent = 0;
    /// Answered without an image, as it could not be had: no connection, another status, no image, too late.
    std::size_t failed = 0;
    /// Why one of the failed ones has none, else why one of the absent ones, as words to put behind
    /// "failed: ": "connection refused", "status 401". Empty when nobody said.
    std::string reason;

    /// Of two layers together, with the first one's reason if it has one.
    TileCounts& operator+=(const TileCounts& other) {
        wanted += other.wanted;
        answered += other.answered;
        absent += other.absent;
        failed += other.failed;
        if (reason.empty()) {
            reason = other.reason;
        }
        return *this;
    }
    /// Whether all numbers and the reason are the same.
    friend bool operator==(const TileCounts&, const TileCounts&) = default;
};

/// A raster map on the usual 256-point tile grid. It asks for each tile that comes into view once: an
/// address (`imageUrlLayer`), or the engine's delegate, which answers at once (`synchronousLayer`) or later
/// (`provideTileForX`). Starts with the delegate, asynchronous, and zIndex 25.
///
/// Created by TrelmixMapEngineFactory; shared between the application and the scene it is shown in.
/// Main thread only, but for `provideTileForX`.
class TRELMIX_API TrelmixMapTileLayer : public TrelmixMapOverlay {
public:
    ~TrelmixMapTileLayer() override;

    /// True: images come from `TrelmixMapEngineDelegate::tileForX`, which every frame that needs one waits
    /// for. False, as at first: they are asked for by `tileRequestedForX` and answered by `provideTileForX`.
    virtual bool synchronousLayer() const = 0;
    /// Counts for tiles that are asked for afterwards.
    virtual void setSynchronousLayer(bool synchronous) = 0;

    /// Gives a tile's address; empty when it has none, and the tile then stays unanswered. Called without
    /// any lock, on the thread that draws or on the main thread, for tiles of the world only. What it
    /// throws is reported as a fault and counts as no address.
    using ImageUrlConstructor =
        std::function<std::optional<URL>(std::uint64_t x, std::uint64_t y, std::uint64_t zoom)>;

    /// True, with a constructor: images come from addresses, through the cache and the network connection
    /// that the process shares (`NetworkSettings.h`), and `provideTileForX` is ignored. An address is asked
    /// once; what fails within 10 s, or is no image, answers the tile with none (`tileCounts` tells why).
    /// Tiles beyond the world are answered with none. False unless set.
    virtual bool imageUrlLayer() const = 0;
    /// Counts for tiles that are asked for afterwards.
    virtual void setImageUrlLayer(bool isUrlLayer) = 0;
    /// Where the addresses come from; empty at first.
    virtual ImageUrlConstructor imageUrlConstructor() const = 0;
    /// Counts for tiles that are asked for afterwards; empty for none.
    virtual void setImageUrlConstructor(ImageUrlConstructor constructor) = 0;

    /// Bytes that answered images may take, levels of detail included; empty, as at the start, for no limit.
    /// Beyond it the least recently shown images of tiles that are not shown are forgotten, and asked for
    /// anew when they are needed again.
    virtual std::optional<std::size_t> imageCacheLimit() const = 0;
    /// Takes effect at once; empty for no limit.
    virtual void setImageCacheLimit(std::optional<std::size_t> bytes) = 0;

    /// Answers a tile: with its image, or with none when there is none. Answers for tiles that are no longer
    /// wanted are dropped; a second answer replaces the first. Any thread.
    virtual void provideTileForX(std::int64_t x, std::int64_t y, std::int64_t zoom,
                                 std::shared_ptr<const UIImage> image) = 0;

    /// How far the map is with the tiles in view, and what went wrong.
    virtual TileCounts tileCounts() const = 0;
};

} // namespace trelmix
