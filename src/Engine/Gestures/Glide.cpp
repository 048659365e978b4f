#include "Engine/Gestures/Glide.h"

#include <algorithm>
#include <cmath>

namespace trelmix {

namespace {

/// Points from the middle at which zoom and rotation are taken as movement: about where fingers are.
constexpr double kFingersFromMiddle = 100.0;
/// Points short of the end at which the eye sees no movement.
constexpr double kUnseen = 0.25;
/// Seconds; events as near to each other as this have no speed.
constexpr double kShortest = 0.001;
/// Where the map may travel at most, views and levels of zoom: fingers that jumped are no throw.
constexpr double kMostViews = 20.0;
constexpr double kMostLevels = 4.0;
constexpr double kMostTurn = 6.0;

double pointsOf(WorldMapPoint ground, double zoom, double turn, double scale) {
    return std::hypot(ground.x, ground.y) / scale + kFingersFromMiddle * (std::abs(zoom) + std::abs(turn));
}

} // namespace

void Glide::record(const CameraPose& before, const CameraPose& after, const CameraStage& stage,
                   ScreenPoint point, double time) {
    if (before.viewingAngle != after.viewingAngle) {
        forget(); // tilting is no throw, and moves the ground under the fingers
        return;
    }
    const double began = _steps.empty() ? time - kWindow : _steps.back().ended;
    const WorldMapPoint from = CameraFrame(before, stage).unproject(point);
    const WorldMapPoint to = CameraFrame(after, stage).unproject(point);
    _steps.push_back({began,
                      time,
                      point,
                      {to.x - from.x, to.y - from.y},
                      static_cast<double>(after.zoom - before.zoom),
                      std::remainder((after.rotation - before.rotation).value, 2.0 * M_PI)});
    while (_steps.front().ended < time - kWindow) {
        _steps.pop_front();
    }
}

std::optional<Glide::Travel> Glide::travel(double time) const {
    Travel sum;
    double began = time;
    // Not up to `time`: a finger lifts a moment after its last movement, and has not slowed down for that.
    double ended = time - kWindow;
    for (const Step& step : _steps) {
        if (step.ended >= time - kWindow && step.ended <= time) {
            began = std::min(began, step.began);
            ended = std::max(ended, step.ended);
            sum.point = step.point;
            sum.ground.x += step.ground.x;
            sum.ground.y += step.ground.y;
            sum.zoom += step.zoom;
            sum.turn += step.turn;
        }
    }
    if (!(ended - began >= kShortest)) {
        return std::nullopt;
    }
    const double share = kTimeConstant / (ended - began);
    return Travel{
        sum.point, {sum.ground.x * share, sum.ground.y * share}, sum.zoom * share, sum.turn * share};
}

std::optional<Glide::Motion> Glide::motion(const CameraPose& pose, const CameraStage& stage,
                                           const Limits& limits, double time) const {
    auto way = travel(time);
    const double scale = GroundHold::scaleAtTarget(pose, stage);
    const double points = way ? pointsOf(way->ground, way->zoom, way->turn, scale) : 0.0;
    if (!(points > kSlowest * kTimeConstant) || !std::isfinite(points)) {
        return std::nullopt;
    }
    const double farthest = kMostViews * scale * std::max(stage.mapDimensions.x, stage.mapDimensions.y);
    const double shorter =
        std::min(1.0, farthest / std::max(std::hypot(way->ground.x, way->ground.y), scale));
    way->ground = {way->ground.x * shorter, way->ground.y * shorter};
    const double zoom = std::clamp(way->zoom, -kMostLevels, kMostLevels);
    const double levels = static_cast<double>(limits.zoom(pose.zoom + static_cast<float>(zoom)) - pose.zoom);
    const double turn = std::clamp(way->turn, -kMostTurn, kMostTurn);
    const WorldMapPoint held = CameraFrame(pose, stage).unproject(way->point);

    auto unlimited = [=, way = *way](double share) {
        CameraPose moved = pose;
        moved.zoom += static_cast<float>(levels * share);
        moved.rotation = Radians{pose.rotation.value + turn * share}.narrowed();
        return GroundHold::holding(
            moved, stage, {{held.x + way.ground.x * share, held.y + way.ground.y * share}, way.point});
    };
    // A bound is run into gently: the whole way is bent to where it may end.
    const WorldMapPoint end = unlimited(1.0).target;
    const WorldMapPoint allowed = limits.target(end);
    const double duration = kTimeConstant * std::log(points / kUnseen);
    const double whole = 1.0 - std::exp(-duration / kTimeConstant);
    return Motion{[=](double elapsed) {
                      const double share = (1.0 - std::exp(-elapsed / kTimeConstant)) / whole;
                      const CameraPose moved = unlimited(share);
                      return GroundHold::withTarget(moved, {moved.target.x + (allowed.x - end.x) * share,
                                                            moved.target.y + (allowed.y - end.y) * share});
                  },
                  duration};
}

} // namespace trelmix
