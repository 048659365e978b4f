#pragma once

#include "Platform/View/Touch.h"

#include <cstddef>
#include <memory>
#include <span>

namespace trelmix {

class UIView;

/// Feeds a host's touches to the recognisers of one view tree.
///
/// A touch belongs to the recognisers of the view it lands on and of those that hold that view, until it is
/// up. What only time decides (a long press, a tap that may become a double one) is driven by a timer of the
/// main run loop.
///
/// Input is taken as it comes: a `began` of an identifier that is down cancels the old touch first; unknown
/// identifiers and positions that are not finite (or beyond 10 million points) are ignored, except that an
/// `ended` or `cancelled` with such a position ends its touch where it was last; time that runs backwards or
/// is not finite stands still; a touch that is reported where it already was has not moved. A touch that is
/// never ended stays down until its identifier comes again or
/// `cancelAll` is called, which a host does when it loses the input (another window in front, a device
/// unplugged).
///
/// Refers to the root view weakly; may be called and destroyed inside a gesture's action: the call then takes
/// effect after the event under way. Main thread only; elsewhere a call is a caller's fault and ignored.
///
/// Larger than most classes: every kind of event has its check, its turn after the event under way, and its
/// timer.
class TouchDispatcher {
public:
    /// @param fraction points by which all touches are shifted as soon as one moves, and that again to and
    /// fro along an axis on which their middle would else stand still. A digitiser reports fractions and
    /// never an exact zero; a mouse reports whole points, and what takes an exact zero for no movement needs
    /// this.
    explicit TouchDispatcher(std::weak_ptr<UIView> root, double fraction = 0);
    /// Cancels what is under way. On another thread that happens with the next pump.
    ~TouchDispatcher();
    TouchDispatcher(const TouchDispatcher&) = delete;
    TouchDispatcher& operator=(const TouchDispatcher&) = delete;

    void handle(const Touch& touch);
    /// Touches of one moment: neighbouring moves count as one event, so that fingers that move together are
    /// not taken for a turn or a pinch. Hosts gather the moves of a frame here.
    void handle(std::span<const Touch> touches);
    void cancelAll();
    /// Touches that are down on some view.
    std::size_t touchCount() const;

private:
    class State;
    std::shared_ptr<State> _state;
};

} // namespace trelmix
