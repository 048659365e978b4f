/// @file
/// A filled area.
#pragma once

#include <Trelmix/Platform/CLLocation.h>
#include <Trelmix/Platform/UIColor.h>
#include <Trelmix/TrelmixMapOverlay.h>

#include <optional>
#include <vector>

namespace trelmix {

/// The area inside a closed outline, filled by the non-zero rule. Starts without colour and with zIndex 26.
///
/// Created by TrelmixMapEngineFactory; shared between the application and the scene it is shown in.
/// Main thread only.
class TRELMIX_API TrelmixMapPolygon : public TrelmixMapOverlay {
public:
    ~TrelmixMapPolygon() override;

    /// Fills it, its own opacity times the overlay's; without one nothing is drawn.
    virtual std::optional<UIColor> color() const = 0;
    /// Takes effect with the next frame.
    virtual void setColor(std::optional<UIColor> color) = 0;

    /// As they were set.
    virtual std::vector<CLLocation> polygonCorners() const = 0;
    /// In order; the outline closes itself. Corners that have no place on the map are left out of the
    /// drawing. Filled at once, by the calling thread, while frames wait: 50,000 corners of a ragged coast
    /// take a second, 100,000 some seconds. An outline that would take longer, or that crosses itself
    /// thousands of times, may draw nothing.
    virtual void setPolygonCorners(std::vector<CLLocation> corners) = 0;
};

} // namespace trelmix
