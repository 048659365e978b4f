/// @file
/// The map itself.
#pragma once

#include <Trelmix/MapBehaviour.h>
#include <Trelmix/Platform/CLLocation.h>
#include <Trelmix/Platform/UIColor.h>
#include <Trelmix/Platform/UIView.h>
#include <Trelmix/TrelmixMapEngineCamera.h>
#include <Trelmix/TrelmixMapEngineDelegate.h>
#include <Trelmix/TrelmixMapProjection.h>

#include <memory>
#include <optional>

namespace trelmix {

/// A map under a perspective camera: the one object that an application embeds.
///
/// Created by TrelmixMapEngineFactory::createMap and owned by the application; run by a host (OffscreenHost,
/// ViewHost). The last reference may fall on any thread: the engine is then destroyed on the main one. Main
/// thread only; a call from elsewhere is ignored and reported as a fault.
class TRELMIX_API TrelmixMapEngine {
public:
    virtual ~TrelmixMapEngine();

    /// The view that the application places in its hierarchy.
    virtual std::shared_ptr<UIView> view() = 0;
    /// Colour behind the map; white unless set.
    virtual std::optional<UIColor> backgroundColor() const = 0;
    /// Takes effect with the next frame; without one it is white.
    virtual void setBackgroundColor(std::optional<UIColor> color) = 0;
    /// Who hears of the map; empty when none was set, and once it is gone.
    virtual std::shared_ptr<TrelmixMapEngineDelegate> delegate() const = 0;
    /// Hears of the map from now on, in place of the one before; empty for none. The engine does not own it.
    virtual void setDelegate(std::weak_ptr<TrelmixMapEngineDelegate> delegate) = 0;
    /// Conversions between screen points and coordinates for the current camera; empty before the first
    /// camera. The object lives as long as it is held and follows the engine's camera.
    virtual std::shared_ptr<TrelmixMapProjection> projection() const = 0;
    /// A fresh record of the current camera; empty before the first.
    virtual std::shared_ptr<TrelmixMapEngineCamera> camera() const = 0;

    /// Whether two fingers may turn the map; true unless set.
    virtual bool enableRotationGesture() const = 0;
    /// Counts from the next movement of the fingers.
    virtual void setEnableRotationGesture(bool enable) = 0;
    /// Whether several fingers may tilt the map by moving up and down; true unless set.
    virtual bool enableTiltGesture() const = 0;
    /// Counts from the next movement of the fingers.
    virtual void setEnableTiltGesture(bool enable) = 0;
    /// Whether two fingers may zoom by spreading and closing; true unless set. A double tap always zooms.
    virtual bool enableZoomGesture() const = 0;
    /// Counts from the next movement of the fingers.
    virtual void setEnableZoomGesture(bool enable) = 0;
    /// Whether fingers may move the map; true unless set.
    virtual bool enableScrollGesture() const = 0;
    /// Counts from the next movement of the fingers.
    virtual void setEnableScrollGesture(bool enable) = 0;

    /// The highest zoom that a camera may take, as it was set here last; `maxSupportedZoom` unless set.
    virtual float maxZoom() const = 0;
    /// Limits the cameras of all engines of the process from their next change on; the last one to set it
    /// decides. Where the behaviour has `zooms` it limits this engine alone, and its camera at once. A value
    /// outside the supported range is read back, but limits nothing; NaN is ignored.
    virtual void setMaxZoom(float zoom) = 0;
    /// The lowest zoom that a camera may take, as it was set here last; `minSupportedZoom` unless set.
    virtual float minZoom() const = 0;
    /// As for `setMaxZoom`; where the lowest lies above the highest it wins.
    virtual void setMinZoom(float zoom) = 0;
    /// 23: the highest zoom that is ever shown.
    virtual float maxSupportedZoom() const = 0;
    /// 15, or 0 where the behaviour has `zooms`: the lowest zoom that is ever shown.
    virtual float minSupportedZoom() const = 0;

    /// One corner of the rectangle that the camera's target must stay in; invalid at first.
    virtual CLLocationCoordinate2D cameraTargetBoundsNorthEast() const = 0;
    /// Counts from the next change of the camera. While one corner is invalid there are no bounds; a corner
    /// at a pole lies on the map's edge.
    virtual void setCameraTargetBoundsNorthEast(CLLocationCoordinate2D corner) = 0;
    /// The opposite corner; invalid at first.
    virtual CLLocationCoordinate2D cameraTargetBoundsSouthWest() const = 0;
    /// As for `setCameraTargetBoundsNorthEast`.
    virtual void setCameraTargetBoundsSouthWest(CLLocationCoordinate2D corner) = 0;

    /// How the map behaves; classic at first.
    virtual MapBehaviour behaviour() const = 0;
    /// Takes effect at once, also in a map that is shown; a gesture under way is cancelled.
    virtual void setBehaviour(const MapBehaviour& behaviour) = 0;

    /// True (as at first): taps hit overlays by their bounding boxes. False: by what is drawn.
    virtual bool hitTestBoundingBoxOnly() const = 0;
    /// Counts from the next tap.
    virtual void setHitTestBoundingBoxOnly(bool boxOnly) = 0;

    /// Sets the first camera: straight down, north at the top. Once there is one nothing changes. The zoom is
    /// limited like every other; when a number is not finite the call is ignored. An invalid target, or one
    /// at a pole, makes the camera at (0, 0). The first target fixes the map's scale: at a given zoom
    /// everything is drawn larger or smaller by the ratio of the two latitudes' cosines when the first camera
    /// was elsewhere.
    virtual void initialiseWithTarget(CLLocationCoordinate2D target, float zoom) = 0;
    /// Moves the camera; tilt, zoom and target are limited to what is allowed, a tilt that is not a number is
    /// the highest one. An empty record, and one whose target, rotation or zoom is not finite, changes
    /// nothing.
    /// @param animated over 0.2 s; otherwise at once.
    virtual void setCamera(const std::shared_ptr<TrelmixMapEngineCamera>& camera, bool animated) = 0;
    /// The same, keeping the target. Degrees; nothing happens before the first camera.
    virtual void setCameraWithRotation(double rotation, double viewingAngle, float zoom, bool animated) = 0;
};

} // namespace trelmix
