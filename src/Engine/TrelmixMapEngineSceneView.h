#pragma once

#include "Camera/CameraProjection.h"
#include "Geo/GeoTypes.h"
#include "Platform/Foundation/MainEntry.h"
#include "Platform/Foundation/RunLoop.h"
#include "Platform/Scene/SCNView.h"
#include "Platform/View/UIGestureRecognizer.h"
#include "Platform/View/ViewNode.h"

#include <Trelmix/TrelmixLevelPlanNode.h>
#include <Trelmix/TrelmixMapEngine.h>
#include <Trelmix/TrelmixMapMarker.h>

#include <functional>
#include <memory>
#include <optional>

namespace trelmix {

class MarkerNode;

/// The engine: a view that hosts the scene, owns the camera, and changes it in one place only,
/// `internalSetCamera`.
///
/// Made by the factory. Its last reference may fall on any thread; it is then destroyed by the main queue.
class TrelmixMapEngineSceneView final : public ViewNode,
                                        public TrelmixMapEngine,
                                        public SCNSceneRendererDelegate,
                                        public UIGestureRecognizerDelegate {
public:
    static constexpr float kDefaultInitialZoom = 18.5F;
    /// Seconds of every animated camera change.
    static constexpr double kTMXEngineMapAnimationDuration = 0.2;
    /// 55 degrees in radians.
    static constexpr float kHighestViewingAngle = 0.9599311F;

    static std::shared_ptr<TrelmixMapEngineSceneView> make(CGRect frame = {});
    ~TrelmixMapEngineSceneView() override;
    static std::shared_ptr<TrelmixMapMarker> createMapMarker(std::shared_ptr<const UIImage> icon,
                                                             CLLocationCoordinate2D coordinate);
    static std::shared_ptr<TrelmixLevelPlanNode> createLevelPlanNode(std::shared_ptr<const UIImage> image,
                                                                     CLLocationCoordinate2D southWest,
                                                                     CLLocationCoordinate2D northEast);

    std::shared_ptr<UIView> view() override {
        return requireMainThread("view") ? shared_from_this() : nullptr;
    }
    std::optional<UIColor> backgroundColor() const override;
    void setBackgroundColor(std::optional<UIColor> color) override;
    std::shared_ptr<TrelmixMapEngineDelegate> delegate() const override {
        return requireMainThread("delegate") ? _delegate.lock() : nullptr;
    }
    void setDelegate(std::weak_ptr<TrelmixMapEngineDelegate> delegate) override;
    std::shared_ptr<TrelmixMapProjection> projection() const override;
    std::shared_ptr<TrelmixMapEngineCamera> camera() const override;

    bool enableRotationGesture() const override {
        return readOnMain("enableRotationGesture", _enableRotationGesture);
    }
    void setEnableRotationGesture(bool enable) override;
    bool enableTiltGesture() const override { return readOnMain("enableTiltGesture", _enableTiltGesture); }
    void setEnableTiltGesture(bool enable) override;
    bool enableZoomGesture() const override { return readOnMain("enableZoomGesture", _enableZoomGesture); }
    void setEnableZoomGesture(bool enable) override;
    bool enableScrollGesture() const override {
        return readOnMain("enableScrollGesture", _enableScrollGesture);
    }
    void setEnableScrollGesture(bool enable) override;

    float maxZoom() const override { return readOnMain("maxZoom", _maxZoom); }
    void setMaxZoom(float zoom) override;
    float minZoom() const override { return readOnMain("minZoom", _minZoom); }
    void setMinZoom(float zoom) override;
    float maxSupportedZoom() const override { return 23.0F; }
    float minSupportedZoom() const override { return 15.0F; }

    CLLocationCoordinate2D cameraTargetBoundsNorthEast() const override {
        return readOnMain("cameraTargetBoundsNorthEast", _boundsNorthEast, kCLLocationCoordinate2DInvalid);
    }
    void setCameraTargetBoundsNorthEast(CLLocationCoordinate2D corner) override;
    CLLocationCoordinate2D cameraTargetBoundsSouthWest() const override {
        return readOnMain("cameraTargetBoundsSouthWest", _boundsSouthWest, kCLLocationCoordinate2DInvalid);
    }
    void setCameraTargetBoundsSouthWest(CLLocationCoordinate2D corner) override;

    bool hitTestBoundingBoxOnly() const override {
        return readOnMain("hitTestBoundingBoxOnly", _hitTestBoundingBoxOnly);
    }
    void setHitTestBoundingBoxOnly(bool boxOnly) override;

    void initialiseWithTarget(CLLocationCoordinate2D target, float zoom) override;
    void setCamera(const std::shared_ptr<TrelmixMapEngineCamera>& camera, bool animated) override;
    void setCameraWithRotation(double rotation, double viewingAngle, float zoom, bool animated) override;

    // For overlays and hosts, with the scene lock held.
    const std::shared_ptr<SCNView>& sceneView() const { return _sceneView; }
    const std::shared_ptr<SCNScene>& defaultScene() const { return _defaultScene; }
    std::shared_ptr<TrelmixMapEngineDelegate> currentDelegate() const { return _delegate.lock(); }
    const std::shared_ptr<CameraProjection>& cameraProjection() const { return _cameraProjection; }
    bool hasInitialMapZoom() const { return _initialMapZoom.has_value(); }
    /// Does nothing when there is a projection. An invalid or polar coordinate puts the scene's origin at (0,
    /// 0).
    void initialiseCameraProjection(Coordinate coordinate);
    void setupCameraProjection();
    /// The first overlay's choice: the current camera at this zoom.
    void applyInitialZoom(float zoom);

    /// A camera as the one camera path takes it. Radians; public zoom.
    struct CameraChange {
        WorldMapPoint target;
        float rotation = 0;
        float viewingAngle = 0;
        float zoom = 0;
        bool fromGesture = false;
        bool animated = false;
        OpenGlPoint offset{0, 0};
    };
    /// The projection's camera as a change that changes nothing; needs a projection.
    CameraChange currentCamera() const;
    /// The one camera path. Numbers that are not finite (but for the tilt) change nothing.
    void internalSetCamera(const CameraChange& change);
    void informDelegateAboutIdle();

    void rendererUpdateAtTime(SCNView& view, double time) override;
    /// While a marker is dragged any two; otherwise any two without a pan, and with one only while it cannot
    /// scroll.
    bool gestureRecognizerShouldRecognizeSimultaneouslyWith(UIGestureRecognizer& asked,
                                                            UIGestureRecognizer& other) override;

protected:
    void layoutSubviews() override;

private:
    explicit TrelmixMapEngineSceneView(CGRect frame);
    void setupSceneKit();
    void setupCamera();
    std::shared_ptr<TrelmixMapEngineSceneView> self();

    // Gestures (EngineGestures.cpp)
    void setupGestureRecognisers();
    void pinchGesture(UIGestureRecognizer& recognizer);
    void rotationGesture(UIGestureRecognizer& recognizer);
    void panGesture(UIGestureRecognizer& recognizer);
    void doubleTapGesture();
    void performMapScroll(double scrollX, double scrollY);
    /// A displacement on screen, points, as a displacement of the camera's target in zoom-22 map points.
    OpenGlPoint normalisedOpenGlPoint(ScreenPoint displacement) const;
    bool canMoveByGesture() const { return _cameraProjection && !isDragging(); }

    // Taps and drags (EngineTaps.cpp)
    void tappingGesture(const UIGestureRecognizer& recognizer);
    void longPressGesture(const UIGestureRecognizer& recognizer);
    bool isDragging() const;
    /// True when the tap stops there.
    bool tapNode(const std::shared_ptr<SCNNode>& node);
    void centreOnMarker(const MarkerNode& marker);
    void beginDragAt(CGPoint location, UIGestureRecognizerState state);
    void continueDrag(CGPoint location);
    void endDrag();
    std::optional<CLLocationCoordinate2D> groundCoordinateAt(CGPoint location) const;

    /// False when the delegate has made another camera meanwhile, and this one stops.
    bool announceChange(bool fromGesture);
    bool applyCamera(const CameraChange& change);
    std::shared_ptr<const SCNAction> performMapEulerRotate(float pitch, float roll, bool animated);
    void runCameraAnimation(float startZoom, float goalZoom, std::shared_ptr<const SCNAction> rotation);
    WorldMapPoint canSetCameraToTarget(WorldMapPoint target) const;
    void reportWhenAtRest(const CameraChange& change);
    void updateOverlays();
    void reportIdleToDelegate();

    std::weak_ptr<TrelmixMapEngineDelegate> _delegate;
    std::shared_ptr<SCNView> _sceneView;
    std::shared_ptr<SCNScene> _defaultScene;
    std::shared_ptr<SCNNode> _cameraNode;
    bool _enableRotationGesture = true;
    bool _enableTiltGesture = true;
    bool _enableZoomGesture = true;
    bool _enableScrollGesture = true;
    std::shared_ptr<CameraProjection> _cameraProjection;
    std::optional<float> _initialMapZoom;
    std::optional<Coordinate> _initialCameraTarget;
    std::shared_ptr<Timer> _cameraIdleTimer;
    float _maxZoom = 23.0F;
    float _minZoom = 15.0F;
    CLLocationCoordinate2D _boundsNorthEast = kCLLocationCoordinate2DInvalid;
    CLLocationCoordinate2D _boundsSouthWest = kCLLocationCoordinate2DInvalid;
    std::shared_ptr<MarkerNode> _draggingMarker;
    CGPoint _lastDraggingPoint;
    bool _hitTestBoundingBoxOnly = true;
    bool _renderedFirstTime = false;
    /// Whether a camera has been placed; until then the projection's zoom is a placeholder.
    bool _hasCamera = false;
    std::uint64_t _changeNumber = 0;
    int _changeDepth = 0;
};

} // namespace trelmix
