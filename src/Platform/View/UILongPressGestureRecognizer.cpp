#include "Platform/View/UILongPressGestureRecognizer.h"

#include "Platform/View/GestureMath.h"

namespace trelmix {

void UILongPressGestureRecognizer::touchBegan(const TrackedTouch& touch) {
    if (!_finger) {
        _finger = touch;
    } else if (!isActive()) {
        fail();
    }
}

void UILongPressGestureRecognizer::touchesMoved(double) {
    const TrackedTouch& finger = touches().front();
    if (!isActive() && distanceBetween(finger.start, finger.location) > kSlop) {
        fail();
    }
    if (_finger->location != finger.location) {
        _finger->location = finger.location;
        change();
    }
}

void UILongPressGestureRecognizer::touchEnded(const TrackedTouch& touch) {
    if (_finger->serial == touch.serial) {
        end();
    }
}

std::optional<double> UILongPressGestureRecognizer::deadline() const {
    return _finger ? std::optional(_finger->time + kDuration) : std::nullopt;
}

} // namespace trelmix
