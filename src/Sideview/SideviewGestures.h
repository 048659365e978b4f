#pragma once

#include "Platform/View/UIGestureRecognizer.h"

#include <Trelmix/Platform/CGGeometry.h>

#include <memory>
#include <vector>

namespace trelmix {

class SideviewScrollView;

/// Taps and drags on the side view, and the mode in which a drag moves the map's camera instead of the
/// picture: scrolling that is off while zooming is enabled means that a long press has started it.
///
/// A part of its side view. Main thread only.
class SideviewGestures {
public:
    explicit SideviewGestures(SideviewScrollView& sideview) : _sideview(sideview) {}

    /// Adds the recognisers to the side view's scroll view, which is a new one with every set-up.
    void setup();
    /// Ends what is under way, the mode of dragging the camera included. Fingers that are down do nothing
    /// more.
    void cancel();

private:
    using Handler = void (SideviewGestures::*)(UIGestureRecognizer&);
    void add(const std::shared_ptr<UIGestureRecognizer>& recogniser, Handler handler);
    void tap(UIGestureRecognizer& recogniser);
    void longPress(UIGestureRecognizer& recogniser);
    void drag(UIGestureRecognizer& recogniser);
    bool isDraggingCamera() const;
    bool canMoveCamera() const;
    void moveCameraTo(CGPoint imagePoint, bool animated);
    template <class Report>
    void reportAndMove(UIGestureRecognizer& recogniser, Report report, bool animated);

    SideviewScrollView& _sideview;
    /// Of the present scroll view; the drag is last.
    std::vector<std::shared_ptr<UIGestureRecognizer>> _recognisers;
};

} // namespace trelmix
