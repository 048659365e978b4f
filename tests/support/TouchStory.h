#pragma once

#include "Platform/Foundation/Clock.h"
#include "Platform/Foundation/RunLoop.h"
#include "Platform/View/TouchDispatcher.h"

#include <Trelmix/Platform/UIView.h>

#include <initializer_list>
#include <memory>
#include <utility>
#include <vector>

namespace trelmix {

/// Tells what fingers do on a view, one sentence after the other, on a clock that stands still in between:
///
///     TouchStory story(engineView);
///     story.down(1, {100, 300}).move(1, {130, 300}).up(1).wait(0.6);
///
/// Every event comes one frame (1/60 s) after the one before it; timers that are due by then have run.
class TouchStory {
public:
    explicit TouchStory(std::weak_ptr<UIView> root)
        : _dispatcher(std::make_shared<TouchDispatcher>(std::move(root))) {
        Clock::set(Clock::now());
    }

    TouchStory& down(int finger, CGPoint at) { return send(finger, TouchPhase::began, at); }
    TouchStory& move(int finger, CGPoint to) { return send(finger, TouchPhase::moved, to); }
    /// Where it is; NaN is no position.
    TouchStory& up(int finger) { return send(finger, TouchPhase::ended, kNowhere); }
    TouchStory& up(int finger, CGPoint at) { return send(finger, TouchPhase::ended, at); }
    TouchStory& cancel(int finger) { return send(finger, TouchPhase::cancelled, kNowhere); }
    /// Several fingers in one event.
    TouchStory& move(std::initializer_list<std::pair<int, CGPoint>> fingers) {
        wait(kFrame);
        std::vector<Touch> touches;
        for (const auto& [finger, to] : fingers) {
            touches.push_back({finger, TouchPhase::moved, to, Clock::now()});
        }
        _dispatcher->handle(touches);
        return *this;
    }
    TouchStory& tap(CGPoint at, int finger = 1) { return down(finger, at).up(finger); }
    TouchStory& cancelAll() {
        _dispatcher->cancelAll();
        return *this;
    }
    TouchStory& wait(double seconds) {
        Clock::set(Clock::now() + seconds);
        RunLoop::main().drain();
        return *this;
    }

    std::shared_ptr<TouchDispatcher>& dispatcher() { return _dispatcher; }

private:
    static constexpr double kFrame = 1.0 / 60;
    static constexpr CGPoint kNowhere{__builtin_nan(""), __builtin_nan("")};

    TouchStory& send(int finger, TouchPhase phase, CGPoint location) {
        wait(kFrame);
        _dispatcher->handle({finger, phase, location, Clock::now()});
        return *this;
    }

    std::shared_ptr<TouchDispatcher> _dispatcher;
};

} // namespace trelmix
