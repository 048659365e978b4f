#pragma once

#include <Trelmix/Platform/CGGeometry.h>
#include <Trelmix/Platform/Result.h>
#include <Trelmix/Platform/UIView.h>

#include <memory>

namespace trelmix {

class Canvas;
class UIImage;
class ViewNode;

/// Draws a view tree: of every visible view its background, its content and then its subviews, at the alpha
/// and the zoom they have; scroll views show nothing outside their frame. Main thread only.
class ViewComposer {
public:
    /// The tree below a root, from its own origin to its size, after the layout passes that are due.
    /// @param scale pixels per point. Fails when the picture would have no pixel or too many.
    static Result<std::shared_ptr<const UIImage>> compose(UIView& root, double scale = 1);

private:
    struct Place {
        /// A view's own point p lies at `origin` + `zoom` * p on the canvas.
        CGPoint origin;
        double zoom = 1;
        /// What may be drawn to, in the canvas's points.
        CGRect clip;
    };
    struct Target {
        Canvas& canvas;
        int width = 0;
        int height = 0;
        double scale = 1;
    };
    static void drawView(const ViewNode& view, const Place& place, const Target& target);
    static void drawOpaque(const ViewNode& view, const Place& place, const Target& target);
    /// Where a view's own coordinates lie when its superview's lie at `place`.
    static Place placeOf(const ViewNode& view, const Place& place);
};

} // namespace trelmix
