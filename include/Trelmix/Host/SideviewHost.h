/// @file
/// Runs a side view without a platform below it.
#pragma once

#include <Trelmix/Platform/CGGeometry.h>
#include <Trelmix/Platform/Result.h>
#include <Trelmix/Platform/UIImage.h>
#include <Trelmix/TMXSideviewScrollView.h>

#include <cstdint>
#include <memory>

namespace trelmix {

/// Gives a side view its size, brings it touches and composes it into a picture.
///
/// The side view must lie in no other view. Long presses need the main run loop to be pumped: by the engine's
/// host, or by whoever pumps it. Main thread only; keeps the side view alive.
class TRELMIX_API SideviewHost {
public:
    /// What a finger did.
    enum class Phase { began, moved, ended, cancelled };

    /// Sizes in points, `scale` pixels per point. Make it before the side view is set up, so that the picture
    /// is fitted to this width. Fails on another thread than the main one, when the side view is empty or of
    /// a foreign kind, and when a size is out of range (1 to 16384 pixels a side).
    static Result<std::unique_ptr<SideviewHost>> make(std::shared_ptr<TMXSideviewScrollView> sideview,
                                                      double width, double height, double scale = 1);
    virtual ~SideviewHost();

    /// False when the size is out of range. The zoom stays as it is.
    virtual bool resize(double width, double height, double scale) = 0;
    /// One finger's news.
    /// @param identifier names the finger until it has ended or is cancelled.
    /// @param point points of the side view, origin at its top left.
    /// @param time seconds; only differences count.
    virtual void touch(Phase phase, std::int64_t identifier, CGPoint point, double time) = 0;
    /// To be called when the input is lost: another window in front, for one.
    virtual void cancelTouches() = 0;
    /// What a mouse wheel does: zooms so that what lies at `point` stays there, within the limits. Nothing
    /// while the side view does not zoom.
    virtual void zoomBy(double factor, CGPoint point) = 0;

    /// Scrolls up or down, where the picture is higher than the view, just so far that the footprint's level
    /// is in view; the middle of it when it does not fit. Nothing while the footprint is on no level.
    virtual void revealDisplayedLevel() = 0;

    /// True when the picture would differ from the last one.
    virtual bool needsDisplay() const = 0;
    /// The side view as it is now; the same object as before when nothing has changed.
    virtual Result<std::shared_ptr<const UIImage>> image() = 0;
};

} // namespace trelmix
