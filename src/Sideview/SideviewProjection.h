#pragma once

#include "Geo/Radians.h"
#include "Sideview/LevelsFile.h"

#include <Trelmix/Platform/CGGeometry.h>
#include <Trelmix/Platform/CLLocation.h>
#include <Trelmix/Platform/Result.h>
#include <Trelmix/SideviewBehaviour.h>
#include <Trelmix/TMXSideviewProjection.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace trelmix {

/// A level number that callers pass when they mean no level.
inline constexpr std::int64_t kInvalidLevel = -1333333337;
/// What SideviewProjection::levelNumber answers when there is no level to find. Another value than
/// kInvalidLevel, and one that a file may use for a level of its own: levelAt tells the two apart.
inline constexpr std::int64_t kLevelNotFound = -1337;

/// Maps between the world and the one image in which a structure's levels are drawn stacked, seen from the
/// side.
///
/// Image points: origin at the image's top left, x right, y down. The image's horizontal axis is the
/// map-point plane (zoom 22, x east, y south) projected on the direction (|sin b|, |cos b|) of the bearing b;
/// the structure's box covers the whole width. One vertical scale holds for the whole image.
///
/// Made from a levels file, immutable afterwards, shared by whoever shows it. Any thread. Numbers that are
/// not finite give results that are not finite, never a fault.
///
/// Larger than most classes: both axes, the check of what the file says, and read access to every number of
/// it.
class SideviewProjection final : public TMXSideviewProjection {
public:
    /// @param path the levels file.
    /// @param dimensionX,dimensionY size of the image, image points.
    /// @return the projection, or one line (path, place, what is wrong) when the file cannot be read or
    /// understood, or when some place of the image would have no finite counterpart: a box without extent
    /// along the bearing, margins that leave no height, levels whose heights add up to nothing. A file
    /// without levels is usable.
    static Result<std::shared_ptr<const SideviewProjection>> make(const std::string& path, double dimensionX,
                                                                  double dimensionY,
                                                                  const SideviewBehaviour& behaviour = {});
    /// The same for a file already read; the reason has no path.
    static Result<std::shared_ptr<const SideviewProjection>>
    make(LevelsFile file, double dimensionX, double dimensionY, const SideviewBehaviour& behaviour = {});
    /// Of the same file and image.
    std::shared_ptr<const SideviewProjection> withBehaviour(const SideviewBehaviour& behaviour) const;

    CGPoint point(CLLocationCoordinate2D coordinate, std::int64_t levelNumber) const override;
    CLLocationCoordinate2D coordinate(CGPoint point) const override;

    /// Where levels meet or overlap the later one in the file.
    std::optional<std::int64_t> levelAt(CGPoint point) const override;
    /// The same, kLevelNotFound when there is none.
    std::int64_t levelNumber(CGPoint point) const;
    /// Every extent, of any level, at the point's height in file order, else the one nearest extent; empty
    /// when the file has none at all.
    std::vector<SideviewLevelBounds> levelBounds(CGPoint point) const;
    /// Ceiling height in metres of the first of `levelBounds`, 0 without.
    double levelHeight(CGPoint point) const override;

    /// Where the map's view lies on a level. With kInvalidLevel, and on a level that hides what lies on it,
    /// only the horizontal extent counts, y and height are 0; a view whose corners have no finite place
    /// covers the whole width. Not finite in y and height for a file without levels.
    CGRect cameraBoundingRectangle(const TrelmixMapProjection& projection,
                                   std::int64_t levelNumber) const override;
    std::shared_ptr<TrelmixMapEngineCamera>
    cameraForSideviewPoint(CGPoint point, const TrelmixMapEngineCamera& currentCamera) const override;

    /// The first level of that number in the file.
    std::optional<SideviewLevel> levelInfo(std::int64_t levelNumber) const;
    /// The same for a file that need not describe more than its levels.
    static Result<std::optional<SideviewLevel>> levelInfo(std::int64_t levelNumber, const std::string& path);

    /// Degrees.
    double sideviewBearing() const { return _file.bearing; }
    double sideviewDimensionX() const { return _dimensionX; }
    double sideviewDimensionY() const { return _dimensionY; }
    /// Smallest and largest axis value of the box's corners, zoom-22 map points, and the corners that have
    /// them.
    double lowerProjectionBoundsPoint() const { return _lowerBound; }
    Coordinate minimumCoordinate() const { return _minimumCoordinate; }
    double upperProjectionBoundsPoint() const { return _upperBound; }
    Coordinate maximumCoordinate() const { return _maximumCoordinate; }
    /// From the minimum to the maximum corner, in [0, 2 pi), 0 is north.
    Radians bearingToTarget() const { return _bearingToTarget; }
    double projectedPointDimension() const { return _upperBound - _lowerBound; }
    /// From the minimum to the maximum corner, metres.
    double boundsDistance() const { return _boundsDistance; }
    const std::optional<SideviewLevels>& levels() const { return _file.levels; }
    /// Metres. Can be 0 or negative: a level with an empty list of bounds counts as -1.
    double netLevelHeights() const { return _netLevelHeights; }
    double bottomOffset() const { return _file.bottomOffset; }
    double topOffset() const { return _file.topOffset; }
    double leftOffset() const { return _file.leftOffset; }
    double rightOffset() const { return _file.rightOffset; }
    /// Metres that the full height of the image stands for; 0 without levels.
    double totalHeight() const { return _totalHeight; }
    SideviewBowPosition bowPosition() const { return _file.bowPosition; }
    /// The scale of the whole image, image points per metre; infinite without levels.
    double imagePointsPerMeter() const { return _dimensionY / _totalHeight; }

private:
    struct VerticalPosition {
        double levelCenter = 0;
        double levelFloor = 0;
        /// Metres, of the level itself.
        double ceilingHeight = 0;
    };

    SideviewProjection(LevelsFile file, double dimensionX, double dimensionY,
                       const SideviewBehaviour& behaviour);
    void projectBox();
    void addUpHeights();
    bool runsAgainstBearing() const;
    std::string fault() const;
    std::string faultOfBox() const;
    std::string faultOfHeights() const;

    double axisValue(Coordinate coordinate) const;
    double widthBetweenMargins() const;
    double imageX(CLLocationCoordinate2D coordinate) const;
    double fractionAt(double imageX) const;
    Coordinate onDiagonal(double fraction) const;
    Coordinate targetAt(double imageX, Coordinate current) const;
    Coordinate targetAlongBearing(CGPoint point, Coordinate current) const;
    VerticalPosition screenPointY(std::int64_t levelNumber) const;
    double lower(const SideviewLevelBounds& bounds) const;
    double upper(const SideviewLevelBounds& bounds) const;
    template <class Contains, class Nearest>
    void walkLevels(CGPoint point, Contains contains, Nearest nearest) const;

    LevelsFile _file;
    double _dimensionX;
    double _dimensionY;
    SideviewBehaviour _behaviour;
    double _sine;
    double _cosine;
    bool _boxIsFinite = true;
    double _lowerBound = 0;
    double _upperBound = 0;
    Coordinate _minimumCoordinate{};
    Coordinate _maximumCoordinate{};
    Radians _bearingToTarget;
    double _boundsDistance = 0;
    bool _mirrored = false;
    /// What a mirrored picture is turned round over, image points.
    double _mirrorWidth;
    double _netLevelHeights = 0;
    double _totalHeight = 0;
};

} // namespace trelmix
