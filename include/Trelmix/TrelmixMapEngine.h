/// @file
/// The map itself.
#pragma once

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
    /// Colour behind the map; white unless set. Without one it is white too.
    virtual std::optional<UIColor> backgroundColor() const = 0;
    virtual void setBackgroundColor(std::optional<UIColor> color) = 0;
    virtual std::shared_ptr<TrelmixMapEngineDelegate> delegate() const = 0;
    /// The engine does not own its delegate.
    virtual void setDelegate(std::weak_ptr<TrelmixMapEngineDelegate> delegate) = 0;
    /// Conversions between screen points and coordinates for the current camera; empty before the first
    /// camera. The object lives as long as it is held and follows the engine's camera.
    virtual std::shared_ptr<TrelmixMapProjection> projection() const = 0;
    /// A fresh record of the current camera; empty before the first.
    virtual std::shared_ptr<TrelmixMapEngineCamera> camera() const = 0;

    /// What fingers may do; all true unless set.
    virtual bool enableRotationGesture() const = 0;
    virtual void setEnableRotationGesture(bool enable) = 0;
    virtual bool enableTiltGesture() const = 0;
    virtual void setEnableTiltGesture(bool enable) = 0;
    virtual bool enableZoomGesture() const = 0;
    virtual void setEnableZoomGesture(bool enable) = 0;
    virtual bool enableScrollGesture() const = 0;
    virtual void setEnableScrollGesture(bool enable) = 0;

    /// Zoom limits of the user; shared by all engines of the process, the last one to set them decides. A
    /// value outside the supported range is read back, but limits nothing; NaN is ignored. Where the lowest
    /// lies above the highest it wins. Takes effect with the next camera.
    virtual float maxZoom() const = 0;
    virtual void setMaxZoom(float zoom) = 0;
    virtual float minZoom() const = 0;
    virtual void setMinZoom(float zoom) = 0;
    /// 23 and 15.
    virtual float maxSupportedZoom() const = 0;
    virtual float minSupportedZoom() const = 0;

    /// Corners of the rectangle that the camera's target must stay in from its next change on; while one is
    /// invalid, as at first, there is none. A corner at a pole lies on the map's edge.
    virtual CLLocationCoordinate2D cameraTargetBoundsNorthEast() const = 0;
    virtual void setCameraTargetBoundsNorthEast(CLLocationCoordinate2D corner) = 0;
    virtual CLLocationCoordinate2D cameraTargetBoundsSouthWest() const = 0;
    virtual void setCameraTargetBoundsSouthWest(CLLocationCoordinate2D corner) = 0;

    /// True (as at first): taps hit overlays by their bounding boxes. False: by what is drawn.
    virtual bool hitTestBoundingBoxOnly() const = 0;
    virtual void setHitTestBoundingBoxOnly(bool boxOnly) = 0;

    /// Sets the first camera. Once there is one this only records its values. Numbers that are not finite and
    /// invalid coordinates are ignored.
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
