#include "view/CameraControl.h"

#include "common/Json.h"

#include <Trelmix/TrelmixMapEngineGeoUtils.h>

#include <algorithm>
#include <cmath>

namespace trelmix::apps {

namespace {

using Geo = TrelmixMapEngineGeoUtils;

// Map points at any one zoom do; offsets on the ground are scaled.
constexpr float kPlaneZoom = 22;

CGPoint onPlane(CLLocationCoordinate2D place) {
    return {Geo::convertLongToMapX(place.longitude, kPlaneZoom),
            Geo::convertLatToMapY(place.latitude, kPlaneZoom)};
}

CLLocationCoordinate2D fromPlane(CGPoint point) {
    return {Geo::convertMapYToLat(point.y, kPlaneZoom), Geo::convertMapXToLong(point.x, kPlaneZoom)};
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

double setCameraAfter(TrelmixMapEngine& engine, const TrelmixMapEngineCamera& camera, double zoom,
                      CameraStep step, bool animated) {
    const float goal = allowedZoom(engine, zoom + step.levels);
    engine.setCameraWithRotation(camera.rotation() + step.rotation, camera.viewingAngle() + step.viewingAngle,
                                 goal, animated);
    return static_cast<double>(goal);
}

} // namespace

void zoomAbout(TrelmixMapEngine& engine, CGPoint point, double levels) {
    const auto camera = engine.camera();
    const auto projection = engine.projection();
    if (!camera || !projection) {
        return;
    }
    const auto zoom = allowedZoom(engine, static_cast<double>(camera->zoom()) + levels);
    const CLLocationCoordinate2D fixed = projection->worldCoordinateFor(point);
    if (CLLocationCoordinate2DIsValid(fixed)) {
        // What is seen at a point of the screen lies from the target in one direction, at a distance that
        // halves with every level.
        const double shrink = std::exp2(static_cast<double>(camera->zoom()) - static_cast<double>(zoom));
        const CGPoint pin = onPlane(fixed);
        const CGPoint target = onPlane(camera->target());
        camera->setTarget(
            fromPlane({pin.x + (target.x - pin.x) * shrink, pin.y + (target.y - pin.y) * shrink}));
    }
    camera->setZoom(zoom);
    engine.setCamera(camera, false);
}

void moveBy(TrelmixMapEngine& engine, CameraStep step) {
    if (const auto camera = engine.camera()) {
        setCameraAfter(engine, *camera, static_cast<double>(camera->zoom()), step, false);
    }
}

void CameraKeys::moveBy(TrelmixMapEngine& engine, CameraStep step) {
    if (const auto camera = engine.camera()) {
        const double zoom = _goalZoom.value_or(static_cast<double>(camera->zoom()));
        // Announced as every change is, which forgets the goal.
        const double goal = setCameraAfter(engine, *camera, zoom, step, true);
        _goalZoom = goal;
    }
}

void CameraKeys::resetRotation(TrelmixMapEngine& engine) {
    if (const auto camera = engine.camera()) {
        moveBy(engine, {.rotation = -camera->rotation()});
    }
}

double metresPerPoint(const TrelmixMapEngine& engine, CGSize viewSize) {
    const auto projection = engine.projection();
    if (!projection) {
        return 0;
    }
    constexpr double kSpan = 50;
    const CGPoint middle{viewSize.width / 2, viewSize.height / 2};
    const double metres =
        Geo::getDistanceBetweenWithCoordinate1(projection->worldCoordinateFor({middle.x - kSpan, middle.y}),
                                               projection->worldCoordinateFor({middle.x + kSpan, middle.y}));
    return std::isfinite(metres) ? metres / (2 * kSpan) : 0;
}

std::string cameraArgument(const TrelmixMapEngine& engine) {
    const auto camera = engine.camera();
    if (!camera) {
        return {};
    }
    const auto rounded = [](double number, double steps) {
        return jsonNumber(std::round(number * steps) / steps);
    };
    return "--camera " + rounded(camera->target().latitude, 1e8) + "," +
           rounded(camera->target().longitude, 1e8) + "," +
           rounded(static_cast<double>(camera->zoom()), 1e4) + "," +
           rounded(std::remainder(camera->rotation(), 360), 1e3) + "," + rounded(camera->viewingAngle(), 1e3);
}

} // namespace trelmix::apps
