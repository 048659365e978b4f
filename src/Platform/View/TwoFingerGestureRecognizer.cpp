#include "Platform/View/TwoFingerGestureRecognizer.h"

namespace trelmix {

void TwoFingerGestureRecognizer::touchBegan(const TrackedTouch&) {
    if (touches().size() == 2) {
        startPair(touches()[0].location, touches()[1].location);
    }
}

void TwoFingerGestureRecognizer::touchesMoved(double) {
    if (touches().size() < 2 || !followPair(touches()[0].location, touches()[1].location)) {
        return;
    }
    if (isActive()) {
        change();
    } else if (isBeyondThreshold()) {
        recognize();
    }
}

void TwoFingerGestureRecognizer::touchEnded(const TrackedTouch&) {
    if (touches().size() >= 2) {
        startPair(touches()[0].location, touches()[1].location);
    } else if (isActive()) {
        end();
    } else if (wantsRecognition()) {
        fail();
    }
}

} // namespace trelmix
