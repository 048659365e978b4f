#include "Tiles/TileGround.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <optional>
#include <tuple>
#include <utility>

namespace trelmix {

namespace {

constexpr double kTilePoints = 256.0;
/// How far the target may move before the next tile check, in map points of the rounded zoom.
constexpr double kUncheckedMove = 200.0;
constexpr std::int64_t kHighestTileZoom = 23;
/// Far outside every world, and small enough for sums and products of indices.
constexpr double kFarthestIndex = 1LL << 40;

using Point = WorldMapPoint;
using Quad = std::array<Point, 4>;

/// Zoom-22 map points in one map point of a whole zoom.
double scaleOf(std::int64_t zoom) {
    return std::exp2(static_cast<double>(ZOOMLEVEL_MAX) - static_cast<double>(zoom));
}

std::int64_t index(double value) {
    return static_cast<std::int64_t>(std::clamp(value, -kFarthestIndex, kFarthestIndex));
}

/// Least and greatest, where what is not a number gives way to the other operand.
double least(double a, double b) {
    return std::fmin(a, b);
}
double greatest(double a, double b) {
    return std::fmax(a, b);
}

/// The ground points under the view's corners: top left, top right, bottom right, bottom left.
Quad cornersOf(const CameraProjection& projection) {
    const ScreenPoint size = projection.mapDimensions();
    return {projection.worldMapPoint(ScreenPoint{0, 0}), projection.worldMapPoint(ScreenPoint{size.x, 0}),
            projection.worldMapPoint(size), projection.worldMapPoint(ScreenPoint{0, size.y})};
}

Point middle(Point a, Point b) {
    return {(a.x + b.x) * 0.5, (a.y + b.y) * 0.5};
}

Point along(Point a, Point b, double t) {
    return {a.x + (b.x - a.x) * t, a.y + (b.y - a.y) * t};
}

/// The ground that the view shows no farther from the target, along the direction of view, than twice the
/// distance from it to the middle of the bottom edge. Nothing when the view has no ground.
std::optional<Quad> visibleGround(const CameraProjection& projection) {
    const Quad corners = cornersOf(projection);
    for (const Point& p : corners) {
        if (!std::isfinite(p.x) || !std::isfinite(p.y)) {
            return std::nullopt;
        }
    }
    const auto& [topLeft, topRight, bottomRight, bottomLeft] = corners;
    const Point target = projection.cameraTargetMapPoint();
    const Point bottom = middle(bottomLeft, bottomRight);
    const Point top = middle(topLeft, topRight);
    const double behind = std::hypot(bottom.x - target.x, bottom.y - target.y);
    if (!(behind > 0)) {
        return std::nullopt;
    }
    // Along the direction of view: the bottom edge lies `behind` the target, so the reach is three times that
    // from it.
    const Point forward{(target.x - bottom.x) / behind, (target.y - bottom.y) / behind};
    const double depth = (top.x - bottom.x) * forward.x + (top.y - bottom.y) * forward.y;
    const double reach = 3.0 * behind;
    if (!(depth > 0)) {
        return std::nullopt;
    }
    const double t = std::min(1.0, reach / depth);
    return Quad{along(bottomLeft, topLeft, t), along(bottomRight, topRight, t), bottomRight, bottomLeft};
}

/// The least and greatest y of the part of a convex quad between two meridians of the plane; nothing when
/// there is none.
std::optional<std::pair<double, double>> extentBetween(const Quad& quad, double west, double east) {
    double north = std::numeric_limits<double>::max();
    double south = std::numeric_limits<double>::lowest();
    const auto take = [&](double y) {
        north = std::min(north, y);
        south = std::max(south, y);
    };
    for (std::size_t i = 0; i < quad.size(); ++i) {
        const Point a = quad[i];
        const Point b = quad[(i + 1) % quad.size()];
        if (a.x >= west && a.x <= east) {
            take(a.y);
        }
        for (const double meridian : {west, east}) {
            if ((a.x < meridian) != (b.x < meridian)) {
                take(a.y + (b.y - a.y) * (meridian - a.x) / (b.x - a.x));
            }
        }
    }
    return north <= south ? std::optional(std::pair(north, south)) : std::nullopt;
}

/// The tile's part of the plane touches the ground.
bool touches(const Quad& ground, const TileIndex& tile) {
    const double side = kTilePoints * scaleOf(tile.zoom);
    const double west = static_cast<double>(tile.x) * side;
    const double north = static_cast<double>(tile.y) * side;
    const auto extent = extentBetween(ground, west, west + side);
    return extent && extent->first <= north + side && extent->second >= north;
}

double distanceToMiddle(const TileIndex& tile, const Point& from) {
    const double side = kTilePoints * scaleOf(tile.zoom);
    return std::hypot((static_cast<double>(tile.x) + 0.5) * side - from.x,
                      (static_cast<double>(tile.y) + 0.5) * side - from.y);
}

struct IndexRange {
    std::int64_t first;
    std::int64_t last;
    bool contains(std::int64_t i) const { return i >= first && i <= last; }
    double count() const { return last >= first ? static_cast<double>(last - first) + 1 : 0; }
    IndexRange within(std::int64_t centre, std::int64_t reach) const {
        return {std::max(first, centre - reach), std::min(last, centre + reach)};
    }
};

/// The part of columns x rows that surely holds the `kMostTiles` tiles nearest to the target's.
void limitAround(std::int64_t x, std::int64_t y, IndexRange& columns, IndexRange& rows) {
    std::int64_t reach = 64;
    while (columns.within(x, reach).count() * rows.within(y, reach).count() <
               static_cast<double>(kMostTiles) &&
           reach < static_cast<std::int64_t>(kFarthestIndex)) {
        reach *= 2;
    }
    columns = columns.within(x, reach * 2);
    rows = rows.within(y, reach * 2);
}

class TileSearch {
public:
    TileSearch(const CameraProjection& projection, std::int64_t zoom)
        : _zoom(zoom), _side(kTilePoints * scaleOf(zoom)), _target(projection.cameraTargetMapPoint()) {
        const TileBox box = boundingBoxTiles(projection);
        _box = {{box.eastMostTile, box.westMostTile}, {box.northMostTile, box.southMostTile}};
        addBox();
        if (const auto ground = visibleGround(projection)) {
            addGround(*ground);
        }
        keepNearest();
    }

    TileNeed result() && { return std::move(_need); }

private:
    struct Ranges {
        IndexRange columns;
        IndexRange rows;
    };

    void addBox() {
        _margin = {{_box.columns.first - 1, _box.columns.last + 1},
                   {_box.rows.first - 1, _box.rows.last + 1}};
        Ranges all = _margin;
        if (all.columns.count() * all.rows.count() > static_cast<double>(kMostTiles)) {
            limitAround(index(_target.x / _side), index(_target.y / _side), all.columns, all.rows);
        }
        for (std::int64_t x = all.columns.first; x <= all.columns.last; ++x) {
            for (std::int64_t y = all.rows.first; y <= all.rows.last; ++y) {
                _need.tiles.push_back({x, y, _zoom});
            }
        }
    }

    /// The rows of a column whose tiles the ground, widened, touches.
    IndexRange rowsTouched(const Quad& ground, std::int64_t column) const {
        const double widened = kUncheckedMove * _side / kTilePoints;
        const double west = static_cast<double>(column) * _side;
        const auto extent = extentBetween(ground, west - widened, west + _side + widened);
        if (!extent) {
            return {0, -1};
        }
        return {index(std::floor((extent->first - widened) / _side)),
                index(std::floor((extent->second + widened) / _side))};
    }

    /// Visits the touched tiles at most `reach` columns and rows from the target's.
    template <class Visit>
    void visitGround(const Quad& ground, std::int64_t reach, Visit visit) const {
        const double widened = kUncheckedMove * _side / kTilePoints;
        const auto [minX, maxX] = std::minmax({ground[0].x, ground[1].x, ground[2].x, ground[3].x});
        const IndexRange columns = IndexRange{index(std::floor((minX - widened) / _side)),
                                              index(std::floor((maxX + widened) / _side))}
                                       .within(index(_target.x / _side), reach);
        for (std::int64_t x = columns.first; x <= columns.last; ++x) {
            visit(x, rowsTouched(ground, x).within(index(_target.y / _side), reach));
        }
    }

    void addGround(const Quad& ground) {
        // Twice the reach that holds enough tiles holds the nearest of them all.
        std::int64_t reach = 64;
        double count = 0;
        for (; count < static_cast<double>(kMostTiles) && reach < 2 * static_cast<std::int64_t>(kMostTiles);
             reach *= 2) {
            count = 0;
            visitGround(ground, reach, [&count](std::int64_t, IndexRange rows) { count += rows.count(); });
        }
        visitGround(ground, reach, [this](std::int64_t x, IndexRange rows) {
            for (std::int64_t y = rows.first; y <= rows.last; ++y) {
                addOutsideBox({x, y, _zoom});
            }
        });
    }

    void addOutsideBox(TileIndex tile) {
        if (!_box.columns.contains(tile.x) || !_box.rows.contains(tile.y)) {
            _need.beyondBox.push_back(tile);
        }
        if (!_margin.columns.contains(tile.x) || !_margin.rows.contains(tile.y)) {
            _need.tiles.push_back(tile);
        }
    }

    void keepNearest() {
        if (_need.tiles.size() <= kMostTiles) {
            return;
        }
        std::stable_sort(_need.tiles.begin(), _need.tiles.end(),
                         [this](const TileIndex& a, const TileIndex& b) {
                             return distanceToMiddle(a, _target) < distanceToMiddle(b, _target);
                         });
        _need.tiles.resize(kMostTiles);
    }

    std::int64_t _zoom;
    double _side;
    Point _target;
    Ranges _box{};
    Ranges _margin{};
    TileNeed _need;
};

} // namespace

std::int64_t roundedZoom(float zoom) {
    return std::isfinite(zoom) ? static_cast<std::int64_t>(std::round(std::clamp(zoom, -1000.0F, 1000.0F)))
                               : -1;
}

TileBox boundingBoxTiles(const CameraProjection& projection) {
    const auto [topLeft, topRight, bottomRight, bottomLeft] = cornersOf(projection);
    const Point target = projection.cameraTargetMapPoint();
    const double minX = least(least(topLeft.x, topRight.x), least(bottomLeft.x, bottomRight.x));
    const double maxX = greatest(greatest(topLeft.x, topRight.x), greatest(bottomLeft.x, bottomRight.x));
    const double minY = least(least(topLeft.y, topRight.y), least(bottomLeft.y, bottomRight.y));
    const double maxY = greatest(greatest(topLeft.y, topRight.y), greatest(bottomLeft.y, bottomRight.y));
    const double reachX = 2.0 * std::abs((bottomLeft.x + bottomRight.x) * 0.5 - target.x);
    const double reachY = 2.0 * std::abs((bottomLeft.y + bottomRight.y) * 0.5 - target.y);
    const double left = greatest(target.x - reachX, minX);
    const double right = least(target.x + reachX, maxX);
    const double top = greatest(target.y - reachY, minY);
    const double bottom = least(target.y + reachY, maxY);
    if (!std::isfinite(left) || !std::isfinite(right) || !std::isfinite(top) || !std::isfinite(bottom)) {
        return {};
    }
    const double s = scaleOf(roundedZoom(projection.mapZoom()));
    constexpr double kPerTile = 0.00390625;
    return {index(std::floor(left / s * kPerTile)), index(std::ceil(right / s * kPerTile)),
            index(std::floor(top / s * kPerTile)), index(std::ceil(bottom / s * kPerTile))};
}

TileNeed tilesInView(const CameraProjection& projection, float zoom) {
    const std::int64_t whole = roundedZoom(zoom);
    if (whole < 0 || whole > kHighestTileZoom) {
        return {};
    }
    return TileSearch(projection, whole).result();
}

std::vector<TileIndex> viewFirst(const CameraProjection& projection, std::vector<TileIndex> tiles) {
    const Quad ground = cornersOf(projection);
    const Point target = projection.cameraTargetMapPoint();
    std::vector<std::tuple<bool, double, TileIndex>> ranked;
    for (const TileIndex& tile : tiles) {
        ranked.emplace_back(!touches(ground, tile), distanceToMiddle(tile, target), tile);
    }
    std::sort(ranked.begin(), ranked.end());
    std::transform(ranked.begin(), ranked.end(), tiles.begin(),
                   [](const auto& rank) { return std::get<TileIndex>(rank); });
    return tiles;
}

} // namespace trelmix
