#pragma once

#include "Pictures/Picture.h"

#include <Trelmix/Host/OffscreenHost.h>
#include <Trelmix/TrelmixMapEngineDelegate.h>
#include <Trelmix/TrelmixMapEngineFactory.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <memory>
#include <ostream>

namespace trelmix::pictures {

inline constexpr double kDegree = 3.14159265358979323846 / 180;
/// Where the tests' maps are, unless they say otherwise.
inline constexpr CLLocationCoordinate2D kPlace{54.9312, 14.0187};

struct Look {
    double rotation = 0, tilt = 0;
    float zoom = 18;
    CLLocationCoordinate2D target = kPlace;
};
std::ostream& operator<<(std::ostream& out, const Look& look);

/// A pixel of the whole map at one zoom.
struct MapPixel {
    double x, y;
};
MapPixel mapPixel(CLLocationCoordinate2D coordinate, int zoom);
CLLocationCoordinate2D coordinateOf(MapPixel pixel, int zoom);
/// So many metres east and north of a place.
CLLocationCoordinate2D metresFrom(CLLocationCoordinate2D place, double east, double north);

/// Gives the tiles of a synchronous layer.
class TilePainter : public TrelmixMapEngineDelegate {
public:
    using Paint = std::function<std::shared_ptr<const UIImage>(std::int64_t x, std::int64_t y)>;

    explicit TilePainter(Paint paint) : _paint(std::move(paint)) {}
    std::shared_ptr<const UIImage> tileForX(std::int64_t x, std::int64_t y, std::int64_t) override {
        return _paint(x, y);
    }

private:
    Paint _paint;
};

/// An engine on a host, 800 x 600.
class Stage {
public:
    explicit Stage(const Look& first, OffscreenHost::Options options = {});

    void look(const Look& look);
    /// A synchronous tile layer.
    void addTiles(std::shared_ptr<TilePainter> painter);
    template <class Overlay>
    std::shared_ptr<Overlay> add(std::shared_ptr<Overlay> overlay) {
        overlay->setMap(engine);
        return overlay;
    }
    /// Lets every tile check and clean-up that is due happen, and draws.
    Picture draw();

    CGPoint project(CLLocationCoordinate2D coordinate) const {
        return engine->projection()->screenCoordinateFor(coordinate);
    }
    CLLocationCoordinate2D ground(CGPoint point) const {
        return engine->projection()->worldCoordinateFor(point);
    }

    std::shared_ptr<TrelmixMapEngine> engine;
    std::unique_ptr<OffscreenHost> host;

private:
    std::shared_ptr<TilePainter> _painter;
};

/// Samples a pixel that a host gets which asks for four: 1 on drivers without multisampling.
int driverSamples();
/// How exact an edge is drawn: within `smooth` pixels with samples, within one pixel without.
inline double edgeTolerance(double smooth) {
    return driverSamples() > 1 ? smooth : 0.95;
}

/// Whether the ground in that row of pixels is near enough to have tiles: they reach twice as far beyond the
/// target as the view reaches on this side of it.
bool isWithinTileReach(int y, double tilt);

/// What a pixel shows: a place on the map at one zoom, and how it changes from pixel to pixel.
struct Footprint {
    MapPixel centre;
    MapPixel right; ///< to the next pixel's centre
    MapPixel down;
    /// Map pixels that the longer side takes.
    double length() const { return std::max(std::hypot(right.x, right.y), std::hypot(down.x, down.y)); }
    /// How many pixels away from the centre a place on the map is drawn.
    double pixelsTo(MapPixel place) const;
};
Footprint footprintOf(const Stage& stage, int x, int y, int zoom);

} // namespace trelmix::pictures
