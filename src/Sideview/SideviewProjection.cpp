#include "Sideview/SideviewProjection.h"

#include "Geo/GeoUtils.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numbers>
#include <utility>

namespace trelmix {
namespace {

using Made = Result<std::shared_ptr<const SideviewProjection>>;

constexpr double kLargest = std::numeric_limits<double>::max();
constexpr double kNowhere = std::numeric_limits<double>::quiet_NaN();
constexpr Radians kHalfTurn{std::numbers::pi};

} // namespace

TMXSideviewProjection::~TMXSideviewProjection() = default;

Made SideviewProjection::make(const std::string& path, double dimensionX, double dimensionY,
                              const SideviewBehaviour& behaviour) {
    Result<LevelsFile> file = readLevelsFile(path);
    if (!file) {
        return Made::failure(file.reason());
    }
    Made made = make(std::move(*file), dimensionX, dimensionY, behaviour);
    return made ? std::move(made) : Made::failure(path + ": " + made.reason());
}

Made SideviewProjection::make(LevelsFile file, double dimensionX, double dimensionY,
                              const SideviewBehaviour& behaviour) {
    const std::shared_ptr<const SideviewProjection> projection(
        new SideviewProjection(std::move(file), dimensionX, dimensionY, behaviour));
    std::string fault = projection->fault();
    return fault.empty() ? Made(projection) : Made::failure(std::move(fault));
}

std::shared_ptr<const SideviewProjection>
SideviewProjection::withBehaviour(const SideviewBehaviour& behaviour) const {
    return std::shared_ptr<const SideviewProjection>(
        new SideviewProjection(_file, _dimensionX, _dimensionY, behaviour));
}

SideviewProjection::SideviewProjection(LevelsFile file, double dimensionX, double dimensionY,
                                       const SideviewBehaviour& behaviour)
    : _file(std::move(file)), _dimensionX(dimensionX), _dimensionY(dimensionY), _behaviour(behaviour),
      // Absolute values: the axis always points towards growing x (east) and growing y (south).
      _sine(std::abs(std::sin(Radians::fromDegrees(_file.bearing).value))),
      _cosine(std::abs(std::cos(Radians::fromDegrees(_file.bearing).value))),
      _mirrorWidth(behaviour.flipsBetweenMargins ? widthBetweenMargins() : dimensionX) {
    projectBox();
    _mirrored = runsAgainstBearing();
    addUpHeights();
}

void SideviewProjection::projectBox() {
    _lowerBound = kLargest;
    _upperBound = -kLargest;
    for (const double latitude : {_file.southLatitude, _file.northLatitude}) {
        for (const double longitude : {_file.westLongitude, _file.eastLongitude}) {
            const Coordinate corner{latitude, longitude};
            const double axis = axisValue(corner);
            _boxIsFinite = _boxIsFinite && std::isfinite(axis);
            // Of equal corners the last one counts.
            if (axis <= _lowerBound) {
                _lowerBound = axis;
                _minimumCoordinate = corner;
            }
            if (axis >= _upperBound) {
                _upperBound = axis;
                _maximumCoordinate = corner;
            }
        }
    }
    _bearingToTarget = GeoUtils::bearing(_minimumCoordinate, _maximumCoordinate);
    _boundsDistance = GeoUtils::distanceBetween(_minimumCoordinate, _maximumCoordinate);
}

void SideviewProjection::addUpHeights() {
    if (_file.levels) {
        for (const SideviewLevel& level : *_file.levels) {
            if (!level.levelBounds) {
                continue;
            }
            double height = -1.0;
            for (const SideviewLevelBounds& bounds : *level.levelBounds) {
                height = std::max(height, bounds.ceilingHeight);
            }
            _netLevelHeights += height;
        }
    }
    const double offsets = _file.bottomOffset + _file.topOffset;
    _totalHeight = offsets * (_netLevelHeights / (_dimensionY - _file.bottomOffset - _file.topOffset)) +
                   _netLevelHeights;
}

// Whether the box's diagonal, from the minimum to the maximum corner, runs against the bearing. The reduced
// angles are compared without wrapping round at 180 degrees: due south must arrive here as exactly 180.
bool SideviewProjection::runsAgainstBearing() const {
    const double diagonal = std::remainder(_bearingToTarget.degrees(), 360.0);
    const double bearing = std::remainder(_file.bearing, 360.0);
    const double difference = std::abs(diagonal - bearing);
    return bearing < 180.0 ? difference > 90.0 : difference < 90.0;
}

std::string SideviewProjection::fault() const {
    // Written so that what is not a number is wrong as well.
    if (!(_dimensionX > 0 && _dimensionY > 0 && _dimensionX <= kLargest && _dimensionY <= kLargest)) {
        return "the side view's image has no size (" + std::to_string(_dimensionX) + " x " +
               std::to_string(_dimensionY) + ")";
    }
    std::string box = faultOfBox();
    return box.empty() ? faultOfHeights() : box;
}

std::string SideviewProjection::faultOfBox() const {
    for (const auto& [key, latitude] : {std::pair(kItemSouthLatitude, _file.southLatitude),
                                        std::pair(kItemNorthLatitude, _file.northLatitude)}) {
        if (!(latitude > -90.0 && latitude < 90.0)) {
            return std::string(key) + ": must lie between -90 and 90 degrees, the poles excluded";
        }
    }
    // A map point is at most 4 cm: a smaller extent is only what rounding left of none.
    constexpr double kSmallestExtent = 1e-3;
    if (!_boxIsFinite || !_bearingToTarget.isFinite() || !std::isfinite(_boundsDistance)) {
        return std::string(kItemBearing) + ", " + kItemWestLongitude + ", " + kItemEastLongitude +
               ": give the box no place on the map";
    }
    if (!(projectedPointDimension() >= kSmallestExtent)) {
        return std::string(kItemSouthLatitude) + " to " + kItemEastLongitude +
               ": the box has no extent along the bearing";
    }
    return {};
}

std::string SideviewProjection::faultOfHeights() const {
    const double levelsHeight = _dimensionY - _file.bottomOffset - _file.topOffset;
    if (!(levelsHeight > 0 && std::isfinite(_file.bottomOffset + _file.topOffset))) {
        return std::string(kItemBottomOffset) + ", " + kItemTopOffset +
               ": leave nothing of the image's height of " + std::to_string(_dimensionY);
    }
    if (!std::isfinite(_dimensionX - _file.rightOffset - _file.leftOffset)) {
        return std::string(kItemLeftOffset) + ", " + kItemRightOffset + ": are too large";
    }
    if (!std::isfinite(_totalHeight)) {
        return std::string(kItemLevels) + ": the heights are too large";
    }
    if (!_file.levels) {
        return {};
    }
    for (std::size_t i = 0; i < _file.levels->size(); ++i) {
        const auto& list = (*_file.levels)[i].levelBounds;
        for (std::size_t j = 0; list && j < list->size(); ++j) {
            if (_totalHeight == 0) {
                return std::string(kItemLevels) + ": the heights of all levels add up to 0 m";
            }
            if (!std::isfinite(lower((*list)[j])) || !std::isfinite(upper((*list)[j]))) {
                return std::string(kItemLevels) + "[" + std::to_string(i) + "]." + kItemLevelBounds + "[" +
                       std::to_string(j) + "]: the heights are too large";
            }
        }
    }
    return {};
}

double SideviewProjection::axisValue(Coordinate coordinate) const {
    const WorldMapPoint point = GeoUtils::scenePoint(coordinate);
    return point.x * _sine + point.y * _cosine;
}

double SideviewProjection::widthBetweenMargins() const {
    return _dimensionX - _file.rightOffset - _file.leftOffset;
}

double SideviewProjection::imageX(CLLocationCoordinate2D coordinate) const {
    const double fraction = (axisValue(coordinateOf(coordinate)) - _lowerBound) / projectedPointDimension();
    double x = widthBetweenMargins() * fraction;
    if (_mirrored) {
        x = _mirrorWidth - x;
    }
    return _file.bowPosition == SideviewBowPosition::right ? x + _file.leftOffset
                                                           : (_dimensionX - _file.rightOffset) - x;
}

// The inverse: 0 at the minimum, 1 at the maximum corner.
double SideviewProjection::fractionAt(double imageX) const {
    double x = _file.bowPosition == SideviewBowPosition::right ? imageX - _file.leftOffset
                                                               : (_dimensionX - _file.rightOffset) - imageX;
    if (_mirrored) {
        x = _mirrorWidth - x;
    }
    return x / widthBetweenMargins();
}

double SideviewProjection::lower(const SideviewLevelBounds& bounds) const {
    const double scale = imagePointsPerMeter();
    return (bounds.relativeHeight + _file.bottomOffset / scale) * scale;
}

double SideviewProjection::upper(const SideviewLevelBounds& bounds) const {
    const double scale = imagePointsPerMeter();
    return (bounds.ceilingHeight + (bounds.relativeHeight + _file.bottomOffset / scale)) * scale;
}

SideviewProjection::VerticalPosition SideviewProjection::screenPointY(std::int64_t levelNumber) const {
    if (_file.levels) {
        for (const SideviewLevel& level : *_file.levels) {
            if (level.levelNumber == levelNumber && level.levelBounds && !level.levelBounds->empty()) {
                const SideviewLevelBounds& first = level.levelBounds->front();
                const double floor = _dimensionY - lower(first);
                return {floor - first.ceilingHeight * imagePointsPerMeter() / 2, floor, first.ceilingHeight};
            }
        }
    }
    return _behaviour.hidesUnknownLevels ? VerticalPosition{kNowhere, kNowhere, 0} : VerticalPosition{};
}

CGPoint SideviewProjection::point(CLLocationCoordinate2D coordinate, std::int64_t levelNumber) const {
    return {imageX(coordinate), screenPointY(levelNumber).levelCenter};
}

CLLocationCoordinate2D SideviewProjection::coordinate(CGPoint point) const {
    if (_behaviour.touchesLeadToPlaces) {
        return locationOf(onDiagonal(fractionAt(point.x)));
    }
    const bool left = _file.bowPosition == SideviewBowPosition::left;
    const Coordinate start = left ? _maximumCoordinate : _minimumCoordinate;
    const Radians bearing = left ? _bearingToTarget - kHalfTurn : _bearingToTarget;
    const double distance = point.x / _dimensionX * _boundsDistance;
    return locationOf(GeoUtils::coordinate(start, bearing, distance));
}

// Calls `contains` for every extent at the point's height, and `nearest` for every other one that is nearer
// than those before, until `contains` answers true: what lies beside the point no longer matters then.
template <class Contains, class Nearest>
void SideviewProjection::walkLevels(CGPoint point, Contains contains, Nearest nearest) const {
    if (!_file.levels) {
        return;
    }
    const double height = _dimensionY - point.y;
    double best = kLargest;
    bool looking = true;
    for (const SideviewLevel& level : *_file.levels) {
        if (!level.levelBounds) {
            continue;
        }
        for (const SideviewLevelBounds& bounds : *level.levelBounds) {
            const double low = lower(bounds);
            const double high = upper(bounds);
            if (low <= height && height <= high) {
                looking = !contains(level, bounds) && looking;
                continue;
            }
            const double distance = std::min(std::abs(height - low), std::abs(height - high));
            if (looking && distance < best) {
                best = distance;
                nearest(level, bounds);
            }
        }
    }
}

std::optional<std::int64_t> SideviewProjection::levelAt(CGPoint point) const {
    std::optional<std::int64_t> found;
    std::optional<std::int64_t> closest;
    walkLevels(
        point,
        [&](const SideviewLevel& level, const SideviewLevelBounds&) {
            // A level without a number is found by nobody; the search goes on.
            found = level.levelNumber ? level.levelNumber : found;
            return found.has_value();
        },
        [&](const SideviewLevel& level, const SideviewLevelBounds&) {
            closest = level.levelNumber ? level.levelNumber : closest;
        });
    return found ? found : closest;
}

std::int64_t SideviewProjection::levelNumber(CGPoint point) const {
    return levelAt(point).value_or(kLevelNotFound);
}

std::vector<SideviewLevelBounds> SideviewProjection::levelBounds(CGPoint point) const {
    std::vector<SideviewLevelBounds> result;
    std::optional<SideviewLevelBounds> closest;
    walkLevels(
        point,
        [&](const SideviewLevel&, const SideviewLevelBounds& bounds) {
            result.push_back(bounds);
            return true;
        },
        [&](const SideviewLevel&, const SideviewLevelBounds& bounds) { closest = bounds; });
    if (result.empty() && closest) {
        result.push_back(*closest);
    }
    return result;
}

double SideviewProjection::levelHeight(CGPoint point) const {
    const std::vector<SideviewLevelBounds> bounds = levelBounds(point);
    return bounds.empty() ? 0 : bounds.front().ceilingHeight;
}

CGRect SideviewProjection::cameraBoundingRectangle(const TrelmixMapProjection& projection,
                                                   std::int64_t levelNumber) const {
    CGRect rectangle;
    const VerticalPosition position = screenPointY(levelNumber);
    if (levelNumber != kInvalidLevel && std::isfinite(position.levelFloor)) {
        const double height = _behaviour.footprintHasOwnHeight ? position.ceilingHeight
                                                               : levelHeight({0, position.levelCenter});
        rectangle.size.height = height * imagePointsPerMeter();
        rectangle.origin.y = position.levelFloor - rectangle.size.height;
    }
    const std::array<double, 4> xs = {
        imageX(projection.bottomLeftCoordinate()), imageX(projection.bottomRightCoordinate()),
        imageX(projection.topLeftCoordinate()), imageX(projection.topRightCoordinate())};
    // Every one is asked: the largest of numbers of which one is none depends on their order.
    if (!std::all_of(xs.begin(), xs.end(), [](double x) { return std::isfinite(x); })) {
        rectangle.size.width = _dimensionX;
        return rectangle;
    }
    const auto [smallest, largest] = std::minmax_element(xs.begin(), xs.end());
    rectangle.origin.x = *smallest;
    rectangle.size.width = *largest - *smallest;
    return rectangle;
}

Coordinate SideviewProjection::onDiagonal(double fraction) const {
    const WorldMapPoint from = GeoUtils::scenePoint(_minimumCoordinate);
    const WorldMapPoint to = GeoUtils::scenePoint(_maximumCoordinate);
    return GeoUtils::coordinateOfScenePoint(
        {from.x + fraction * (to.x - from.x), from.y + fraction * (to.y - from.y)});
}

// Straight along the picture's axis, in the plane of map points.
Coordinate SideviewProjection::targetAt(double imageX, Coordinate current) const {
    const double way = _lowerBound + fractionAt(imageX) * projectedPointDimension() - axisValue(current);
    const WorldMapPoint from = GeoUtils::scenePoint(current);
    return GeoUtils::coordinateOfScenePoint({from.x + way * _sine, from.y + way * _cosine});
}

Coordinate SideviewProjection::targetAlongBearing(CGPoint point, Coordinate current) const {
    const double currentX = this->point(locationOf(current), levelNumber(point)).x;
    const bool back =
        _file.bowPosition == SideviewBowPosition::right ? point.x < currentX : currentX < point.x;
    Radians bearing = Radians::fromDegrees(_file.bearing);
    if (back) {
        bearing = bearing - kHalfTurn;
    }
    // One metre along the structure is as long in the image as one metre of height.
    const double distance = std::abs(point.x - currentX) / imagePointsPerMeter();
    return GeoUtils::coordinate(current, bearing, distance);
}

std::shared_ptr<TrelmixMapEngineCamera>
SideviewProjection::cameraForSideviewPoint(CGPoint point, const TrelmixMapEngineCamera& currentCamera) const {
    const Coordinate current = coordinateOf(currentCamera.target());
    const Coordinate target =
        _behaviour.touchesLeadToPlaces ? targetAt(point.x, current) : targetAlongBearing(point, current);
    if (!std::isfinite(target.lat) || !std::isfinite(target.lon)) {
        return nullptr;
    }
    return std::make_shared<TrelmixMapEngineCamera>(locationOf(target), currentCamera.rotation(),
                                                    currentCamera.viewingAngle(), currentCamera.zoom());
}

std::optional<SideviewLevel> SideviewProjection::levelInfo(std::int64_t levelNumber) const {
    const SideviewLevel* level = findLevel(_file.levels, levelNumber);
    return level != nullptr ? std::optional(*level) : std::nullopt;
}

Result<std::optional<SideviewLevel>> SideviewProjection::levelInfo(std::int64_t levelNumber,
                                                                   const std::string& path) {
    using Info = Result<std::optional<SideviewLevel>>;
    const auto levels = readLevels(path);
    if (!levels) {
        return Info::failure(levels.reason());
    }
    const SideviewLevel* level = findLevel(*levels, levelNumber);
    return level != nullptr ? Info(*level) : Info(std::nullopt);
}

} // namespace trelmix
