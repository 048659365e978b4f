/// @file
/// A raster map made of square tiles.
#pragma once

#include <Trelmix/Platform/UIImage.h>
#include <Trelmix/TrelmixMapOverlay.h>

namespace trelmix {

/// A raster map on the usual 256-point tile grid. It asks for each tile that comes into view once: the
/// engine's delegate, which answers at once (`synchronousLayer`) or later (`provideTile`). Starts
/// asynchronous, with zIndex 25.
///
/// Created by TrelmixMapEngineFactory; shared between the application and the scene it is shown in.
/// Main thread only, but for `provideTile`.
class TRELMIX_API TrelmixMapTileLayer : public TrelmixMapOverlay {
public:
    ~TrelmixMapTileLayer() override;

    /// True: images come from `TrelmixMapEngineDelegate::tileForX`, which every frame that needs one waits
    /// for. False: they are asked for by `tileRequestedForX` and answered by `provideTile`.
    virtual bool synchronousLayer() const = 0;
    virtual void setSynchronousLayer(bool synchronous) = 0;

    /// Answers a tile: with its image, or with none when there is none. Answers for tiles that are no longer
    /// wanted are dropped; a second answer replaces the first. Any thread.
    virtual void provideTile(std::int64_t x, std::int64_t y, std::int64_t zoom,
                             std::shared_ptr<const UIImage> image) = 0;

    /// Tiles that the last check found in view, and how many of them have been answered.
    virtual std::size_t wantedTileCount() const = 0;
    virtual std::size_t answeredTileCount() const = 0;
};

} // namespace trelmix
