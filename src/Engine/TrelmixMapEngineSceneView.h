#pragma once

#include "Engine/CameraPath.h"
#include "Engine/EngineTaps.h"
#include "Engine/Gestures/EngineGestures.h"
#include "Engine/MarkerDrag.h"
#include "Platform/Foundation/MainEntry.h"
#include "Platform/Scene/SCNView.h"
#include "Platform/View/ViewNode.h"

#include <Trelmix/TrelmixLevelPlanNode.h>
#include <Trelmix/TrelmixMapEngine.h>
#include <Trelmix/TrelmixMapMarker.h>

#include <memory>
#include <optional>

namespace trelmix {

/// The engine: a view that hosts the scene and holds the parts that do the work: the camera path, gestures,
/// taps, and a marker that is dragged. Itself it sets the view up and passes calls on: it is as long as the
/// protocol is.
///
/// Made by the factory. Its last reference may fall on any thread; it is then destroyed by the main queue.
class TrelmixMapEngineSceneView final : public ViewNode,
                                        public TrelmixMapEngine,
                                        public SCNSceneRendererDelegate,
                                        public UIGestureRecognizerDelegate {
public:
    static constexpr float kDefaultInitialZoom = 18.5F;
    /// Seconds of every animated camera change.
    static constexpr double kTMXEngineMapAnimationDuration = CameraPath::kDuration;

    static std::shared_ptr<TrelmixMapEngineSceneView> make(CGRect frame = {},
                                                           const MapBehaviour& behaviour = {});
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
        return readOnMain("enableRotationGesture", _gestures.flags.rotation);
    }
    void setEnableRotationGesture(bool enable) override;
    bool enableTiltGesture() const override { return readOnMain("enableTiltGesture", _gestures.flags.tilt); }
    void setEnableTiltGesture(bool enable) override;
    bool enableZoomGesture() const override { return readOnMain("enableZoomGesture", _gestures.flags.zoom); }
    void setEnableZoomGesture(bool enable) override;
    bool enableScrollGesture() const override {
        return readOnMain("enableScrollGesture", _gestures.flags.scroll);
    }
    void setEnableScrollGesture(bool enable) override;

    float maxZoom() const override { return readOnMain("maxZoom", _cameraPath.highestZoom()); }
    void setMaxZoom(float zoom) override;
    float minZoom() const override { return readOnMain("minZoom", _cameraPath.lowestZoom()); }
    void setMinZoom(float zoom) override;
    float maxSupportedZoom() const override { return _cameraPath.supportedZooms().highest; }
    float minSupportedZoom() const override { return _cameraPath.supportedZooms().lowest; }

    CLLocationCoordinate2D cameraTargetBoundsNorthEast() const override {
        return readOnMain("cameraTargetBoundsNorthEast", _cameraPath.boundsNorthEast(),
                          kCLLocationCoordinate2DInvalid);
    }
    void setCameraTargetBoundsNorthEast(CLLocationCoordinate2D corner) override;
    CLLocationCoordinate2D cameraTargetBoundsSouthWest() const override {
        return readOnMain("cameraTargetBoundsSouthWest", _cameraPath.boundsSouthWest(),
                          kCLLocationCoordinate2DInvalid);
    }
    void setCameraTargetBoundsSouthWest(CLLocationCoordinate2D corner) override;

    MapBehaviour behaviour() const override { return readOnMain("behaviour", _behaviour); }
    void setBehaviour(const MapBehaviour& behaviour) override;

    bool hitTestBoundingBoxOnly() const override {
        return readOnMain("hitTestBoundingBoxOnly", _taps.hitTestBoundingBoxOnly);
    }
    void setHitTestBoundingBoxOnly(bool boxOnly) override;

    void initialiseWithTarget(CLLocationCoordinate2D target, float zoom) override;
    void setCamera(const std::shared_ptr<TrelmixMapEngineCamera>& camera, bool animated) override;
    void setCameraWithRotation(double rotation, double viewingAngle, float zoom, bool animated) override;

    // For overlays and hosts, with the scene lock held.
    const MapBehaviour& currentBehaviour() const { return _behaviour; }
    const std::shared_ptr<SCNView>& sceneView() const { return _sceneView; }
    const std::shared_ptr<SCNScene>& defaultScene() const { return _defaultScene; }
    std::shared_ptr<TrelmixMapEngineDelegate> currentDelegate() const { return _delegate.lock(); }
    const std::shared_ptr<SCNNode>& cameraNode() const { return _cameraNode; }
    CameraPath& cameraPath() { return _cameraPath; }
    EngineGestures& gestures() { return _gestures; }
    EngineTaps& taps() { return _taps; }
    MarkerDrag& drag() { return _drag; }
    std::weak_ptr<TrelmixMapEngineSceneView> weakSelf() { return self(); }
    const std::shared_ptr<CameraProjection>& cameraProjection() const { return _cameraPath.projection(); }
    CameraChange currentCamera() const { return _cameraPath.current(); }
    /// The one camera path; see CameraPath.
    void internalSetCamera(const CameraChange& change);
    void informDelegateAboutIdle();
    /// What the camera path has queued for the main queue.
    void reportIdleToDelegate();
    void updateOverlays();

    void rendererUpdateAtTime(SCNView& view, double time) override;
    bool gestureRecognizerShouldRecognizeSimultaneouslyWith(UIGestureRecognizer& asked,
                                                            UIGestureRecognizer& other) override {
        return _gestures.recognizesTogether(asked, other);
    }

protected:
    void layoutSubviews() override;

private:
    TrelmixMapEngineSceneView(CGRect frame, const MapBehaviour& behaviour);
    void setupSceneKit();
    void setupCamera();
    std::shared_ptr<TrelmixMapEngineSceneView> self();

    std::weak_ptr<TrelmixMapEngineDelegate> _delegate;
    std::shared_ptr<SCNView> _sceneView;
    std::shared_ptr<SCNScene> _defaultScene;
    std::shared_ptr<SCNNode> _cameraNode;
    MapBehaviour _behaviour;
    bool _renderedFirstTime = false;
    CameraPath _cameraPath{*this};
    EngineGestures _gestures{*this};
    EngineTaps _taps{*this};
    MarkerDrag _drag{*this};
};

} // namespace trelmix
