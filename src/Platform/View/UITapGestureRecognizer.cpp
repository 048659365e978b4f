#include "Platform/View/UITapGestureRecognizer.h"

#include "Platform/View/GestureMath.h"
#include "Platform/View/UILongPressGestureRecognizer.h"

namespace trelmix {

void UITapGestureRecognizer::touchBegan(const TrackedTouch& touch) {
    if (touches().size() > 1) {
        fail();
        return;
    }
    if (_taps == 0) {
        _firstTap = touch.start;
    }
    _isBetweenTaps = false;
    _lastChange = touch.time;
}

void UITapGestureRecognizer::touchesMoved(double) {
    for (const TrackedTouch& touch : touches()) {
        if (distanceBetween(touch.start, touch.location) > kSlop) {
            fail();
        }
    }
}

void UITapGestureRecognizer::touchEnded(const TrackedTouch& touch) {
    ++_taps;
    if (_taps >= _tapsRequired) {
        recognize();
        return;
    }
    _isBetweenTaps = true;
    _lastChange = touch.time;
}

void UITapGestureRecognizer::touchWillBegin(CGPoint location, double) {
    if (_isBetweenTaps && distanceBetween(_firstTap, location) > kTapDistance) {
        fail();
    }
}

std::optional<double> UITapGestureRecognizer::deadline() const {
    if (_isBetweenTaps) {
        return _lastChange + kTapInterval;
    }
    if (touches().empty()) {
        return std::nullopt;
    }
    return _lastChange + UILongPressGestureRecognizer::kDuration;
}

void UITapGestureRecognizer::reset() {
    _taps = 0;
    _isBetweenTaps = false;
}

} // namespace trelmix
