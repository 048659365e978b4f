#pragma once

#include "Camera/GroundHold.h"

#include <deque>
#include <functional>
#include <optional>

namespace trelmix {

/// How a thrown map runs on: what the fingers' last steps did to the camera goes on and slows down.
///
/// Pan, zoom and rotation are one movement: the ground under the point where the fingers were last keeps its
/// speed while the map zooms and turns about it. Pure arithmetic; knows no engine.
class Glide {
public:
    /// Seconds in which the speed falls to 1/e.
    static constexpr double kTimeConstant = 0.325;
    /// Seconds of the fingers' last movement that count.
    static constexpr double kWindow = 0.05;
    /// Points a second below which a map stands when it is let go.
    static constexpr double kSlowest = 60.0;

    struct Limits {
        std::function<float(float internalZoom)> zoom;
        std::function<WorldMapPoint(WorldMapPoint)> target;
    };
    struct Motion {
        /// The camera after some seconds, up to `duration`.
        std::function<CameraPose(double elapsed)> pose;
        double duration = 0;
    };

    /// A gesture has moved the camera, the fingers' middle now at a point of the screen. Times are seconds.
    void record(const CameraPose& before, const CameraPose& after, const CameraStage& stage,
                ScreenPoint point, double time);
    void forget() { _steps.clear(); }
    /// What goes on when the fingers lift; empty where they stood, or the times make no sense.
    std::optional<Motion> motion(const CameraPose& pose, const CameraStage& stage, const Limits& limits,
                                 double time) const;

private:
    struct Step {
        double began;
        double ended;
        ScreenPoint point;
        /// Map points that the ground under the point moved, levels of zoom, radians.
        WorldMapPoint ground;
        double zoom;
        double turn;
    };
    struct Travel {
        ScreenPoint point;
        WorldMapPoint ground;
        double zoom = 0;
        double turn = 0;
    };
    std::optional<Travel> travel(double time) const;

    std::deque<Step> _steps;
};

} // namespace trelmix
