/// @file
/// How an application hears of the side view.
#pragma once

#include <Trelmix/Export.h>

namespace trelmix {

/// Receiver of a side view's callbacks.
///
/// The side view does not own its delegate and forgets it when it is gone. All calls come on the main thread,
/// before the map's camera moves; inside them the application may do anything, also set the side view up anew
/// or destroy it.
class TRELMIX_API TMXSideviewScrollViewDelegate {
public:
    virtual ~TMXSideviewScrollViewDelegate();

    /// A step of a camera drag. Not when the picture itself is scrolled.
    virtual void sideViewDidScroll() = 0;
    /// A tap that is about to move the camera.
    virtual void sideViewDidReceiveTap() = 0;
};

} // namespace trelmix
