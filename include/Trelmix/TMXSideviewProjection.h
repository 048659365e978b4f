/// @file
/// Between the world and the side view's bitmap.
#pragma once

#include <Trelmix/Export.h>
#include <Trelmix/Platform/CGGeometry.h>
#include <Trelmix/Platform/CLLocation.h>
#include <Trelmix/TrelmixMapEngineCamera.h>
#include <Trelmix/TrelmixMapProjection.h>

#include <cstdint>
#include <memory>
#include <optional>

namespace trelmix {

/// Converts between coordinates on a level and points of the bitmap in which a structure's levels are drawn
/// stacked.
///
/// Handed out by TMXSideviewScrollView::sideviewProjection and implemented by the library alone; immutable,
/// and good for as long as it is held, also when the side view has been set up or behaves anew. Any thread.
/// Image points: origin at the bitmap's top left, x right, y down. Numbers that are not finite give results
/// that are not finite.
class TRELMIX_API TMXSideviewProjection {
public:
    virtual ~TMXSideviewProjection();

    /// The image point of a coordinate on a level: x from the coordinate, y the level's middle. 0 for the y
    /// of a level that the file does not have; not a number where the behaviour has `hidesUnknownLevels`.
    virtual CGPoint point(CLLocationCoordinate2D coordinate, std::int64_t levelNumber) const = 0;
    /// The place on the structure's diagonal that the point's x stands for. Knows neither the bitmap's
    /// margins nor the direction that `point` may turn round: its inverse only where both have no effect, or
    /// where the behaviour has `touchesLeadToPlaces`.
    virtual CLLocationCoordinate2D coordinate(CGPoint point) const = 0;
    /// The level drawn at the point's height, else the nearest; empty for a file without levels.
    virtual std::optional<std::int64_t> levelAt(CGPoint point) const = 0;
    /// Metres from floor to ceiling of the level drawn at the point's height, else of the nearest; 0 for a
    /// file without levels.
    virtual double levelHeight(CGPoint point) const = 0;

    /// Where a map's view lies on a level, image points; without height on a level that hides what lies on
    /// it.
    virtual CGRect cameraBoundingRectangle(const TrelmixMapProjection& projection,
                                           std::int64_t levelNumber) const = 0;
    /// The current camera moved along the structure towards the point's x, or to it where the behaviour has
    /// `touchesLeadToPlaces`; empty when its target would not be finite.
    virtual std::shared_ptr<TrelmixMapEngineCamera>
    cameraForSideviewPoint(CGPoint point, const TrelmixMapEngineCamera& currentCamera) const = 0;

protected:
    /// For the library's own kind.
    TMXSideviewProjection() = default;
    /// For the library's own kind.
    TMXSideviewProjection(const TMXSideviewProjection&) = default;
    /// For the library's own kind.
    TMXSideviewProjection& operator=(const TMXSideviewProjection&) = default;
};

} // namespace trelmix
