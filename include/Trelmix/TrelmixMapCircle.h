/// @file
/// A filled disc of a radius in metres.
#pragma once

#include <Trelmix/Platform/CLLocation.h>
#include <Trelmix/Platform/UIColor.h>
#include <Trelmix/TrelmixMapOverlay.h>

#include <optional>

namespace trelmix {

/// A filled disc at true ground size. Starts with radius 1 m, no colour and zIndex 27.
///
/// Created by TrelmixMapEngineFactory; shared between the application and the scene it is shown in.
/// Main thread only.
class TRELMIX_API TrelmixMapCircle : public TrelmixMapOverlay {
public:
    ~TrelmixMapCircle() override;

    /// The centre as drawn right now, also during a move; invalid while the circle is on no map.
    virtual CLLocationCoordinate2D presentedCoordinate() const = 0;
    /// The centre as it was set last: during a move where that ends, and invalid when an invalid one was set.
    virtual CLLocationCoordinate2D coordinate() const = 0;
    /// Moves the circle at once; an invalid coordinate is stored but does not move it.
    virtual void setCoordinate(CLLocationCoordinate2D coordinate) = 0;

    /// Metres, as they were set last.
    virtual double radius() const = 0;
    /// Metres; negative and NaN count as 0.
    virtual void setRadius(double radius) = 0;

    /// Fills it, its own opacity times the overlay's; without one nothing is drawn.
    virtual std::optional<UIColor> color() const = 0;
    /// Takes effect with the next frame.
    virtual void setColor(std::optional<UIColor> color) = 0;

    /// Moves and resizes together. Without a map nothing changes.
    /// @param radius metres. @param duration seconds; ignored when `animated` is false.
    virtual void updateCircleWithCoordinate(CLLocationCoordinate2D coordinate, double radius, bool animated,
                                            double duration) = 0;
};

} // namespace trelmix
