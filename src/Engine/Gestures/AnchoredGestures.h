#pragma once

#include "Camera/GroundHold.h"
#include "Engine/Gestures/AnchoredRecognizer.h"
#include "Engine/Gestures/CameraGestures.h"

#include <vector>

namespace trelmix {

class TrelmixMapEngineSceneView;

/// Every finger holds the ground that it went down on; two that move up or down together tilt, and one that
/// moves after a tap zooms.
///
/// Between two events it remembers where the fingers were, and the ground there. Fingers that came or went, a
/// limit that was met, a camera that somebody else set: each only means that the ground is taken anew where
/// the fingers were last, so that nothing jumps.
class AnchoredGestures final : public CameraGestures {
public:
    /// Both live as long as the engine.
    AnchoredGestures(TrelmixMapEngineSceneView& engine, const GestureFlags& flags)
        : _engine(engine), _flags(flags) {}

    std::vector<Gesture> gestures() override;
    void pause() override;
    CGPoint centre(CGPoint location) const override;
    void doubleTap(CGPoint location) override;
    bool recognizesTogether(const UIGestureRecognizer& asked,
                            const UIGestureRecognizer& other) const override;

private:
    using Finger = AnchoredRecognizer::Finger;
    struct Held {
        std::uint64_t id = 0;
        HeldGround at;
    };

    /// What the fingers do until they lift.
    enum class Mode { hold, tilt, zoom };

    void follow(const AnchoredRecognizer& recognizer);
    bool isSameFingers(const std::vector<Finger>& fingers) const;
    void hold(const std::vector<Finger>& fingers, CGPoint Finger::*where);
    void holdAnew();
    void moveTo(const std::vector<Finger>& fingers);
    void tilt(const std::vector<Finger>& fingers);
    void zoomAlong(const std::vector<Finger>& fingers);
    Mode modeOf(const AnchoredRecognizer& recognizer, const std::vector<Finger>& fingers) const;
    void zoomBy(float steps, CGPoint location);
    struct Solution {
        CameraPose pose;
        /// Whether every finger holds its ground.
        bool isExact = false;
    };
    Solution solutionFor(const std::vector<HeldGround>& wanted) const;
    struct Middle {
        HeldGround held;
        bool isLimited = false;
    };
    /// The ground that was in the fingers' middle, or what is as near to it as the map may move.
    Middle middleOf(const std::vector<HeldGround>& wanted) const;
    CameraPose poseAboutMiddle(const std::vector<HeldGround>& wanted, const HeldGround& middleHeld) const;
    CameraPose poseAboutTarget(const std::vector<HeldGround>& wanted) const;
    float limitedZoom(float internalZoom) const;
    void set(const CameraPose& pose);

    TrelmixMapEngineSceneView& _engine;
    const GestureFlags& _flags;
    std::vector<Held> _held;
    /// The camera for which `_held` is true.
    CameraPose _pose;
    Mode _mode = Mode::hold;
    /// Where the finger of a zoom came down, and the ground there.
    HeldGround _zoomCentre;
};

} // namespace trelmix
