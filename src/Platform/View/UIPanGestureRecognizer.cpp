#include "Platform/View/UIPanGestureRecognizer.h"

#include "Platform/View/GestureMath.h"

#include <algorithm>

namespace trelmix {
namespace {

constexpr double kVelocityWindow = 0.1;
// Events of one moment still have a direction.
constexpr double kShortestStep = 0.001;
constexpr std::size_t kMostSamples = 64;

} // namespace

void UIPanGestureRecognizer::setTranslation(CGPoint translation, const std::shared_ptr<UIView>& view) {
    const CGPoint vector = vectorFromView(translation, view);
    if (std::isfinite(vector.x) && std::isfinite(vector.y)) {
        _translation = vector;
    }
}

CGPoint UIPanGestureRecognizer::velocity(const std::shared_ptr<UIView>& view) const {
    if (_samples.size() < 2 || _time - _samples.back().time > kVelocityWindow) {
        return {};
    }
    const Sample& last = _samples.back();
    const Sample& first = _samples.front();
    const double duration = std::max(last.time - first.time, kShortestStep);
    return vectorInView({(last.travelled.x - first.travelled.x) / duration,
                         (last.travelled.y - first.travelled.y) / duration},
                        view);
}

void UIPanGestureRecognizer::touchBegan(const TrackedTouch& touch) {
    _middle = centroid();
    _time = touch.time;
    if (_samples.empty()) {
        addSample(touch.time);
    }
}

void UIPanGestureRecognizer::touchesMoved(double time) {
    const CGPoint middle = centroid();
    const CGPoint step{middle.x - _middle.x, middle.y - _middle.y};
    _middle = middle;
    _time = time;
    if (step == CGPoint{}) {
        return;
    }
    _travelled = {_travelled.x + step.x, _travelled.y + step.y};
    _translation = {_translation.x + step.x, _translation.y + step.y};
    addSample(time);
    if (isActive()) {
        change();
    } else if (distanceBetween({}, _travelled) >= kThreshold) {
        recognize();
    }
}

void UIPanGestureRecognizer::touchEnded(const TrackedTouch& touch) {
    _middle = centroid();
    _time = touch.time;
}

// Keeps the samples of the window and the one before it.
void UIPanGestureRecognizer::addSample(double time) {
    _samples.push_back({time, _travelled});
    while (_samples.size() > 2 &&
           (time - _samples[1].time > kVelocityWindow || _samples.size() > kMostSamples)) {
        _samples.pop_front();
    }
}

void UIPanGestureRecognizer::reset() {
    _travelled = {};
    _translation = {};
    _samples.clear();
}

} // namespace trelmix
