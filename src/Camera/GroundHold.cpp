#include "Camera/GroundHold.h"

#include "Geo/GeoUtils.h"

#include <algorithm>
#include <cmath>

namespace trelmix::GroundHold {

namespace {

/// Screen points.
constexpr double kSmallestSpan = 1.0;
constexpr double kExact = 0.001;
constexpr double kExactEnough = 0.01;
/// Steps of zoom and radians to look at the slope with, and the longest that a step may be.
constexpr double kProbe = 1e-4;
constexpr double kLongestZoomStep = 1.0;
constexpr double kLongestTurn = 0.7;
constexpr int kMostSteps = 16;

ScreenPoint operator-(ScreenPoint a, ScreenPoint b) {
    return {a.x - b.x, a.y - b.y};
}

double lengthOf(ScreenPoint p) {
    return std::hypot(p.x, p.y);
}

double wrapped(double angle) {
    return std::remainder(angle, 2.0 * M_PI);
}

/// How two vectors of the screen differ: steps of zoom, and radians clockwise.
struct Difference {
    double zoom;
    double turn;
};

Difference difference(ScreenPoint from, ScreenPoint to) {
    return {std::log2(lengthOf(to) / lengthOf(from)),
            wrapped(std::atan2(to.y, to.x) - std::atan2(from.y, from.x))};
}

bool isFinite(const CameraPose& pose) {
    return std::isfinite(pose.target.x) && std::isfinite(pose.target.y) && std::isfinite(pose.latitude) &&
           std::isfinite(pose.zoom) && pose.rotation.isFinite();
}

/// A pose whose zoom and rotation are still doubles: a float's last digit would hide the slope.
struct Trial {
    CameraPose pose;
    double zoom;
    double rotation;
};

CameraPose poseOf(const Trial& trial) {
    CameraPose pose = trial.pose;
    pose.zoom = static_cast<float>(trial.zoom);
    pose.rotation = Radians{trial.rotation}.narrowed();
    return pose;
}

Trial trialOf(const CameraPose& pose) {
    return {pose, static_cast<double>(pose.zoom), pose.rotation.value};
}

/// By how much the second misses while the first is held.
struct Miss {
    CameraPose pose;
    ScreenPoint error;
};

Miss missOf(const Trial& trial, const CameraStage& stage, const HeldGround& first, const HeldGround& second) {
    const CameraPose pose = holding(poseOf(trial), stage, first);
    return {pose, CameraFrame(pose, stage).projectMapPoint(second.ground) - second.point};
}

/// One step of Newton's method on zoom and rotation; empty where the slopes say nothing.
std::optional<Trial> stepped(const Trial& trial, const Miss& here, const CameraStage& stage,
                             const HeldGround& first, const HeldGround& second) {
    // The float zoom moves in steps of a millionth: divide by what the probe really was.
    Trial closer = trial;
    closer.zoom = static_cast<double>(static_cast<float>(trial.zoom + kProbe * 16));
    Trial turned = trial;
    turned.rotation = Radians{trial.rotation + kProbe}.narrowed().value;
    const double zoomed = closer.zoom - static_cast<double>(static_cast<float>(trial.zoom));
    const double turn = turned.rotation - Radians{trial.rotation}.narrowed().value;
    const ScreenPoint byZoom = missOf(closer, stage, first, second).error - here.error;
    const ScreenPoint byTurn = missOf(turned, stage, first, second).error - here.error;
    const double a = byZoom.x / zoomed;
    const double c = byZoom.y / zoomed;
    const double b = byTurn.x / turn;
    const double d = byTurn.y / turn;
    const double determinant = a * d - b * c;
    const double zoomStep = -(d * here.error.x - b * here.error.y) / determinant;
    const double turnStep = -(a * here.error.y - c * here.error.x) / determinant;
    if (!std::isfinite(zoomStep) || !std::isfinite(turnStep)) {
        return std::nullopt;
    }
    return Trial{here.pose, trial.zoom + std::clamp(zoomStep, -kLongestZoomStep, kLongestZoomStep),
                 trial.rotation + std::clamp(turnStep, -kLongestTurn, kLongestTurn)};
}

} // namespace

CameraPose withTarget(CameraPose pose, WorldMapPoint target) {
    pose.target = target;
    pose.latitude = GeoUtils::coordinateOfScenePoint(target).lat;
    return pose;
}

double scaleAtTarget(const CameraPose& pose, const CameraStage& stage) {
    const CameraFrame frame(pose, stage);
    const ScreenPoint middle{stage.mapDimensions.x * 0.5, stage.mapDimensions.y * 0.5};
    const WorldMapPoint right = frame.unproject({middle.x + 1, middle.y});
    const WorldMapPoint left = frame.unproject({middle.x - 1, middle.y});
    return std::hypot(right.x - left.x, right.y - left.y) * 0.5;
}

CameraPose holding(const CameraPose& pose, const CameraStage& stage, const HeldGround& held) {
    if (!(stage.mapDimensions.x > 0 && stage.mapDimensions.y > 0)) {
        return pose;
    }
    const double exact = kExact * scaleAtTarget(pose, stage);
    CameraPose moved = pose;
    // More than one step only where the camera's distance depends on the target's latitude.
    for (int i = 0; i < kMostSteps; ++i) {
        const WorldMapPoint seen = CameraFrame(moved, stage).unproject(held.point);
        const double east = held.ground.x - seen.x;
        const double south = held.ground.y - seen.y;
        moved = withTarget(moved, {moved.target.x + east, moved.target.y + south});
        if (!(std::hypot(east, south) > exact)) {
            break;
        }
    }
    return isFinite(moved) ? moved : pose;
}

std::optional<CameraPose> holding(const CameraPose& pose, const CameraStage& stage, const HeldGround& first,
                                  const HeldGround& second) {
    const CameraFrame frame(pose, stage);
    const ScreenPoint seen = frame.projectMapPoint(second.ground) - frame.projectMapPoint(first.ground);
    const ScreenPoint wanted = second.point - first.point;
    if (!(lengthOf(seen) >= kSmallestSpan && lengthOf(wanted) >= kSmallestSpan)) {
        return std::nullopt;
    }
    const Difference guess = difference(seen, wanted);
    std::optional<Trial> trial = trialOf(pose);
    trial->zoom += guess.zoom;
    trial->rotation += guess.turn;
    for (int i = 0; i < kMostSteps && trial; ++i) {
        const Miss miss = missOf(*trial, stage, first, second);
        if (lengthOf(miss.error) < kExactEnough) {
            return isFinite(miss.pose) ? std::optional(miss.pose) : std::nullopt;
        }
        trial = stepped(*trial, miss, stage, first, second);
    }
    return std::nullopt;
}

CameraPose holdingMiddle(const CameraPose& pose, const CameraStage& stage, const HeldGround& middle,
                         const HeldGround& first, const HeldGround& second, Freedom freedom) {
    const ScreenPoint wanted = second.point - first.point;
    CameraPose found = holding(pose, stage, middle);
    for (int i = 0; i < kMostSteps && (freedom.zoom || freedom.rotation); ++i) {
        const CameraFrame frame(found, stage);
        const ScreenPoint seen = frame.projectMapPoint(second.ground) - frame.projectMapPoint(first.ground);
        if (!(lengthOf(seen) >= kSmallestSpan && lengthOf(wanted) >= kSmallestSpan)) {
            break;
        }
        const Difference rest = difference(seen, wanted);
        const double zoomStep = freedom.zoom ? rest.zoom : 0.0;
        const double turn = freedom.rotation ? rest.turn : 0.0;
        if (std::hypot(zoomStep, turn) * lengthOf(wanted) < kExact) {
            break;
        }
        Trial trial = trialOf(found);
        trial.zoom += std::clamp(zoomStep, -kLongestZoomStep, kLongestZoomStep);
        trial.rotation += turn;
        found = holding(poseOf(trial), stage, middle);
    }
    return isFinite(found) ? found : pose;
}

} // namespace trelmix::GroundHold
