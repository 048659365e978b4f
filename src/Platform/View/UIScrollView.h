#pragma once

#include "Platform/View/ViewNode.h"

namespace trelmix {

class Timer;
class UIPanGestureRecognizer;
class UIPinchGestureRecognizer;
class UIScrollView;

/// Hears what a scroll view does, at once and on the main thread.
class UIScrollViewDelegate {
public:
    virtual ~UIScrollViewDelegate() = default;
    /// The view whose size zooming is about; without one the scroll view does not zoom.
    virtual std::shared_ptr<UIView> viewForZoomingInScrollView(UIScrollView&) { return nullptr; }
    /// After every change of `zoomScale`.
    virtual void scrollViewDidZoom(UIScrollView&) {}
    /// After every change of `contentOffset`.
    virtual void scrollViewDidScroll(UIScrollView&) {}
};

/// Shows a part of content that may be larger than its frame, scaled by `zoomScale`.
///
/// Its own coordinates, which its subviews' frames and locations of touches are in, are those of the content
/// at zoom 1: they do not depend on zoom or offset. One finger or more pan the content, two pinch it about
/// their middle. It lies in another view; as the root of a tree it cannot be scrolled by hand. Main thread
/// only.
///
/// Larger than most classes: offset, zoom and content size limit one another with every change of one.
class UIScrollView : public ViewNode {
public:
    static std::shared_ptr<UIScrollView> make(CGRect frame = {});
    ~UIScrollView() override;

    /// The part of the content that shows, in content coordinates.
    CGRect bounds() const override;

    std::shared_ptr<UIScrollViewDelegate> delegate() const { return _delegate.lock(); }
    void setDelegate(std::weak_ptr<UIScrollViewDelegate> delegate) { _delegate = std::move(delegate); }

    /// Points at zoom 1. Subviews fixed to a length by constraints set it at the next layout pass. Sizes that
    /// are negative or not finite count as 0.
    CGSize contentSize() const { return _contentSize; }
    void setContentSize(CGSize size);
    /// The content's point, at the present zoom, that shows at the frame's top left; stays within the
    /// content.
    CGPoint contentOffset() const { return _contentOffset; }
    void setContentOffset(CGPoint offset);

    double zoomScale() const { return _zoomScale; }
    /// Zooms about the middle of what shows, limited to the zoom range. Does nothing without a view for
    /// zooming.
    /// @param animated over 0.25 s of the main run loop's time, with a report of every step.
    void setZoomScale(double scale, bool animated);
    /// The limits are 1.0 until they are set; values that are not finite or not greater than 0 are ignored,
    /// and the zoom scale stays until it is set. With the limits crossed the minimum counts.
    double minimumZoomScale() const { return _minimumZoomScale; }
    void setMinimumZoomScale(double scale);
    double maximumZoomScale() const { return _maximumZoomScale; }
    void setMaximumZoomScale(double scale);

    /// Whether fingers pan the content; a pan under way is cancelled. Pinching has only the zoom limits.
    bool isScrollEnabled() const;
    void setScrollEnabled(bool enabled);

protected:
    explicit UIScrollView(CGRect frame);
    void layoutSubviews() override;
    CGSize layoutArea() const override { return _contentSize; }
    CGPoint toSuperview(CGPoint point) const override;
    CGPoint fromSuperview(CGPoint point) const override;
    bool clipsToBounds() const override { return true; }

private:
    class OwnGestures;
    void addRecognizers();
    void panned();
    void pinched();
    double limitedZoom(double scale) const;
    /// @param anchor stays in place, in points from the frame's top left.
    void zoomTo(double scale, CGPoint anchor);
    void zoomStep(double from, double to, double startTime);
    CGPoint middle() const { return {frame().size.width / 2, frame().size.height / 2}; }

    CGSize _contentSize;
    CGPoint _contentOffset;
    double _zoomScale = 1;
    double _minimumZoomScale = 1;
    double _maximumZoomScale = 1;
    std::weak_ptr<UIScrollViewDelegate> _delegate;
    std::shared_ptr<OwnGestures> _ownGestures;
    std::shared_ptr<UIPanGestureRecognizer> _pan;
    std::shared_ptr<UIPinchGestureRecognizer> _pinch;
    std::shared_ptr<Timer> _zoomTimer;
};

} // namespace trelmix
