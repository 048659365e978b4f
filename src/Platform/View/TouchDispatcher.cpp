#include "Platform/View/TouchDispatcher.h"

#include "Platform/Foundation/CallerFault.h"
#include "Platform/Foundation/Clock.h"
#include "Platform/Foundation/RunLoop.h"
#include "Platform/Foundation/Thread.h"
#include "Platform/View/GestureArbiter.h"
#include "Platform/View/UIGestureRecognizer.h"
#include "Platform/View/ViewNode.h"

#include <algorithm>
#include <cmath>
#include <deque>
#include <functional>
#include <iterator>
#include <optional>
#include <utility>
#include <vector>

namespace trelmix {
namespace {

constexpr double kFarthestPosition = 1e7;
// More than any digitiser reports; a host that never ends its touches must not fill the memory.
constexpr std::size_t kMostTouches = 64;
// More than sums of positions lose in rounding.
constexpr double kStill = 1e-6;

bool isPosition(CGPoint point) {
    return std::abs(point.x) <= kFarthestPosition && std::abs(point.y) <= kFarthestPosition;
}

} // namespace

class TouchDispatcher::State : public std::enable_shared_from_this<State> {
public:
    State(std::weak_ptr<UIView> root, double fraction) : _root(std::move(root)), _fraction(fraction) {}

    void start();
    /// Runs an event, or queues it while another runs.
    void run(std::function<void(State&)> event);
    void handle(std::span<const Touch> touches);
    void cancelAll();
    void close();
    std::size_t touchCount() const { return _touches.size(); }

private:
    struct DownTouch {
        std::int64_t identifier = 0;
        std::uint64_t serial = 0;
        /// As reported, without the shift.
        CGPoint location;
    };

    std::vector<DownTouch>::iterator find(std::int64_t identifier);
    double timeOf(double timestamp);
    void begin(const Touch& touch, double time);
    void move(std::span<const Touch> touches, double time);
    CGPoint sumOfLocations() const;
    CGPoint shifted(CGPoint location) const { return {location.x + _shift.x, location.y + _shift.y}; }
    /// True when that has moved all touches.
    bool shift(CGPoint moved);
    void finish(const Touch& touch, double time);
    void scheduleTimer();
    void scheduleSettling();

    std::weak_ptr<UIView> _root;
    double _fraction;
    std::shared_ptr<GestureArbiter> _arbiter;
    std::vector<DownTouch> _touches;
    /// One for all touches, so that it neither turns nor pinches.
    CGPoint _shift;
    std::uint64_t _lastSerial = 0;
    double _lastTime = 0;
    std::deque<std::function<void(State&)>> _queue;
    bool _isRunning = false;
    bool _isClosed = false;
    std::shared_ptr<Timer> _timer;
    std::optional<double> _timerDeadline;
    std::shared_ptr<Timer> _settlingTimer;
};

void TouchDispatcher::State::start() {
    _arbiter = std::make_shared<GestureArbiter>(_root, [weak = weak_from_this()](GestureArbiter::When when) {
        const std::shared_ptr<State> state = weak.lock();
        if (!state) {
            return;
        }
        if (when == GestureArbiter::When::now) {
            state->run([](State& self) { self._arbiter->settle(); });
        } else {
            state->scheduleSettling();
        }
    });
}

void TouchDispatcher::State::run(std::function<void(State&)> event) {
    const std::shared_ptr<State> self = shared_from_this();
    _queue.push_back(std::move(event));
    if (std::exchange(_isRunning, true)) {
        return;
    }
    while (!_queue.empty()) {
        const std::function<void(State&)> next = std::move(_queue.front());
        _queue.pop_front();
        // An exception of a delegate must not leave the queue closed for all that follows.
        guarded("a touch event threw an exception", [&] { next(*this); });
    }
    _isRunning = false;
    scheduleTimer();
}

void TouchDispatcher::State::handle(std::span<const Touch> touches) {
    while (!touches.empty() && !_isClosed) {
        const auto firstOther = std::find_if(touches.begin(), touches.end(), [](const Touch& touch) {
            return touch.phase != TouchPhase::moved;
        });
        const auto moves = static_cast<std::size_t>(firstOther - touches.begin());
        if (moves > 0) {
            move(touches.first(moves), timeOf(touches[moves - 1].timestamp));
            touches = touches.subspan(moves);
            continue;
        }
        const Touch& touch = touches.front();
        if (touch.phase == TouchPhase::began) {
            begin(touch, timeOf(touch.timestamp));
        } else {
            finish(touch, timeOf(touch.timestamp));
        }
        touches = touches.subspan(1);
    }
}

std::vector<TouchDispatcher::State::DownTouch>::iterator
TouchDispatcher::State::find(std::int64_t identifier) {
    return std::find_if(_touches.begin(), _touches.end(),
                        [identifier](const DownTouch& touch) { return touch.identifier == identifier; });
}

double TouchDispatcher::State::timeOf(double timestamp) {
    // At rest nothing depends on the past, so that one wild time stamp does not stop time for ever.
    const bool isFresh = _touches.empty() && _arbiter->isAtRest();
    if (isFresh) {
        _lastTime = std::isfinite(timestamp) ? timestamp : Clock::now();
    } else if (std::isfinite(timestamp)) {
        _lastTime = std::max(_lastTime, timestamp);
    }
    return _lastTime;
}

void TouchDispatcher::State::begin(const Touch& touch, double time) {
    if (!isPosition(touch.location)) {
        return;
    }
    _arbiter->advance(time);
    if (const auto old = find(touch.identifier); old != _touches.end()) {
        finish({touch.identifier, TouchPhase::cancelled, old->location, time}, time);
    }
    if (_touches.empty()) {
        _shift = {};
    }
    _arbiter->touchWillBegin(touch.location, time);
    const std::shared_ptr<UIView> root = _root.lock();
    if (!root || _touches.size() >= kMostTouches) {
        return;
    }
    root->layoutIfNeeded();
    GestureArbiter::Recognizers recognizers;
    const std::shared_ptr<UIView> hit = root->hitTest(touch.location);
    for (std::shared_ptr<UIView> view = hit; view; view = view == root ? nullptr : view->superview()) {
        const auto& own = ViewNode::of(*view).gestureRecognizers();
        recognizers.insert(recognizers.end(), own.begin(), own.end());
    }
    if (hit) {
        _touches.push_back({touch.identifier, ++_lastSerial, touch.location});
        _arbiter->touchBegan(_lastSerial, shifted(touch.location), time, recognizers);
    }
}

CGPoint TouchDispatcher::State::sumOfLocations() const {
    CGPoint sum;
    for (const DownTouch& touch : _touches) {
        sum = {sum.x + touch.location.x, sum.y + touch.location.y};
    }
    return sum;
}

bool TouchDispatcher::State::shift(CGPoint moved) {
    if (_shift == CGPoint{}) {
        // Not back to this before all have lifted: the way since they came must have no exact zero either.
        _shift = {_fraction, _fraction};
        return _fraction != 0;
    }
    const bool isStillX = std::abs(moved.x) < kStill;
    const bool isStillY = std::abs(moved.y) < kStill;
    if (isStillX != isStillY) {
        double& along = isStillX ? _shift.x : _shift.y;
        along = along == _fraction ? 2 * _fraction : _fraction;
    }
    return isStillX != isStillY;
}

void TouchDispatcher::State::move(std::span<const Touch> touches, double time) {
    _arbiter->advance(time);
    const CGPoint before = sumOfLocations();
    bool isMovement = false;
    std::vector<const DownTouch*> reported;
    for (const Touch& touch : touches) {
        const auto down = find(touch.identifier);
        if (down != _touches.end() && isPosition(touch.location)) {
            isMovement = isMovement || touch.location != down->location;
            down->location = touch.location;
            reported.push_back(&*down);
        }
    }
    const CGPoint after = sumOfLocations();
    if (isMovement && shift({after.x - before.x, after.y - before.y})) {
        reported.clear();
        std::transform(_touches.begin(), _touches.end(), std::back_inserter(reported),
                       [](const DownTouch& touch) { return &touch; });
    }
    std::vector<GestureArbiter::Move> moves;
    for (const DownTouch* touch : reported) {
        moves.push_back({touch->serial, shifted(touch->location)});
    }
    if (!moves.empty()) {
        _arbiter->touchesMoved(moves, time);
    }
}

void TouchDispatcher::State::finish(const Touch& touch, double time) {
    const bool isCancelled = touch.phase == TouchPhase::cancelled;
    const auto down = find(touch.identifier);
    if (down == _touches.end()) {
        return;
    }
    if (!isCancelled && touch.location != down->location) {
        move(std::span(&touch, 1), time);
    }
    _arbiter->advance(time);
    const std::uint64_t serial = down->serial;
    _touches.erase(down);
    _arbiter->touchEnded(serial, time, isCancelled);
}

void TouchDispatcher::State::cancelAll() {
    _touches.clear();
    _arbiter->cancelAll();
}

void TouchDispatcher::State::close() {
    _isClosed = true;
    run([](State& self) { self.cancelAll(); });
}

void TouchDispatcher::State::scheduleTimer() {
    const std::optional<double> deadline = _isClosed ? std::nullopt : _arbiter->nextDeadline();
    if (deadline == _timerDeadline) {
        return;
    }
    if (_timer) {
        _timer->invalidate();
        _timer.reset();
    }
    _timerDeadline = deadline;
    if (!deadline) {
        return;
    }
    // The touches' clock may have another origin than ours; what is left to wait is the same on both.
    const double interval = std::max(0.0, *deadline - _lastTime);
    _timer = Timer::scheduledTimer(interval, false, [weak = weak_from_this(), due = *deadline] {
        const std::shared_ptr<State> state = weak.lock();
        if (!state) {
            return;
        }
        state->_timerDeadline.reset();
        state->run([due](State& self) {
            self._lastTime = std::max(self._lastTime, due);
            self._arbiter->advance(due);
        });
    });
}

void TouchDispatcher::State::scheduleSettling() {
    if (_isClosed || (_settlingTimer && _settlingTimer->isValid())) {
        return;
    }
    _settlingTimer = Timer::scheduledTimer(0, false, [weak = weak_from_this()] {
        if (const std::shared_ptr<State> state = weak.lock()) {
            state->run([](State& self) { self._arbiter->settle(); });
        }
    });
}

TouchDispatcher::TouchDispatcher(std::weak_ptr<UIView> root, double fraction)
    : _state(std::make_shared<State>(std::move(root), fraction)) {
    _state->start();
}

TouchDispatcher::~TouchDispatcher() {
    if (!Thread::isMainThread()) {
        DispatchQueue::main().async([state = _state] { state->close(); });
        return;
    }
    guarded("cancelling touches threw an exception", [this] { _state->close(); });
}

void TouchDispatcher::handle(const Touch& touch) {
    handle(std::span(&touch, 1));
}

void TouchDispatcher::handle(std::span<const Touch> touches) {
    if (requireMainThread("TouchDispatcher::handle")) {
        _state->run(
            [batch = std::vector<Touch>(touches.begin(), touches.end())](auto& self) { self.handle(batch); });
    }
}

void TouchDispatcher::cancelAll() {
    if (requireMainThread("TouchDispatcher::cancelAll")) {
        _state->run([](auto& self) { self.cancelAll(); });
    }
}

std::size_t TouchDispatcher::touchCount() const {
    return _state->touchCount();
}

} // namespace trelmix
