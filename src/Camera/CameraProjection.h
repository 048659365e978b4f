#pragma once

#include "Camera/CameraFrame.h"
#include "Platform/Scene/SCNVector.h"

#include <Trelmix/TrelmixMapEngineCamera.h>
#include <Trelmix/TrelmixMapProjection.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <utility>

namespace trelmix {

class SCNNode;
class SCNView;

/// The camera's state in the scene's units, and every conversion between coordinates, map points and the
/// screen.
///
/// One per engine, created with its first camera and never replaced; overlays keep a reference. Its origin,
/// and with it the scene's, never moves. It computes the renderer's perspective itself: vertical field of
/// view 60 degrees, the camera node at cameraPositionVector() with Euler angles (viewing angle, 0, rotation).
///
/// Setters need the scene lock. They compute everything that depends on the camera at once, so that reads,
/// which also need the lock while setters may run, are free of races among themselves; `frame()` gives a
/// snapshot to convert with outside the lock. The protocol's own conversions are the main thread's and need
/// none. The state stays finite: a setter ignores a number that is not.
///
/// Long by its many small names; the arithmetic is CameraFrame's.
class CameraProjection final : public TrelmixMapProjection {
public:
    /// An invalid target, or one at a pole, would spoil the scene's origin for good: it becomes (0, 0).
    CameraProjection(Coordinate target, ScreenPoint dimensions);
    ~CameraProjection() override;
    CameraProjection(const CameraProjection&) = delete;
    CameraProjection& operator=(const CameraProjection&) = delete;

    CLLocationCoordinate2D topLeftCoordinate() const override;
    CLLocationCoordinate2D bottomLeftCoordinate() const override;
    CLLocationCoordinate2D topRightCoordinate() const override;
    CLLocationCoordinate2D bottomRightCoordinate() const override;
    CGPoint screenCoordinateFor(CLLocationCoordinate2D coordinate) const override;
    CLLocationCoordinate2D worldCoordinateFor(CGPoint point) const override;

    /// The map point of the scene under a screen point.
    WorldMapPoint worldMapPoint(ScreenPoint point) const { return _frame.unproject(point); }
    /// The conversions for another camera on the same scene and view: the same results as after setting it.
    ScreenPoint screenCoordinate(Coordinate coordinate, const CameraPose& pose) const;
    WorldMapPoint worldMapPoint(ScreenPoint point, const CameraPose& pose) const;

    const CameraPose& pose() const { return _pose; }
    /// Everything needed to convert points for the camera as it is; copy it to use it outside the lock.
    const CameraFrame& frame() const { return _frame; }
    CameraFrame frame(const CameraPose& pose) const { return {pose, _stage}; }

    /// Where the camera node stands.
    SCNVector3 cameraPositionVector() const { return narrowed(exactCameraPosition()); }
    /// The same, not narrowed: floats shake far from the origin.
    Vector3d exactCameraPosition() const { return _frame.cameraPosition(); }
    /// A fresh public record of the camera.
    TrelmixMapEngineCamera cameraRecord() const;

    /// Public zoom, 14 to 22, at which the rectangle of two opposite corners fits the view.
    float zoomLevelToFit(Coordinate bounds1, Coordinate bounds2) const;
    /// The same without limits: infinite for a rectangle of no size, NaN for numbers that are not finite.
    float unlimitedZoomToFit(Coordinate bounds1, Coordinate bounds2) const;

    std::shared_ptr<SCNNode> cameraNode() const { return _cameraNode.lock(); }
    void setCameraNode(std::weak_ptr<SCNNode> node) { _cameraNode = std::move(node); }
    std::shared_ptr<SCNView> sceneView() const { return _sceneView.lock(); }
    void setSceneView(std::weak_ptr<SCNView> view) { _sceneView = std::move(view); }

    /// The same place twice: what the camera looks at.
    WorldMapPoint cameraTargetMapPoint() const { return _pose.target; }
    Coordinate cameraTarget() const { return _cameraTarget; }
    void setCameraTarget(WorldMapPoint mapPoint, Coordinate coordinate);

    /// 0 shows north at the top; minus the public heading.
    Radians mapRotation() const { return _pose.rotation; }
    void setMapRotation(Radians rotation);
    /// From the vertical.
    Radians mapViewingAngle() const { return _pose.viewingAngle; }
    void setMapViewingAngle(Radians angle);
    /// Public zoom: one more than the internal one, which overlays and tiles are updated with.
    float mapZoom() const { return _pose.zoom + 1.0F; }
    void setMapZoom(float zoom) { setInternalZoom(zoom - 1.0F); }
    float internalZoom() const { return _pose.zoom; }
    void setInternalZoom(float zoom);

    /// Both angles and the public zoom in one write; finite.
    void setPose(Radians rotation, Radians viewingAngle, float mapZoom);

    /// Size of the view in screen points.
    ScreenPoint mapDimensions() const { return _stage.mapDimensions; }
    /// Recomputes the ratio when the width changed, or when the ratio stored is not finite: a height of zero
    /// must not spoil it for good. A new height alone leaves the ratio as it is.
    void setMapDimensions(ScreenPoint dimensions);

    const CameraStage& stage() const { return _stage; }
    /// See CameraStage::zoomIsScale. What stands on the map must be set up again afterwards.
    void setZoomIsScale(bool zoomIsScale);
    WorldMapPoint initialMapPoint() const { return _stage.initialMapPoint; }
    /// Map points of the scene per screen point for a camera at internal zoom 22 that looks straight down;
    /// NaN for an empty view, which callers take as: no scrolling, leave sizes alone.
    double mapPointScreenPointRatio() const { return _mapPointScreenPointRatio; }
    /// Map points of the scene per metre at the latitude of the first target.
    double mapPointsPerMeterMax() const { return _stage.mapPointsPerMeterMax; }

private:
    /// The application's copy, which only the main thread touches: animations change the camera on the
    /// thread that draws.
    struct PublicCamera {
        CameraFrame frame;
        ScreenPoint size;
    };
    const PublicCamera& publicCamera() const;
    double currentRatio() const;
    void cameraChanged();

    std::weak_ptr<SCNNode> _cameraNode;
    std::weak_ptr<SCNView> _sceneView;
    Coordinate _cameraTarget;
    CameraStage _stage;
    CameraPose _pose;
    CameraFrame _frame;
    double _mapPointScreenPointRatio;
    std::atomic<std::uint64_t> _changes{0};
    mutable PublicCamera _public;
    mutable std::uint64_t _publicChanges = 0;
};

} // namespace trelmix
