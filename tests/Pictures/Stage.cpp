#include "Pictures/Stage.h"

#include "Render/GLContext.h"

#include <gtest/gtest.h>
#include <numbers>
#include <stdexcept>
#include <Trelmix/TrelmixMapEngineGeoUtils.h>

namespace trelmix::pictures {

int driverSamples() {
    static const int samples = [] {
        const auto context = GLContext::makeOffscreen();
        return context ? (*context)->capabilities().maximumSamples : 1;
    }();
    return samples;
}

std::ostream& operator<<(std::ostream& out, const Look& look) {
    return out << "rotation " << look.rotation << " tilt " << look.tilt << " zoom " << look.zoom;
}

// Written out rather than taken from the library, so that the two check each other.
MapPixel mapPixel(CLLocationCoordinate2D coordinate, int zoom) {
    const double world = std::ldexp(256.0, zoom), sine = std::sin(coordinate.latitude * kDegree);
    return {(coordinate.longitude + 180) / 360 * world,
            (0.5 - std::atanh(sine) / (2 * std::numbers::pi)) * world};
}

CLLocationCoordinate2D coordinateOf(MapPixel pixel, int zoom) {
    const double world = std::ldexp(256.0, zoom);
    return {std::atan(std::sinh((0.5 - pixel.y / world) * 2 * std::numbers::pi)) / kDegree,
            pixel.x / world * 360 - 180};
}

CLLocationCoordinate2D metresFrom(CLLocationCoordinate2D place, double east, double north) {
    return TrelmixMapEngineGeoUtils::getCoordinateFrom(place, std::atan2(east, north),
                                                       std::hypot(east, north));
}

Stage::Stage(const Look& first, OffscreenHost::Options options)
    : engine(TrelmixMapEngineFactory::createMap()) {
    engine->view()->setFrame({{0, 0}, {options.width, options.height}});
    engine->view()->layoutIfNeeded();
    engine->initialiseWithTarget(first.target, first.zoom);
    auto made = OffscreenHost::make(engine, options);
    if (!made) {
        throw std::runtime_error(made.reason());
    }
    host = std::move(*made);
    look(first);
}

void Stage::look(const Look& look) {
    engine->setCamera(
        std::make_shared<TrelmixMapEngineCamera>(look.target, look.rotation, look.tilt, look.zoom), false);
}

void Stage::addTiles(std::shared_ptr<TilePainter> painter) {
    _painter = std::move(painter);
    engine->setDelegate(_painter);
    const auto layer = TrelmixMapEngineFactory::createMapTilesNode();
    layer->setSynchronousLayer(true);
    layer->setMap(engine);
}

Picture Stage::draw() {
    host->step(1.1);
    while (host->pump()) {
    }
    if (_painter) {
        // Once for the check, once for the clean-up that follows it.
        host->step(1.1);
        while (host->pump()) {
        }
        host->step(0);
    }
    auto image = host->image();
    EXPECT_TRUE(image) << image.reason();
    return image ? Picture(*image) : Picture(plainImage(800, 600, Rgb{}));
}

bool isWithinTileReach(int y, double tilt) {
    // From the target along the direction of view, in units of the camera's distance; rows in half heights.
    const auto along = [&](double down) {
        const double angle = tilt * kDegree - std::atan(down * std::tan(30 * kDegree));
        return std::cos(tilt * kDegree) * (std::tan(angle) - std::tan(tilt * kDegree));
    };
    return along((y + 0.5 - 300) / 300) < -2 * along(1) * 0.999;
}

double Footprint::pixelsTo(MapPixel place) const {
    const double x = place.x - centre.x, y = place.y - centre.y;
    const double determinant = right.x * down.y - right.y * down.x;
    return std::hypot(x * down.y - y * down.x, y * right.x - x * right.y) / std::abs(determinant);
}

Footprint footprintOf(const Stage& stage, int x, int y, int zoom) {
    const auto place = [&](double dx, double dy) { return mapPixel(stage.ground({x + dx, y + dy}), zoom); };
    const MapPixel centre = place(0.5, 0.5), right = place(1, 0.5), down = place(0.5, 1);
    return {centre,
            {2 * (right.x - centre.x), 2 * (right.y - centre.y)},
            {2 * (down.x - centre.x), 2 * (down.y - centre.y)}};
}

} // namespace trelmix::pictures
