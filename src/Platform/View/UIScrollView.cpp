#include "Platform/View/UIScrollView.h"

#include "Platform/Foundation/Clock.h"
#include "Platform/Foundation/RunLoop.h"
#include "Platform/View/LayoutConstraint.h"
#include "Platform/View/UIPanGestureRecognizer.h"
#include "Platform/View/UIPinchGestureRecognizer.h"

#include <algorithm>
#include <cmath>

namespace trelmix {
namespace {

constexpr double kZoomDuration = 0.25;
constexpr double kZoomStep = 1.0 / 60;

bool isScale(double scale) {
    return std::isfinite(scale) && scale > 0;
}

double limitedLength(double length) {
    return std::isfinite(length) ? std::max(0.0, length) : 0.0;
}

} // namespace

/// The scroll view's own pan and pinch run together.
class UIScrollView::OwnGestures : public UIGestureRecognizerDelegate {
public:
    explicit OwnGestures(const UIScrollView& owner) : _pan(owner._pan), _pinch(owner._pinch) {}
    bool gestureRecognizerShouldRecognizeSimultaneouslyWith(UIGestureRecognizer& asked,
                                                            UIGestureRecognizer& other) override {
        return isOwn(asked) && isOwn(other);
    }

private:
    bool isOwn(const UIGestureRecognizer& recognizer) const {
        return _pan.lock().get() == &recognizer || _pinch.lock().get() == &recognizer;
    }
    std::weak_ptr<UIGestureRecognizer> _pan;
    std::weak_ptr<UIGestureRecognizer> _pinch;
};

std::shared_ptr<UIScrollView> UIScrollView::make(CGRect frame) {
    std::shared_ptr<UIScrollView> view(new UIScrollView(frame));
    view->addRecognizers();
    return view;
}

UIScrollView::UIScrollView(CGRect frame)
    : ViewNode(frame), _pan(std::make_shared<UIPanGestureRecognizer>()),
      _pinch(std::make_shared<UIPinchGestureRecognizer>()) {
    _ownGestures = std::make_shared<OwnGestures>(*this);
}

UIScrollView::~UIScrollView() {
    if (_zoomTimer) {
        _zoomTimer->invalidate();
    }
}

void UIScrollView::addRecognizers() {
    const std::weak_ptr<UIScrollView> weak = std::static_pointer_cast<UIScrollView>(shared_from_this());
    const auto add = [&](const std::shared_ptr<UIGestureRecognizer>& recognizer,
                         void (UIScrollView::*handler)()) {
        recognizer->setDelegate(_ownGestures);
        recognizer->addTarget([weak, handler](UIGestureRecognizer&) {
            if (const std::shared_ptr<UIScrollView> self = weak.lock()) {
                (*self.*handler)();
            }
        });
        addGestureRecognizer(recognizer);
    };
    // The pan comes first: a pinch about the fingers' new middle is exact once the content has followed it
    // there.
    add(_pan, &UIScrollView::panned);
    add(_pinch, &UIScrollView::pinched);
}

CGRect UIScrollView::bounds() const {
    return {{_contentOffset.x / _zoomScale, _contentOffset.y / _zoomScale},
            {frame().size.width / _zoomScale, frame().size.height / _zoomScale}};
}

CGPoint UIScrollView::toSuperview(CGPoint point) const {
    return UIView::toSuperview(
        {point.x * _zoomScale - _contentOffset.x, point.y * _zoomScale - _contentOffset.y});
}

CGPoint UIScrollView::fromSuperview(CGPoint point) const {
    const CGPoint inFrame = UIView::fromSuperview(point);
    return {(inFrame.x + _contentOffset.x) / _zoomScale, (inFrame.y + _contentOffset.y) / _zoomScale};
}

void UIScrollView::layoutSubviews() {
    ViewNode::layoutSubviews();
    CGSize size = _contentSize;
    for (const LayoutConstraint& constraint : constraints()) {
        const std::shared_ptr<UIView> view = constraint.view();
        if (!constraint.length() || !view || view->superview().get() != this) {
            continue;
        }
        (constraint.axis() == LayoutConstraint::Axis::horizontal ? size.width : size.height) =
            *constraint.length();
    }
    _contentSize = size;
    setContentOffset(_contentOffset);
}

void UIScrollView::setContentSize(CGSize size) {
    _contentSize = {limitedLength(size.width), limitedLength(size.height)};
    setNeedsLayout();
    setContentOffset(_contentOffset);
}

void UIScrollView::setContentOffset(CGPoint offset) {
    if (!std::isfinite(offset.x) || !std::isfinite(offset.y)) {
        return;
    }
    const CGPoint limited{
        std::clamp(offset.x, 0.0, std::max(0.0, _contentSize.width * _zoomScale - frame().size.width)),
        std::clamp(offset.y, 0.0, std::max(0.0, _contentSize.height * _zoomScale - frame().size.height))};
    if (limited == _contentOffset) {
        return;
    }
    _contentOffset = limited;
    if (const std::shared_ptr<UIScrollViewDelegate> told = delegate()) {
        told->scrollViewDidScroll(*this);
    }
}

double UIScrollView::limitedZoom(double scale) const {
    return std::max(std::min(scale, _maximumZoomScale), _minimumZoomScale);
}

void UIScrollView::setMinimumZoomScale(double scale) {
    if (isScale(scale)) {
        _minimumZoomScale = scale;
    }
}

void UIScrollView::setMaximumZoomScale(double scale) {
    if (isScale(scale)) {
        _maximumZoomScale = scale;
    }
}

void UIScrollView::setZoomScale(double scale, bool animated) {
    if (_zoomTimer) {
        _zoomTimer->invalidate();
        _zoomTimer.reset();
    }
    if (!isScale(scale)) {
        return;
    }
    if (!animated) {
        zoomTo(scale, middle());
        return;
    }
    const std::weak_ptr<UIScrollView> weak = std::static_pointer_cast<UIScrollView>(shared_from_this());
    _zoomTimer = Timer::scheduledTimer(
        kZoomStep, true, [weak, from = _zoomScale, to = limitedZoom(scale), start = Clock::now()] {
            if (const std::shared_ptr<UIScrollView> self = weak.lock()) {
                self->zoomStep(from, to, start);
            }
        });
}

void UIScrollView::zoomStep(double from, double to, double startTime) {
    const double part = std::clamp((Clock::now() - startTime) / kZoomDuration, 0.0, 1.0);
    if (part >= 1 && _zoomTimer) {
        _zoomTimer->invalidate();
        _zoomTimer.reset();
    }
    // Equal steps in time are equal factors: zooming has an even speed.
    zoomTo(part >= 1 ? to : from * std::pow(to / from, part), middle());
}

void UIScrollView::zoomTo(double scale, CGPoint anchor) {
    const std::shared_ptr<UIView> self = shared_from_this();
    const std::shared_ptr<UIScrollViewDelegate> told = delegate();
    const double limited = limitedZoom(scale);
    if (!told || limited == _zoomScale || !told->viewForZoomingInScrollView(*this)) {
        return;
    }
    const double factor = limited / _zoomScale;
    _zoomScale = limited;
    const CGPoint offset{(_contentOffset.x + anchor.x) * factor - anchor.x,
                         (_contentOffset.y + anchor.y) * factor - anchor.y};
    setContentOffset(offset);
    told->scrollViewDidZoom(*this);
}

bool UIScrollView::isScrollEnabled() const {
    return _pan->isEnabled();
}

void UIScrollView::setScrollEnabled(bool enabled) {
    _pan->setIsEnabled(enabled);
}

void UIScrollView::panned() {
    const std::shared_ptr<UIView> parent = superview();
    if (!parent) {
        return;
    }
    const CGPoint step = _pan->translation(parent);
    _pan->setTranslation({0, 0}, parent);
    setContentOffset({_contentOffset.x - step.x, _contentOffset.y - step.y});
}

void UIScrollView::pinched() {
    const std::shared_ptr<UIView> parent = superview();
    if (!parent) {
        return;
    }
    const double scale = _pinch->scale();
    _pinch->setScale(1);
    const CGPoint middleOfFingers = _pinch->locationInView(parent);
    if (scale != 1) {
        zoomTo(_zoomScale * scale, UIView::fromSuperview(middleOfFingers));
    }
}

} // namespace trelmix
