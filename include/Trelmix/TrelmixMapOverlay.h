/// @file
/// What every overlay has in common.
#pragma once

#include <Trelmix/Export.h>

#include <any>
#include <cstdint>
#include <memory>
#include <string>

namespace trelmix {

class TrelmixMapEngine;

/// Something the application puts on a map: a marker, a circle, a polygon, a polyline, a level plan or a tile
/// layer.
///
/// Created by TrelmixMapEngineFactory; shared between the application and the scene it is shown in, so it
/// stays on the map when the application lets it go. Main thread only.
class TRELMIX_API TrelmixMapOverlay {
public:
    virtual ~TrelmixMapOverlay();

    /// The engine the overlay is shown in; the overlay does not own it. Empty once the engine is gone.
    virtual std::shared_ptr<TrelmixMapEngine> map() const = 0;
    /// Shows the overlay in an engine, or with none takes it off the map and clears its user data. The first
    /// overlay of an engine that was not initialised chooses its first camera. Engines of a foreign kind are
    /// only remembered.
    virtual void setMap(std::shared_ptr<TrelmixMapEngine> map) = 0;

    /// Whatever the application likes; copied, never looked at.
    virtual std::any userInfo() const = 0;
    /// Replaces it; taking the overlay off the map clears it.
    virtual void setUserInfo(std::any info) = 0;

    /// Drawing order among overlays, higher on top; overlays of one index in the order in which they came
    /// onto the map. A tile layer's has no effect: a tile's index is its zoom.
    virtual std::int64_t zIndex() const = 0;
    /// Takes effect with the next frame.
    virtual void setZIndex(std::int64_t zIndex) = 0;

    /// Whether it is drawn; hidden overlays are not hit by taps either.
    virtual bool visible() const = 0;
    /// Takes effect with the next frame.
    virtual void setVisible(bool visible) = 0;

    /// 0 (invisible) to 1; 1 unless set.
    virtual double opacity() const = 0;
    /// Limited to 0 to 1; NaN is ignored.
    virtual void setOpacity(double opacity) = 0;

    /// Whether taps on the overlay are reported.
    virtual bool tappable() const = 0;
    /// Counts from the next tap.
    virtual void setTappable(bool tappable) = 0;

    /// The kind of overlay and where it is, for logs.
    virtual std::string description() const = 0;
};

} // namespace trelmix
