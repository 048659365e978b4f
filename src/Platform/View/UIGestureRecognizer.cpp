#include "Platform/View/UIGestureRecognizer.h"

#include "Platform/View/GestureArbiter.h"

#include <Trelmix/Platform/UIView.h>

#include <algorithm>
#include <utility>

namespace trelmix {

UIGestureRecognizer::UIGestureRecognizer() = default;

UIGestureRecognizer::~UIGestureRecognizer() {
    // A gesture may be waiting for this one to fail.
    const std::shared_ptr<GestureArbiter> arbiter = _arbiter.lock();
    if (arbiter && !arbiter->isAtRest()) {
        arbiter->askToSettle(GestureArbiter::When::soon);
    }
}

void UIGestureRecognizer::setIsEnabled(bool enabled) {
    if (std::exchange(_isEnabled, enabled) && !enabled) {
        withdraw();
    }
}

void UIGestureRecognizer::setView(std::weak_ptr<UIView> view) {
    withdraw();
    _view = std::move(view);
}

void UIGestureRecognizer::withdraw() {
    if (isAtRest()) {
        return;
    }
    const std::shared_ptr<UIGestureRecognizer> self = shared_from_this();
    cancel();
    _actionDue = _actionDue && _beganSent;
    dropTouches();
    if (const std::shared_ptr<GestureArbiter> arbiter = _arbiter.lock()) {
        arbiter->askToSettle(GestureArbiter::When::now);
    } else {
        afterCycle();
    }
}

void UIGestureRecognizer::addTarget(Action action) {
    if (action) {
        _actions.push_back(std::move(action));
    }
}

void UIGestureRecognizer::requireGestureRecognizerToFail(const std::shared_ptr<UIGestureRecognizer>& other) {
    // In a circle each would wait for the next for ever.
    if (other && other.get() != this && !other->dependsOn(*this) && !dependsOn(*other)) {
        _requirements.push_back(other);
    }
}

bool UIGestureRecognizer::dependsOn(const UIGestureRecognizer& other) const {
    return std::any_of(_requirements.begin(), _requirements.end(), [&](const auto& weak) {
        const std::shared_ptr<UIGestureRecognizer> required = weak.lock();
        return required && (required.get() == &other || required->dependsOn(other));
    });
}

CGPoint UIGestureRecognizer::locationInView(const std::shared_ptr<UIView>& view) const {
    return pointInView(_location, view);
}

CGPoint UIGestureRecognizer::pointInView(CGPoint point, const std::shared_ptr<UIView>& view) const {
    const std::shared_ptr<UIView> root = _root.lock();
    return root && view ? root->convertPointToView(point, view) : point;
}

CGPoint UIGestureRecognizer::vectorInView(CGPoint vector, const std::shared_ptr<UIView>& view) const {
    const std::shared_ptr<UIView> root = _root.lock();
    if (!root || !view) {
        return vector;
    }
    const CGPoint origin = root->convertPointToView({0, 0}, view);
    const CGPoint tip = root->convertPointToView(vector, view);
    return {tip.x - origin.x, tip.y - origin.y};
}

CGPoint UIGestureRecognizer::vectorFromView(CGPoint vector, const std::shared_ptr<UIView>& view) const {
    const std::shared_ptr<UIView> root = _root.lock();
    if (!root || !view) {
        return vector;
    }
    const CGPoint origin = view->convertPointToView({0, 0}, root);
    const CGPoint tip = view->convertPointToView(vector, root);
    return {tip.x - origin.x, tip.y - origin.y};
}

void UIGestureRecognizer::recognize() {
    if (_state == State::possible) {
        _wantsRecognition = true;
    }
}

void UIGestureRecognizer::change() {
    // The first report of a gesture that begins in this event already holds this change.
    if (isActive() && !_actionDue) {
        _state = State::changed;
        _actionDue = true;
    }
}

void UIGestureRecognizer::end() {
    if (isActive()) {
        _state = State::ended;
        _actionDue = true;
    }
}

void UIGestureRecognizer::cancel() {
    if (isActive()) {
        _state = State::cancelled;
        _actionDue = _beganSent;
    } else {
        fail();
    }
}

void UIGestureRecognizer::fail() {
    _wantsRecognition = false;
    if (_state == State::possible) {
        _state = State::failed;
    }
}

CGPoint UIGestureRecognizer::centroid() const {
    const std::size_t count = std::min(_touches.size(), locatingTouchCount());
    if (count == 0) {
        return _location;
    }
    CGPoint sum;
    for (std::size_t i = 0; i < count; ++i) {
        sum.x += _touches[i].location.x;
        sum.y += _touches[i].location.y;
    }
    return {sum.x / static_cast<double>(count), sum.y / static_cast<double>(count)};
}

void UIGestureRecognizer::updateLocation() {
    if (isOpen()) {
        _location = centroid();
    }
}

bool UIGestureRecognizer::isAtRest() const {
    return _state == State::possible && _touches.empty() && !_wantsRecognition && !isWaiting();
}

bool UIGestureRecognizer::hadTouch(std::uint64_t serial) const {
    return std::find(_endedSerials.begin(), _endedSerials.end(), serial) != _endedSerials.end() ||
           std::any_of(_touches.begin(), _touches.end(),
                       [serial](const TrackedTouch& touch) { return touch.serial == serial; });
}

bool UIGestureRecognizer::sharesTouchWith(const UIGestureRecognizer& other) const {
    return std::any_of(_touches.begin(), _touches.end(),
                       [&](const TrackedTouch& touch) { return other.hadTouch(touch.serial); }) ||
           std::any_of(_endedSerials.begin(), _endedSerials.end(),
                       [&](std::uint64_t serial) { return other.hadTouch(serial); });
}

std::optional<double> UIGestureRecognizer::openDeadline() const {
    return _state == State::possible && !_wantsRecognition ? deadline() : std::nullopt;
}

void UIGestureRecognizer::beginTouch(std::uint64_t serial, CGPoint location, double time) {
    if (!_isEnabled || !acceptsTouch()) {
        return;
    }
    _time = time;
    const TrackedTouch touch{serial, location, location, time};
    _touches.push_back(touch);
    if (isOpen()) {
        touchBegan(touch);
        updateLocation();
    }
}

bool UIGestureRecognizer::moveTouch(std::uint64_t serial, CGPoint location, double time) {
    const auto touch = std::find_if(_touches.begin(), _touches.end(),
                                    [serial](const TrackedTouch& other) { return other.serial == serial; });
    if (touch == _touches.end()) {
        return false;
    }
    _time = time;
    touch->location = location;
    touch->time = time;
    return true;
}

void UIGestureRecognizer::endTouch(std::uint64_t serial, double time, bool isCancelled) {
    const auto place = std::find_if(_touches.begin(), _touches.end(),
                                    [serial](const TrackedTouch& other) { return other.serial == serial; });
    if (place == _touches.end()) {
        return;
    }
    _time = time;
    TrackedTouch touch = *place;
    touch.time = time;
    _touches.erase(place);
    _endedSerials.push_back(serial);
    if (!isOpen()) {
        return;
    }
    if (isCancelled) {
        cancel();
        return;
    }
    touchEnded(touch);
    if (_touches.empty() && isActive()) {
        end();
    } else if (_touches.empty() && !isWaiting() && !(_wantsRecognition && isDiscrete())) {
        fail();
    }
    updateLocation();
}

void UIGestureRecognizer::dropTouches() {
    _touches.clear();
    _endedSerials.clear();
}

void UIGestureRecognizer::afterCycle() {
    _endedSerials.clear();
    const bool isOver = !isOpen();
    const bool mayRestart = _state == State::ended && restartsWithRemainingTouches();
    if (isOver && (_touches.empty() || mayRestart)) {
        _state = State::possible;
        _wantsRecognition = false;
        _actionDue = false;
        _beganSent = false;
        reset();
    }
}

} // namespace trelmix
