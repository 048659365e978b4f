#pragma once

#include <Trelmix/Platform/CGGeometry.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace trelmix {

class GestureArbiter;
class UIGestureRecognizer;
class UIView;

enum class UIGestureRecognizerState { possible, began, changed, ended, cancelled, failed };

/// Decides which gestures may run together. Main thread.
class UIGestureRecognizerDelegate {
public:
    virtual ~UIGestureRecognizerDelegate() = default;
    /// Asked of the delegates of both recognisers, each time with its own first; one yes is enough.
    virtual bool gestureRecognizerShouldRecognizeSimultaneouslyWith(UIGestureRecognizer&,
                                                                    UIGestureRecognizer&) {
        return false;
    }
};

/// Watches the touches that land in its view and in the views below it, and tells its targets of one kind of
/// gesture.
///
/// A continuous gesture goes possible, began, changed ..., ended or cancelled; a discrete one possible,
/// ended; either may fail instead. Targets hear of every step except failing. When the last of its touches is
/// up it is possible again. Once it begins, the others that share a touch with it and may not run together
/// with it fail until their touches are up; of two that begin in the same event, the one that was added first
/// wins.
///
/// Shared between its view and whoever reads it; refers to view and delegate weakly. Targets and delegates
/// may change, disable, remove or release anything, this recogniser included. Main thread only.
///
/// Larger than most classes: what every recogniser has, which is a public part, a part for kinds of gestures
/// and a part for the arbiter.
class UIGestureRecognizer : public std::enable_shared_from_this<UIGestureRecognizer> {
public:
    using State = UIGestureRecognizerState;
    using Action = std::function<void(UIGestureRecognizer&)>;

    virtual ~UIGestureRecognizer();
    UIGestureRecognizer(const UIGestureRecognizer&) = delete;
    UIGestureRecognizer& operator=(const UIGestureRecognizer&) = delete;

    State state() const { return _state; }
    /// Empty while it belongs to no view.
    std::shared_ptr<UIView> view() const { return _view.lock(); }
    bool isEnabled() const { return _isEnabled; }
    /// Disabling cancels a gesture under way and forgets its touches.
    void setIsEnabled(bool enabled);

    /// The action captures its target weakly.
    void addTarget(Action action);
    /// Holds this gesture back until the other has failed; when the other recognises, this one fails.
    /// Requirements that would close a circle are refused.
    void requireGestureRecognizerToFail(const std::shared_ptr<UIGestureRecognizer>& other);
    std::shared_ptr<UIGestureRecognizerDelegate> delegate() const { return _delegate.lock(); }
    void setDelegate(std::weak_ptr<UIGestureRecognizerDelegate> delegate) { _delegate = std::move(delegate); }

    /// The middle of the gesture's touches in a view's coordinates (empty: the root view's); after the last
    /// one is up, where that was.
    CGPoint locationInView(const std::shared_ptr<UIView>& view) const;
    /// Seconds of the touches' clock at the last event of one of its touches.
    double time() const { return _time; }
    /// Touches that are down.
    std::size_t numberOfTouches() const { return _touches.size(); }

protected:
    struct TrackedTouch {
        std::uint64_t serial = 0;
        CGPoint start;
        CGPoint location;
        double time = 0;
    };

    UIGestureRecognizer();

    // What kinds decide. The touch hooks come only while the gesture is possible or under way, with
    // `touches()` already changed; an ended touch has left it. Times are seconds of the touches' clock.
    virtual void touchBegan(const TrackedTouch& touch) = 0;
    virtual void touchesMoved(double time) = 0;
    virtual void touchEnded(const TrackedTouch& touch) = 0;
    /// Before a touch lands anywhere, so that a kind that waits for it can tell whether it comes too late or
    /// too far.
    virtual void touchWillBegin(CGPoint, double) {}
    /// When `deadlineReached` is to come; asked while the gesture is possible and does not want to begin.
    virtual std::optional<double> deadline() const { return std::nullopt; }
    /// Fails or recognises; else the deadline must have moved.
    virtual void deadlineReached() {}
    virtual bool isDiscrete() const { return false; }
    /// True while it waits for further touches with none down.
    virtual bool isWaiting() const { return false; }
    virtual bool acceptsTouch() const { return true; }
    /// True when a gesture that has ended may start anew with the touches that are still down.
    virtual bool restartsWithRemainingTouches() const { return false; }
    /// How many of the first touches make up the gesture's location.
    virtual std::size_t locatingTouchCount() const { return SIZE_MAX; }
    virtual void reset() {}

    // What kinds announce.
    void recognize();
    void change();
    void end();
    void cancel();
    void fail();

    const std::vector<TrackedTouch>& touches() const { return _touches; }
    bool isActive() const { return _state == State::began || _state == State::changed; }
    bool wantsRecognition() const { return _wantsRecognition; }
    CGPoint centroid() const;
    /// A place of the root view, and a distance between two, in a view's coordinates; and back.
    CGPoint pointInView(CGPoint point, const std::shared_ptr<UIView>& view) const;
    CGPoint vectorInView(CGPoint vector, const std::shared_ptr<UIView>& view) const;
    CGPoint vectorFromView(CGPoint vector, const std::shared_ptr<UIView>& view) const;

private:
    friend class GestureArbiter;
    friend class ViewNode;

    void setView(std::weak_ptr<UIView> view);
    void withdraw();
    bool isAtRest() const;
    bool isOpen() const { return _state == State::possible || isActive(); }
    bool dependsOn(const UIGestureRecognizer& other) const;
    bool hadTouch(std::uint64_t serial) const;
    bool sharesTouchWith(const UIGestureRecognizer& other) const;
    std::optional<double> openDeadline() const;

    void beginTouch(std::uint64_t serial, CGPoint location, double time);
    bool moveTouch(std::uint64_t serial, CGPoint location, double time);
    void endTouch(std::uint64_t serial, double time, bool isCancelled);
    void dropTouches();
    void afterCycle();
    void updateLocation();

    State _state = State::possible;
    bool _isEnabled = true;
    bool _wantsRecognition = false;
    bool _actionDue = false;
    bool _beganSent = false;
    CGPoint _location;
    double _time = 0;
    std::vector<TrackedTouch> _touches;
    std::vector<std::uint64_t> _endedSerials;
    std::vector<Action> _actions;
    std::vector<std::weak_ptr<UIGestureRecognizer>> _requirements;
    std::weak_ptr<UIView> _view;
    std::weak_ptr<UIView> _root;
    std::weak_ptr<UIGestureRecognizerDelegate> _delegate;
    std::weak_ptr<GestureArbiter> _arbiter;
};

} // namespace trelmix
