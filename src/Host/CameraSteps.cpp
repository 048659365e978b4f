#include "Host/CameraSteps.h"

#include "Platform/Foundation/Clock.h"

#include <Trelmix/TrelmixMapEngineGeoUtils.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace trelmix {

namespace {

using Geo = TrelmixMapEngineGeoUtils;

// Map points at any one zoom do; offsets on the ground are scaled.
constexpr float kPlaneZoom = 22;
/// Points: wide enough for the scale to be exact, and inside every view that is looked at.
constexpr double kScaleSpan = 100;
/// Seconds: an animation takes 0.2, from the first frame on, which on a slow driver comes late.
constexpr double kLongestAnimation = 1;

CGPoint onPlane(CLLocationCoordinate2D place) {
    return {Geo::convertLongToMapX(place.longitude, kPlaneZoom),
            Geo::convertLatToMapY(place.latitude, kPlaneZoom)};
}

CLLocationCoordinate2D fromPlane(CGPoint point) {
    // Once round the world: the conversion itself goes back by half of it.
    const double world = Geo::convertLongToMapX(180, kPlaneZoom);
    const double x = point.x - world * std::floor(point.x / world);
    return {Geo::convertMapYToLat(point.y, kPlaneZoom), Geo::convertMapXToLong(x, kPlaneZoom)};
}

/// Where a change to that zoom will end: a limit outside the supported zooms limits nothing, and the lower
/// one wins.
float allowedZoom(const TrelmixMapEngine& engine, double zoom) {
    const float lowest = engine.minSupportedZoom();
    const float highest = engine.maxSupportedZoom();
    const auto isLimit = [&](float limit) { return limit >= lowest && limit <= highest; };
    const float least = isLimit(engine.minZoom()) ? engine.minZoom() : lowest;
    const float most = isLimit(engine.maxZoom()) ? engine.maxZoom() : highest;
    return std::max(least, std::min(most, static_cast<float>(zoom)));
}

/// The target after a pan by so many points of the screen. A line across the screen lies level at every tilt.
CLLocationCoordinate2D panned(const TrelmixMapProjection& projection, CGSize view,
                              CLLocationCoordinate2D target, CGPoint distance) {
    const CGPoint middle{view.width / 2, view.height / 2};
    const CGPoint left = onPlane(projection.worldCoordinateFor({middle.x - kScaleSpan / 2, middle.y}));
    const CGPoint right = onPlane(projection.worldCoordinateFor({middle.x + kScaleSpan / 2, middle.y}));
    const CGPoint point{(right.x - left.x) / kScaleSpan, (right.y - left.y) / kScaleSpan};
    const CGPoint from = onPlane(target);
    return fromPlane({from.x + point.x * distance.x - point.y * distance.y,
                      from.y + point.y * distance.x + point.x * distance.y});
}

} // namespace

double CameraSteps::zoomOf(const TrelmixMapEngineCamera& camera) const {
    const float zoom = camera.zoom();
    // Whoever else has moved the camera has the last word.
    const bool isOnItsWay = _zooming && Clock::now() - _zooming->time <= kLongestAnimation &&
                            zoom >= std::min(_zooming->start, _zooming->goal) &&
                            zoom <= std::max(_zooming->start, _zooming->goal);
    return static_cast<double>(isOnItsWay ? _zooming->goal : zoom);
}

void CameraSteps::apply(TrelmixMapEngine& engine, std::shared_ptr<TrelmixMapEngineCamera> camera, float goal,
                        Pace pace) {
    forget();
    if (pace == Pace::animated) {
        _zooming = {camera->zoom(), goal, Clock::now()};
    }
    camera->setZoom(goal);
    engine.setCamera(camera, pace == Pace::animated);
}

void CameraSteps::zoomAbout(TrelmixMapEngine& engine, CGPoint point, double levels, Pace pace) {
    auto camera = engine.camera();
    const auto projection = engine.projection();
    if (!camera || !projection || !engine.enableZoomGesture()) {
        return;
    }
    const double shown = static_cast<double>(camera->zoom());
    const float goal = allowedZoom(engine, (pace == Pace::animated ? zoomOf(*camera) : shown) + levels);
    const CLLocationCoordinate2D fixed = projection->worldCoordinateFor(point);
    if (CLLocationCoordinate2DIsValid(fixed)) {
        // What is seen at a point of the screen lies from the target in one direction, at a distance that
        // halves with every level.
        const double shrink = std::exp2(shown - static_cast<double>(goal));
        const CGPoint pin = onPlane(fixed);
        const CGPoint target = onPlane(camera->target());
        camera->setTarget(
            fromPlane({pin.x + (target.x - pin.x) * shrink, pin.y + (target.y - pin.y) * shrink}));
    }
    apply(engine, std::move(camera), goal, pace);
}

void CameraSteps::zoomTo(TrelmixMapEngine& engine, const CGRect& box, CGSize view) {
    auto camera = engine.camera();
    const auto projection = engine.projection();
    if (!camera || !projection || !engine.enableZoomGesture()) {
        return;
    }
    const CLLocationCoordinate2D middle = projection->worldCoordinateFor(
        {box.origin.x + box.size.width / 2, box.origin.y + box.size.height / 2});
    if (CLLocationCoordinate2DIsValid(middle)) {
        camera->setTarget(middle);
    }
    const double growth = std::min(view.width / box.size.width, view.height / box.size.height);
    const double zoom = static_cast<double>(camera->zoom()) + std::log2(growth);
    apply(engine, std::move(camera), allowedZoom(engine, zoom), Pace::animated);
}

void CameraSteps::moveBy(TrelmixMapEngine& engine, CGSize view, CameraStep step, Pace pace) {
    auto camera = engine.camera();
    const auto projection = engine.projection();
    if (!camera || !projection) {
        return;
    }
    if ((step.pan.x != 0 || step.pan.y != 0) && engine.enableScrollGesture()) {
        camera->setTarget(panned(*projection, view, camera->target(), step.pan));
    }
    if (engine.enableRotationGesture()) {
        camera->setRotation(camera->rotation() + step.rotation);
    }
    if (engine.enableTiltGesture()) {
        camera->setViewingAngle(camera->viewingAngle() + step.viewingAngle);
    }
    const double levels = engine.enableZoomGesture() ? step.levels : 0;
    const float goal = allowedZoom(engine, zoomOf(*camera) + levels);
    apply(engine, std::move(camera), goal, pace);
}

void CameraSteps::moveTo(TrelmixMapEngine& engine, const TrelmixMapEngineCamera& camera) {
    if (const auto shown = engine.camera()) {
        forget();
        _zooming = {shown->zoom(), allowedZoom(engine, static_cast<double>(camera.zoom())), Clock::now()};
        engine.setCamera(std::make_shared<TrelmixMapEngineCamera>(camera), true);
    }
}

void CameraSteps::faceNorth(TrelmixMapEngine& engine, CGSize view) {
    if (const auto camera = engine.camera()) {
        const bool isNorthUp = std::abs(std::remainder(camera->rotation(), 360)) < 0.01;
        moveBy(engine, view,
               isNorthUp ? CameraStep{.viewingAngle = -camera->viewingAngle()}
                         : CameraStep{.rotation = -camera->rotation()},
               Pace::animated);
    }
}

} // namespace trelmix
