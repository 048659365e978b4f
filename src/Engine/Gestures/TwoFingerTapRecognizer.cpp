#include "Engine/Gestures/TwoFingerTapRecognizer.h"

#include "Engine/Gestures/AnchoredRecognizer.h"
#include "Platform/View/GestureMath.h"

namespace trelmix {

void TwoFingerTapRecognizer::touchBegan(const TrackedTouch& touch) {
    ++_count;
    if (_count == 1) {
        _start = touch.time;
    } else if (_count == 2 && touches().size() == 2) {
        _middle = centroid();
    } else {
        fail(); // a third one, or one after the other
    }
}

void TwoFingerTapRecognizer::touchesMoved(double) {
    for (const TrackedTouch& touch : touches()) {
        if (distanceBetween(touch.start, touch.location) >= AnchoredRecognizer::kThreshold) {
            fail();
        }
    }
}

void TwoFingerTapRecognizer::touchEnded(const TrackedTouch&) {
    if (touches().empty() && _count == 2) {
        recognize();
    }
}

std::optional<double> TwoFingerTapRecognizer::deadline() const {
    return touches().empty() ? std::nullopt : std::optional(_start + kLongest);
}

} // namespace trelmix
