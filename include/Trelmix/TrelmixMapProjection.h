/// @file
/// Between the screen and the ground.
#pragma once

#include <Trelmix/Export.h>
#include <Trelmix/Platform/CGGeometry.h>
#include <Trelmix/Platform/CLLocation.h>

namespace trelmix {

/// Converts between points of the engine's view and coordinates on the ground, for the camera as it is at the
/// call.
///
/// Handed out by TrelmixMapEngine::projection and implemented by the engine alone. Main thread only. Screen
/// points have their origin at the view's top left, y downward; they may lie outside the view. Nothing is
/// checked: a view without a size gives coordinates that are not finite.
class TRELMIX_API TrelmixMapProjection {
public:
    virtual ~TrelmixMapProjection();

    /// What is seen in the top left corner of the view.
    virtual CLLocationCoordinate2D topLeftCoordinate() const = 0;
    /// What is seen in the bottom left corner of the view.
    virtual CLLocationCoordinate2D bottomLeftCoordinate() const = 0;
    /// What is seen in the top right corner of the view.
    virtual CLLocationCoordinate2D topRightCoordinate() const = 0;
    /// What is seen in the bottom right corner of the view.
    virtual CLLocationCoordinate2D bottomRightCoordinate() const = 0;

    /// Where the coordinate is seen. One behind the camera comes out mirrored through it, without a sign of
    /// it; one in the camera's own plane is not finite.
    virtual CGPoint screenCoordinateFor(CLLocationCoordinate2D coordinate) const = 0;
    /// The ground under the point. Above the horizon it is the place behind the camera where the line of
    /// sight, run backwards, meets the ground; longitudes beyond +-180 come back by steps of 180.
    virtual CLLocationCoordinate2D worldCoordinateFor(CGPoint point) const = 0;

protected:
    /// For the engine's own kind.
    TrelmixMapProjection() = default;
    /// For the library's own kind.
    TrelmixMapProjection(const TrelmixMapProjection&) = default;
    /// For the library's own kind.
    TrelmixMapProjection& operator=(const TrelmixMapProjection&) = default;
};

} // namespace trelmix
