#include "Engine/Gestures/AnchoredGestures.h"

#include "Engine/Gestures/TwoFingerTapRecognizer.h"
#include "Engine/TrelmixMapEngineSceneView.h"
#include "Platform/View/UILongPressGestureRecognizer.h"

#include <algorithm>
#include <cmath>

namespace trelmix {

namespace {

/// How much faster than at the target far ground may move the map.
constexpr double kFastest = 4.0;
/// Two fingers tilt when each moves this much more up or down than sideways ...
constexpr double kUprightFactor = 1.5;
/// ... and the slower one at least this share of the faster.
constexpr double kTogether = 0.3;
/// Points that a finger moves down after a tap to zoom in by one.
constexpr double kPointsPerZoom = 100.0;
/// Seconds in which a double tap zooms.
constexpr double kZoomDuration = 0.3;

ScreenPoint screenPoint(CGPoint p) {
    return {p.x, p.y};
}

ScreenPoint middle(ScreenPoint a, ScreenPoint b) {
    return {(a.x + b.x) * 0.5, (a.y + b.y) * 0.5};
}

bool isUpright(const AnchoredRecognizer::Finger& finger) {
    return std::abs(finger.location.y - finger.start.y) >
           kUprightFactor * std::abs(finger.location.x - finger.start.x);
}

/// Whether two fingers have moved up together, or down.
bool meansTilt(const std::vector<AnchoredRecognizer::Finger>& fingers) {
    if (fingers.size() != 2 || !isUpright(fingers[0]) || !isUpright(fingers[1])) {
        return false;
    }
    const double first = fingers[0].location.y - fingers[0].start.y;
    const double second = fingers[1].location.y - fingers[1].start.y;
    return first * second > 0 && std::min(std::abs(first), std::abs(second)) >=
                                     kTogether * std::max(std::abs(first), std::abs(second));
}

} // namespace

std::vector<CameraGestures::Gesture> AnchoredGestures::gestures() {
    return {{std::make_shared<AnchoredRecognizer>(),
             [this](UIGestureRecognizer& r) { follow(static_cast<AnchoredRecognizer&>(r)); }},
            {std::make_shared<TwoFingerTapRecognizer>(), [this](UIGestureRecognizer& r) {
                 zoomBy(-1.0F, static_cast<TwoFingerTapRecognizer&>(r).middle());
             }}};
}

bool AnchoredGestures::recognizesTogether(const UIGestureRecognizer& asked,
                                          const UIGestureRecognizer& other) const {
    // A press that is held and then dragged moves the map; its own end is then cancelled.
    return dynamic_cast<const UILongPressGestureRecognizer*>(&asked) != nullptr ||
           dynamic_cast<const UILongPressGestureRecognizer*>(&other) != nullptr;
}

void AnchoredGestures::pause() {
    _held.clear();
    _mode = Mode::hold;
}

CGPoint AnchoredGestures::centre(CGPoint location) const {
    return _mode == Mode::zoom ? CGPoint{_zoomCentre.point.x, _zoomCentre.point.y} : location;
}

void AnchoredGestures::follow(const AnchoredRecognizer& recognizer) {
    const std::vector<Finger> fingers = recognizer.fingers();
    if (recognizer.state() == UIGestureRecognizerState::began) {
        hold(fingers, &Finger::start);
        _mode = modeOf(recognizer, fingers);
        _zoomCentre = _held.front().at;
        _engine.gestures().cancelPress(_mode == Mode::zoom);
    } else if (!isSameFingers(fingers)) {
        hold(fingers, &Finger::location);
    } else if (_engine.cameraProjection()->pose() != _pose) {
        holdAnew();
    }
    if (fingers.empty()) {
        pause();
    } else if (_mode == Mode::tilt) {
        tilt(fingers);
    } else if (_mode == Mode::zoom) {
        zoomAlong(fingers);
    } else {
        moveTo(fingers);
    }
}

AnchoredGestures::Mode AnchoredGestures::modeOf(const AnchoredRecognizer& recognizer,
                                                const std::vector<Finger>& fingers) const {
    if (_flags.zoom && recognizer.isAfterTap()) {
        return Mode::zoom;
    }
    return _flags.tilt && meansTilt(fingers) ? Mode::tilt : Mode::hold;
}

bool AnchoredGestures::isSameFingers(const std::vector<Finger>& fingers) const {
    return std::equal(fingers.begin(), fingers.end(), _held.begin(), _held.end(),
                      [](const Finger& finger, const Held& held) { return finger.id == held.id; });
}

void AnchoredGestures::hold(const std::vector<Finger>& fingers, CGPoint Finger::*where) {
    _held.clear();
    for (const Finger& finger : fingers) {
        _held.push_back({finger.id, {{}, screenPoint(finger.*where)}});
    }
    holdAnew();
}

void AnchoredGestures::holdAnew() {
    const CameraProjection& projection = *_engine.cameraProjection();
    for (Held& held : _held) {
        held.at.ground = projection.frame().unproject(held.at.point);
    }
    _pose = projection.pose();
}

void AnchoredGestures::moveTo(const std::vector<Finger>& fingers) {
    const CameraFrame& frame = _engine.cameraProjection()->frame();
    std::vector<HeldGround> wanted;
    bool hasMoved = false;
    for (std::size_t i = 0; i < fingers.size(); ++i) {
        wanted.push_back({_held[i].at.ground, screenPoint(fingers[i].location)});
        if (!frame.seesGround(wanted[i].point)) {
            return; // beyond the horizon there is nothing to hold
        }
        hasMoved =
            hasMoved || wanted[i].point.x != _held[i].at.point.x || wanted[i].point.y != _held[i].at.point.y;
    }
    if (!hasMoved) {
        return;
    }
    const auto [pose, isExact] = solutionFor(wanted);
    set(pose);
    if (isExact && _engine.cameraProjection()->pose() == pose) {
        for (std::size_t i = 0; i < fingers.size(); ++i) {
            _held[i].at.point = wanted[i].point;
        }
        _pose = pose;
    } else {
        hold(fingers, &Finger::location);
    }
}

AnchoredGestures::Solution AnchoredGestures::solutionFor(const std::vector<HeldGround>& wanted) const {
    const CameraStage& stage = _engine.cameraProjection()->stage();
    if (!_flags.scroll) {
        return {wanted.size() == 2 ? poseAboutTarget(wanted) : _pose, false};
    }
    const auto [middleHeld, isLimited] = middleOf(wanted);
    if (wanted.size() == 1) {
        return {GroundHold::holding(_pose, stage, isLimited ? middleHeld : wanted[0]), !isLimited};
    }
    if (!isLimited && _flags.zoom && _flags.rotation) {
        const auto both = GroundHold::holding(_pose, stage, wanted[0], wanted[1]);
        if (both && limitedZoom(both->zoom) == both->zoom) {
            return {*both, true};
        }
    }
    return {poseAboutMiddle(wanted, middleHeld), false};
}

AnchoredGestures::Middle AnchoredGestures::middleOf(const std::vector<HeldGround>& wanted) const {
    const CameraFrame& frame = _engine.cameraProjection()->frame();
    const ScreenPoint before = middle(_held.front().at.point, _held.back().at.point);
    const ScreenPoint now = middle(wanted.front().point, wanted.back().point);
    const WorldMapPoint held = frame.unproject(before);
    const WorldMapPoint seen = frame.unproject(now);
    const double way = std::hypot(held.x - seen.x, held.y - seen.y);
    const double longest = kFastest * GroundHold::scaleAtTarget(_pose, _engine.cameraProjection()->stage()) *
                           std::hypot(now.x - before.x, now.y - before.y);
    if (!(way > longest)) {
        return {{held, now}, false};
    }
    const double share = longest / way;
    return {{{seen.x + (held.x - seen.x) * share, seen.y + (held.y - seen.y) * share}, now}, true};
}

CameraPose AnchoredGestures::poseAboutMiddle(const std::vector<HeldGround>& wanted,
                                             const HeldGround& middleHeld) const {
    const CameraStage& stage = _engine.cameraProjection()->stage();
    const GroundHold::Freedom freedom{_flags.zoom, _flags.rotation};
    CameraPose pose = GroundHold::holdingMiddle(_pose, stage, middleHeld, wanted[0], wanted[1], freedom);
    const float zoom = limitedZoom(pose.zoom);
    if (zoom == pose.zoom) {
        return pose;
    }
    pose.zoom = zoom;
    return GroundHold::holdingMiddle(pose, stage, middleHeld, wanted[0], wanted[1], {false, _flags.rotation});
}

float AnchoredGestures::limitedZoom(float internalZoom) const {
    return _engine.cameraPath().limitedZoom(internalZoom + 1.0F) - 1.0F;
}

CameraPose AnchoredGestures::poseAboutTarget(const std::vector<HeldGround>& wanted) const {
    const ScreenPoint before{_held[1].at.point.x - _held[0].at.point.x,
                             _held[1].at.point.y - _held[0].at.point.y};
    const ScreenPoint now{wanted[1].point.x - wanted[0].point.x, wanted[1].point.y - wanted[0].point.y};
    CameraPose pose = _pose;
    const double steps = std::log2(std::hypot(now.x, now.y) / std::hypot(before.x, before.y));
    if (_flags.zoom && std::isfinite(steps)) {
        pose.zoom = limitedZoom(pose.zoom + static_cast<float>(steps));
    }
    if (_flags.rotation) {
        const double turn = std::atan2(now.y, now.x) - std::atan2(before.y, before.x);
        pose.rotation = pose.rotation + Radians{std::remainder(turn, 2.0 * M_PI)};
    }
    return pose;
}

void AnchoredGestures::tilt(const std::vector<Finger>& fingers) {
    double down = 0;
    for (std::size_t i = 0; i < fingers.size(); ++i) {
        down += (fingers[i].location.y - _held[i].at.point.y) / static_cast<double>(fingers.size());
    }
    CameraPose pose = _pose;
    pose.viewingAngle = pose.viewingAngle + Radians{down * kTiltPerPoint};
    if (fingers.size() > 1 && down != 0) {
        set(pose);
    }
    hold(fingers, &Finger::location);
}

void AnchoredGestures::zoomAlong(const std::vector<Finger>& fingers) {
    const double down = fingers[0].location.y - _held[0].at.point.y;
    CameraPose pose = _pose;
    pose.zoom = limitedZoom(pose.zoom + static_cast<float>(down / kPointsPerZoom));
    if (down != 0) {
        set(_flags.scroll ? GroundHold::holding(pose, _engine.cameraProjection()->stage(), _zoomCentre)
                          : pose);
    }
    hold(fingers, &Finger::location);
}

void AnchoredGestures::doubleTap(CGPoint location) {
    zoomBy(1.0F, location);
}

void AnchoredGestures::zoomBy(float steps, CGPoint location) {
    const CameraProjection& projection = *_engine.cameraProjection();
    const HeldGround held{projection.frame().unproject(screenPoint(location)), screenPoint(location)};
    const CameraPose start = projection.pose();
    const float goal = limitedZoom(_engine.cameraPath().goalZoom() - 1.0F + steps);
    if (!_flags.zoom || goal == start.zoom) {
        return;
    }
    const bool holds = _flags.scroll && projection.frame().seesGround(held.point);
    _engine.cameraPath().run(
        [=, stage = projection.stage()](double elapsed) {
            const double left = 1.0 - std::min(elapsed / kZoomDuration, 1.0);
            CameraPose pose = start;
            pose.zoom = goal + (start.zoom - goal) * static_cast<float>(left * left * left);
            return holds ? GroundHold::holding(pose, stage, held) : pose;
        },
        kZoomDuration, CameraPath::Touch::goesOn);
}

void AnchoredGestures::set(const CameraPose& pose) {
    CameraChange change;
    change.target = pose.target;
    change.rotation = pose.rotation;
    change.viewingAngle = pose.viewingAngle;
    change.zoom = pose.zoom + 1.0F;
    change.fromGesture = true;
    _engine.internalSetCamera(change);
}

} // namespace trelmix
