/// @file
/// A line of constant width on screen.
#pragma once

#include <Trelmix/Platform/CLLocation.h>
#include <Trelmix/Platform/UIColor.h>
#include <Trelmix/TrelmixMapOverlay.h>

#include <vector>

namespace trelmix {

/// A line with mitered joins that is as wide on screen at every zoom. Starts blue, 5 points wide, with
/// zIndex 28.
///
/// Created by TrelmixMapEngineFactory; shared between the application and the scene it is shown in.
/// Main thread only.
class TRELMIX_API TrelmixMapPolyline : public TrelmixMapOverlay {
public:
    ~TrelmixMapPolyline() override;

    /// Its own opacity counts times the overlay's.
    virtual UIColor color() const = 0;
    /// Takes effect with the next frame.
    virtual void setColor(UIColor color) = 0;

    /// Screen points; 5 unless set.
    virtual float width() const = 0;
    /// Takes effect with the next frame. Values that are not finite are ignored; with 0 or less nothing is
    /// seen, and vertices set meanwhile are not drawn later either.
    virtual void setWidth(float width) = 0;

    /// On a map: without the vertices that the line's clean-up dropped (repeated ones, full
    /// reversals and places that the map does not have).
    virtual std::vector<CLLocation> polylineVertices() const = 0;
    /// In order; only their coordinates are used. Of fewer than two different places nothing is made: the
    /// line before stays.
    virtual void setPolylineVertices(std::vector<CLLocation> vertices) = 0;
};

} // namespace trelmix
