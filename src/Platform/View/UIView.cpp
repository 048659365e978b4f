#include <Trelmix/Platform/UIView.h>

#include "Platform/Foundation/WakeUp.h"
#include "Platform/View/ViewNode.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace trelmix {
namespace {

// Below this a view cannot be seen, so it does not take touches either.
constexpr double kLowestTouchableAlpha = 0.01;

double limitedLength(double length) {
    return std::isfinite(length) ? std::max(0.0, length) : 0.0;
}

bool contains(const CGRect& rect, CGPoint point) {
    return point.x >= rect.origin.x && point.y >= rect.origin.y &&
           point.x < rect.origin.x + rect.size.width && point.y < rect.origin.y + rect.size.height;
}

} // namespace

std::shared_ptr<UIView> UIView::make(CGRect frame) {
    return ViewNode::make(frame);
}

UIView::UIView(CGRect frame) {
    UIView::setFrame(frame);
}

UIView::~UIView() = default;

void UIView::setFrame(CGRect frame) {
    const CGSize oldSize = _frame.size;
    if (std::isfinite(frame.origin.x)) {
        _frame.origin.x = frame.origin.x;
    }
    if (std::isfinite(frame.origin.y)) {
        _frame.origin.y = frame.origin.y;
    }
    _frame.size = {limitedLength(frame.size.width), limitedLength(frame.size.height)};
    if (_frame.size != oldSize) {
        setNeedsLayout();
    }
}

void UIView::setAlpha(double alpha) {
    _alpha = std::isnan(alpha) ? 1.0 : std::clamp(alpha, 0.0, 1.0);
    WakeUp::signal(Wake::frame);
}

void UIView::setBackgroundColor(std::optional<UIColor> color) {
    _backgroundColor = color;
    WakeUp::signal(Wake::frame);
}

void UIView::addSubview(const std::shared_ptr<UIView>& view) {
    if (!view || isDescendantOf(*view)) {
        return;
    }
    // The reference may be to an element of the list that it leaves.
    std::shared_ptr<UIView> added = view;
    added->removeFromSuperview();
    added->_superview = weak_from_this();
    _subviews.push_back(std::move(added));
    setNeedsLayout();
}

void UIView::removeFromSuperview() {
    const std::shared_ptr<UIView> old = _superview.lock();
    _superview.reset();
    if (!old) {
        return;
    }
    const auto place =
        std::find_if(old->_subviews.begin(), old->_subviews.end(),
                     [this](const std::shared_ptr<UIView>& view) { return view.get() == this; });
    if (place == old->_subviews.end()) {
        return;
    }
    // The superview may have been the last owner: this view must outlive its own removal.
    const std::shared_ptr<UIView> self = std::move(*place);
    old->_subviews.erase(place);
}

void UIView::layoutIfNeeded() {
    const std::shared_ptr<UIView> self = shared_from_this();
    if (std::exchange(_needsLayout, false)) {
        layoutSubviews();
    }
    // A layout pass may add and remove views.
    const std::vector<std::shared_ptr<UIView>> children = _subviews;
    for (const std::shared_ptr<UIView>& child : children) {
        child->layoutIfNeeded();
    }
}

std::shared_ptr<UIView> UIView::hitTest(CGPoint point) {
    if (_isHidden || _alpha < kLowestTouchableAlpha || !contains(bounds(), point)) {
        return nullptr;
    }
    for (auto child = _subviews.rbegin(); child != _subviews.rend(); ++child) {
        if (std::shared_ptr<UIView> hit = (*child)->hitTest((*child)->fromSuperview(point))) {
            return hit;
        }
    }
    return shared_from_this();
}

bool UIView::isDescendantOf(const UIView& ancestor) const {
    std::shared_ptr<const UIView> step;
    for (const UIView* view = this; view != nullptr; view = step.get()) {
        if (view == &ancestor) {
            return true;
        }
        step = view->superview();
    }
    return false;
}

CGPoint UIView::convertPointToView(CGPoint point, const std::shared_ptr<UIView>& view) const {
    const CGPoint inRoot = toRoot(point);
    return view ? view->fromRoot(inRoot) : inRoot;
}

CGPoint UIView::toRoot(CGPoint point) const {
    const std::shared_ptr<UIView> parent = superview();
    return parent ? parent->toRoot(toSuperview(point)) : point;
}

CGPoint UIView::fromRoot(CGPoint point) const {
    const std::shared_ptr<UIView> parent = superview();
    return parent ? fromSuperview(parent->fromRoot(point)) : point;
}

CGPoint UIView::toSuperview(CGPoint point) const {
    return {point.x + _frame.origin.x, point.y + _frame.origin.y};
}

CGPoint UIView::fromSuperview(CGPoint point) const {
    return {point.x - _frame.origin.x, point.y - _frame.origin.y};
}

} // namespace trelmix
