#pragma once

#include "Platform/View/UIGestureRecognizer.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace trelmix {

/// Watches the first two fingers from the moment they mean something until all are up. Continuous.
class AnchoredRecognizer final : public UIGestureRecognizer {
public:
    /// Points that the fingers together move before the gesture begins.
    static constexpr double kThreshold = 10.0;

    struct Finger {
        std::uint64_t id = 0;
        /// Points, in the recogniser's view.
        CGPoint start;
        CGPoint location;
        /// Seconds of the touches' clock.
        double time = 0;
    };
    /// The first two that are down, the older first.
    std::vector<Finger> fingers() const;
    /// Whether the one finger came down where another has just tapped.
    bool isAfterTap() const { return _isAfterTap && touches().size() == 1; }

protected:
    void touchBegan(const TrackedTouch& touch) override;
    void touchesMoved(double time) override;
    void touchEnded(const TrackedTouch& touch) override;

private:
    bool isClear() const;

    struct Tap {
        CGPoint location;
        double time = 0;
    };
    std::optional<Tap> _lastTap;
    double _touchedAt = 0;
    bool _isAfterTap = false;
};

} // namespace trelmix
