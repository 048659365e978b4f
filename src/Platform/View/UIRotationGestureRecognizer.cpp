#include "Platform/View/UIRotationGestureRecognizer.h"

#include "Platform/View/GestureMath.h"

#include <utility>

namespace trelmix {
namespace {

// Closer together the fingers' direction is noise.
constexpr double kShortestSpan = 1.0;

// With y downward the arc tangent grows clockwise.
std::optional<double> angleOf(CGPoint first, CGPoint second) {
    if (distanceBetween(first, second) < kShortestSpan) {
        return std::nullopt;
    }
    return std::atan2(second.y - first.y, second.x - first.x);
}

} // namespace

void UIRotationGestureRecognizer::setRotation(double rotation) {
    if (std::isfinite(rotation)) {
        _rotation = rotation;
    }
}

void UIRotationGestureRecognizer::startPair(CGPoint first, CGPoint second) {
    _angle = angleOf(first, second);
    _turned = 0;
}

bool UIRotationGestureRecognizer::followPair(CGPoint first, CGPoint second) {
    const std::optional<double> angle = angleOf(first, second);
    const std::optional<double> last = std::exchange(_angle, angle);
    if (!angle || !last) {
        return false;
    }
    const double step = std::remainder(*angle - *last, 2 * std::numbers::pi);
    _turned += step;
    setRotation(_rotation + step);
    return step != 0;
}

bool UIRotationGestureRecognizer::isBeyondThreshold() const {
    return std::abs(_turned) >= kThreshold;
}

void UIRotationGestureRecognizer::reset() {
    _rotation = 0;
    _turned = 0;
}

} // namespace trelmix
