#include "Engine/Gestures/AnchoredRecognizer.h"

#include "Platform/View/GestureMath.h"
#include "Platform/View/UILongPressGestureRecognizer.h"
#include "Platform/View/UITapGestureRecognizer.h"

#include <algorithm>

namespace trelmix {

namespace {

/// Points. Fingers that tilt together are reported one after the other: one that has moved waits this long
/// for the other.
constexpr double kStill = 3.0;
constexpr double kLongestWait = 20.0;

} // namespace

std::vector<AnchoredRecognizer::Finger> AnchoredRecognizer::fingers() const {
    std::vector<Finger> found;
    const auto own = view();
    for (const TrackedTouch& touch : touches()) {
        if (found.size() < 2) {
            found.push_back(
                {touch.serial, pointInView(touch.start, own), pointInView(touch.location, own), touch.time});
        }
    }
    return found;
}

void AnchoredRecognizer::touchBegan(const TrackedTouch& touch) {
    _isAfterTap = _lastTap && touches().size() == 1 &&
                  touch.time - _lastTap->time <= UITapGestureRecognizer::kTapInterval &&
                  distanceBetween(_lastTap->location, touch.start) <= UITapGestureRecognizer::kTapDistance;
    _lastTap.reset();
    _touchedAt = touch.time;
    change();
}

void AnchoredRecognizer::touchEnded(const TrackedTouch& touch) {
    // A gesture that has not begun, of a finger that came and went.
    if (!isActive() && touches().empty() && !_isAfterTap &&
        touch.time - _touchedAt < UILongPressGestureRecognizer::kDuration) {
        _lastTap = Tap{touch.location, touch.time};
    }
    change();
}

void AnchoredRecognizer::touchesMoved(double) {
    if (isActive()) {
        change();
    } else if (isClear()) {
        recognize();
    }
}

bool AnchoredRecognizer::isClear() const {
    const double first = distanceBetween(touches()[0].start, touches()[0].location);
    if (touches().size() == 1) {
        return first >= kThreshold;
    }
    const double second = distanceBetween(touches()[1].start, touches()[1].location);
    return first + second >= kThreshold &&
           (std::min(first, second) >= kStill || std::max(first, second) >= kLongestWait);
}

} // namespace trelmix
