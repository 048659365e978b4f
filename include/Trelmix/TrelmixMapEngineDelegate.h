/// @file
/// How an application hears of the map.
#pragma once

#include <Trelmix/Platform/CLLocation.h>
#include <Trelmix/Platform/UIImage.h>

#include <cstdint>
#include <memory>

namespace trelmix {

class TrelmixMapEngineCamera;
class TrelmixMapMarker;
class TrelmixMapOverlay;
class TrelmixMapTileLayer;

/// Receiver of an engine's callbacks. Override what you need; the rest does nothing.
///
/// The engine does not own its delegate and forgets it when it is gone. All calls but the two for tiles come
/// on the main thread; inside them the application may do anything, also destroy the engine and its host. On
/// the drawing thread, where the tile calls may come, it may call what is allowed on any thread, and let go
/// of whatever it holds. What it throws is reported as a fault and goes no further.
class TRELMIX_API TrelmixMapEngineDelegate {
public:
    virtual ~TrelmixMapEngineDelegate();

    /// Before every camera change; true when a finger caused it.
    virtual void mapViewWillMoveFromGesture(bool fromGesture);
    /// The camera has come to rest; comes just before `mapViewIdleAtCamera`, with the same record.
    virtual void mapViewDidChangeCamera(const std::shared_ptr<TrelmixMapEngineCamera>& camera);
    /// The camera has come to rest, and the overlays have been updated for it.
    virtual void mapViewIdleAtCamera(const std::shared_ptr<TrelmixMapEngineCamera>& camera);

    /// A tap that hit no tappable overlay.
    virtual void mapViewDidTapAt(CLLocationCoordinate2D coordinate);
    /// A long press on no draggable marker, when the finger lifts.
    virtual void mapViewDidLongPressAt(CLLocationCoordinate2D coordinate);
    /// True: handled. False: the engine centres the map on the marker.
    virtual bool mapViewDidTapMarker(const std::shared_ptr<TrelmixMapMarker>& marker);
    /// A tap on a tappable overlay that is no marker.
    virtual void mapViewDidTapAtOverlay(const std::shared_ptr<TrelmixMapOverlay>& overlay);
    /// A long press has picked a draggable marker up; it has not moved yet.
    virtual void mapViewDidBeginDraggingMarker(const std::shared_ptr<TrelmixMapMarker>& marker);
    /// It has followed the finger; `presentedCoordinate` tells where to, `coordinate` stays as it was.
    virtual void mapViewDidDragMarker(const std::shared_ptr<TrelmixMapMarker>& marker);
    /// The finger has lifted, or the press was cancelled.
    virtual void mapViewDidEndDraggingMarker(const std::shared_ptr<TrelmixMapMarker>& marker);

    /// The image of a tile of a synchronous layer; empty when there is none. Comes on the thread that updates
    /// the overlays: the one that draws, or the main thread. Tile indices may lie outside the world.
    virtual std::shared_ptr<const UIImage> tileForX(std::int64_t x, std::int64_t y, std::int64_t zoom);
    /// An asynchronous layer needs a tile; answer with its `provideTileForX`, now or later. Threads as for
    /// `tileForX`.
    virtual void tileRequestedForX(std::int64_t x, std::int64_t y, std::int64_t zoom,
                                   const std::shared_ptr<TrelmixMapTileLayer>& layer);
};

} // namespace trelmix
