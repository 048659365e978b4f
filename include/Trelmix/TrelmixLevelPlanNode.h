/// @file
/// A floor plan laid on the ground.
#pragma once

#include <Trelmix/Platform/CLLocation.h>
#include <Trelmix/Platform/UIImage.h>
#include <Trelmix/TrelmixMapOverlay.h>

namespace trelmix {

/// An image stretched over the rectangle between two corners and turned about its centre. Starts with
/// zIndex 25.
///
/// Created by TrelmixMapEngineFactory; shared between the application and the scene it is shown in.
/// Main thread only.
class TRELMIX_API TrelmixLevelPlanNode : public TrelmixMapOverlay {
public:
    ~TrelmixLevelPlanNode() override;

    /// The corner of least latitude and longitude, before the plan is turned.
    virtual CLLocationCoordinate2D southWest() const = 0;
    /// Takes effect with the next frame. Corners that are invalid, polar or equal leave the plan without a
    /// picture.
    virtual void setSouthWest(CLLocationCoordinate2D corner) = 0;
    /// The corner of greatest latitude and longitude, before the plan is turned.
    virtual CLLocationCoordinate2D northEast() const = 0;
    /// As for `setSouthWest`.
    virtual void setNorthEast(CLLocationCoordinate2D corner) = 0;

    /// The plan, its top edge to the north before it is turned.
    virtual std::shared_ptr<const UIImage> levelPlanImage() const = 0;
    /// Stretched over the rectangle; empty shows nothing.
    virtual void setLevelPlanImage(std::shared_ptr<const UIImage> image) = 0;

    /// Degrees about the centre, positive from east towards north; 0 unless set.
    virtual double levelPlanRotation() const = 0;
    /// Degrees; values that are not finite are ignored.
    virtual void setLevelPlanRotation(double degrees) = 0;
};

} // namespace trelmix
