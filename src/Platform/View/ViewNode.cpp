#include "Platform/View/ViewNode.h"

#include "Platform/View/UIGestureRecognizer.h"

#include <algorithm>
#include <utility>

namespace trelmix {

std::shared_ptr<ViewNode> ViewNode::make(CGRect frame) {
    return std::shared_ptr<ViewNode>(new ViewNode(frame));
}

ViewNode::ViewNode(CGRect frame) : UIView(frame) {}

ViewNode::~ViewNode() = default;

void ViewNode::addConstraints(std::vector<LayoutConstraint> constraints) {
    std::move(constraints.begin(), constraints.end(), std::back_inserter(_constraints));
    setNeedsLayout();
}

void ViewNode::layoutSubviews() {
    std::erase_if(_constraints, [](const LayoutConstraint& constraint) { return !constraint.view(); });
    const std::vector<LayoutConstraint> constraints = _constraints;
    const CGSize area = layoutArea();
    for (const LayoutConstraint& constraint : constraints) {
        const std::shared_ptr<UIView> view = constraint.view();
        if (!view || view->superview().get() != this) {
            continue;
        }
        CGRect frame = view->frame();
        if (constraint.axis() == LayoutConstraint::Axis::horizontal) {
            frame.origin.x = 0;
            frame.size.width = constraint.length().value_or(area.width);
        } else {
            frame.origin.y = 0;
            frame.size.height = constraint.length().value_or(area.height);
        }
        view->setFrame(frame);
    }
}

void ViewNode::addGestureRecognizer(const std::shared_ptr<UIGestureRecognizer>& recognizer) {
    if (!recognizer || recognizer->view().get() == this) {
        return;
    }
    if (const std::shared_ptr<UIView> old = recognizer->view()) {
        of(*old).removeGestureRecognizer(recognizer);
    }
    _recognizers.push_back(recognizer);
    recognizer->setView(weak_from_this());
}

void ViewNode::removeGestureRecognizer(const std::shared_ptr<UIGestureRecognizer>& recognizer) {
    const auto place = std::find(_recognizers.begin(), _recognizers.end(), recognizer);
    if (place == _recognizers.end()) {
        return;
    }
    const std::shared_ptr<UIGestureRecognizer> removed = std::move(*place);
    _recognizers.erase(place);
    removed->setView({});
}

void ViewNode::draw(Canvas&) const {}

} // namespace trelmix
