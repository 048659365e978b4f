#include "Platform/View/UIPinchGestureRecognizer.h"

#include "Platform/View/GestureMath.h"

#include <algorithm>

namespace trelmix {
namespace {

// Fingers in one place have no ratio to what follows.
constexpr double kShortestSpan = 1.0;

double spanOf(CGPoint first, CGPoint second) {
    return std::max(kShortestSpan, distanceBetween(first, second));
}

} // namespace

void UIPinchGestureRecognizer::setScale(double scale) {
    if (std::isfinite(scale) && scale > 0) {
        _scale = scale;
    }
}

void UIPinchGestureRecognizer::startPair(CGPoint first, CGPoint second) {
    _span = spanOf(first, second);
    _startSpan = _span;
}

bool UIPinchGestureRecognizer::followPair(CGPoint first, CGPoint second) {
    const double span = spanOf(first, second);
    if (span == _span) {
        return false;
    }
    setScale(_scale * (span / _span));
    _span = span;
    return true;
}

bool UIPinchGestureRecognizer::isBeyondThreshold() const {
    return std::abs(_span - _startSpan) >= kThreshold;
}

} // namespace trelmix
