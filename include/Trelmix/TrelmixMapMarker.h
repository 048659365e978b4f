/// @file
/// A pin drawn at one place on the map.
#pragma once

#include <Trelmix/Platform/CGGeometry.h>
#include <Trelmix/Platform/CLLocation.h>
#include <Trelmix/Platform/UIColor.h>
#include <Trelmix/Platform/UIImage.h>
#include <Trelmix/TrelmixMapOverlay.h>

namespace trelmix {

/// An icon at a coordinate that keeps its size on screen at every zoom. It stands upright and faces the
/// camera, or lies flat and turns with the map. Starts tappable and with zIndex 29.
///
/// Created by TrelmixMapEngineFactory; shared between the application and the scene it is shown in.
/// Main thread only.
class TRELMIX_API TrelmixMapMarker : public TrelmixMapOverlay {
public:
    ~TrelmixMapMarker() override;

    /// Seconds that assigning `coordinate` takes, for all markers; 0.2 unless set. Negative and NaN count as
    /// 0.
    static void setMarkerAnimationDuration(double seconds);

    /// Where the marker is drawn right now, also during a move or a drag; invalid while it is on no map.
    virtual CLLocationCoordinate2D presentedCoordinate() const = 0;
    /// As it was set last: during a move where that ends, and invalid when an invalid one was set. It does
    /// not follow a finger that drags the marker; `presentedCoordinate` does.
    virtual CLLocationCoordinate2D coordinate() const = 0;
    /// Stores the coordinate; on a map a valid one moves the marker there (see `setMarkerAnimationDuration`),
    /// an invalid one leaves it where it is.
    virtual void setCoordinate(CLLocationCoordinate2D coordinate) = 0;
    /// Moves the marker. Without a map, and for an invalid coordinate, nothing changes.
    /// @param duration seconds; ignored when `animated` is false.
    virtual void setCoordinate(CLLocationCoordinate2D coordinate, bool animated, double duration) = 0;

    /// Drawn at its size in points (pixels over scale), whatever the zoom.
    virtual std::shared_ptr<const UIImage> markerIcon() const = 0;
    /// Empty takes the marker out of the scene until `map` is set again.
    virtual void setMarkerIcon(std::shared_ptr<const UIImage> icon) = 0;
    /// The icon's colours are multiplied by it: a white icon takes it, black stays black, and its alpha fades
    /// the whole. Opaque white, which changes nothing, unless set. Markers of one icon share its memory,
    /// whatever their tints. Components are limited to 0 to 1.
    virtual UIColor tint() const = 0;
    /// Takes effect with the next frame.
    virtual void setTint(UIColor tint) = 0;
    /// The point of the icon that sits on the coordinate, in fractions of its width and height from the top
    /// left; (0.5, 0.5) unless set.
    virtual CGPoint groundAnchor() const = 0;
    /// Values that are not finite are ignored.
    virtual void setGroundAnchor(CGPoint anchor) = 0;

    /// True: the icon lies in the map's plane. False: it stands upright and faces the camera.
    virtual bool isFlat() const = 0;
    /// Takes effect with the next frame.
    virtual void setIsFlat(bool flat) = 0;
    /// True: a long press picks the marker up.
    virtual bool isDraggable() const = 0;
    /// Counts from the next long press.
    virtual void setIsDraggable(bool draggable) = 0;

    /// Degrees, clockwise; only flat markers show it. A rotation that was animated is not read here.
    virtual double markerRotation() const = 0;
    /// Takes effect with the next frame; values that are not finite turn nothing.
    virtual void setMarkerRotation(double degrees) = 0;
    /// @param duration seconds; ignored unless `animated` and flat. Nothing changes without a map.
    virtual void setRotation(double degrees, bool animated, double duration) = 0;
};

} // namespace trelmix
