#pragma once

#include "Platform/View/UIGestureRecognizer.h"

#include <deque>

namespace trelmix {

/// One or more fingers that move in a direction. Continuous.
///
/// The translation is that of the fingers' middle, counted from the first touch on; a finger that comes or
/// goes does not move it.
class UIPanGestureRecognizer : public UIGestureRecognizer {
public:
    /// Points the middle moves before the gesture begins.
    static constexpr double kThreshold = 10.0;

    /// Points in a view's coordinates (empty: the root view's).
    CGPoint translation(const std::shared_ptr<UIView>& view) const {
        return vectorInView(_translation, view);
    }
    /// What `translation` counts on from. Vectors that are not finite are ignored.
    void setTranslation(CGPoint translation, const std::shared_ptr<UIView>& view);
    /// Points a second in a view's coordinates, over the last tenth of a second; 0 when the fingers rested
    /// that long.
    CGPoint velocity(const std::shared_ptr<UIView>& view) const;

protected:
    void touchBegan(const TrackedTouch& touch) override;
    void touchesMoved(double time) override;
    void touchEnded(const TrackedTouch& touch) override;
    void reset() override;

private:
    struct Sample {
        double time = 0;
        CGPoint travelled;
    };
    void addSample(double time);

    CGPoint _middle;
    CGPoint _travelled;
    CGPoint _translation;
    double _time = 0;
    std::deque<Sample> _samples;
};

} // namespace trelmix
