#pragma once

#include <Trelmix/Platform/CGGeometry.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace trelmix {

class UIGestureRecognizer;
class UIView;

/// Brings one event to the recognisers of a view tree and decides which of those that want to begin may.
///
/// Every event runs in four steps, so that nobody sees half of it: all recognisers take it in, those that may
/// begin begin, the targets are told, and what is over comes to rest. Owned by a `TouchDispatcher`. Main
/// thread only.
///
/// Larger than most classes: the four steps walk the same participants.
class GestureArbiter : public std::enable_shared_from_this<GestureArbiter> {
public:
    using Recognizers = std::vector<std::shared_ptr<UIGestureRecognizer>>;
    struct Move {
        std::uint64_t serial = 0;
        CGPoint location;
    };

    /// When something has changed outside an event: at once, or from the run loop (inside a destructor nobody
    /// may be called).
    enum class When { now, soon };

    /// @param onUnsettled answers with `settle()` between two events.
    GestureArbiter(std::weak_ptr<UIView> root, std::function<void(When)> onUnsettled);

    void touchWillBegin(CGPoint location, double time);
    void touchBegan(std::uint64_t serial, CGPoint location, double time, const Recognizers& recognizers);
    void touchesMoved(std::span<const Move> moves, double time);
    void touchEnded(std::uint64_t serial, double time, bool isCancelled);
    /// Lets every deadline up to `time` pass, one after the other.
    void advance(double time);
    void cancelAll();
    /// An event of its own: finishes what a change from outside has left open.
    void settle();
    void askToSettle(When when);

    std::optional<double> nextDeadline();
    /// True when no recogniser is busy.
    bool isAtRest();

private:
    Recognizers participants();
    bool deadlinesPass(double time);
    void withdrawDetached();
    void finishEvent();
    void resolve();
    bool resolveOne(const std::shared_ptr<UIGestureRecognizer>& recognizer);
    void admit(const std::shared_ptr<UIGestureRecognizer>& recognizer);
    bool isBlocked(const std::shared_ptr<UIGestureRecognizer>& recognizer);
    bool sendActions();

    std::weak_ptr<UIView> _root;
    std::function<void(When)> _onUnsettled;
    std::vector<std::weak_ptr<UIGestureRecognizer>> _participants;
};

} // namespace trelmix
