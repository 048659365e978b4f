#pragma once

#include "Camera/CameraProjection.h"
#include "Geo/GeoTypes.h"
#include "Platform/Scene/SCNNode.h"

#include <Trelmix/TrelmixMapEngine.h>

#include <any>
#include <cstdint>
#include <memory>

namespace trelmix {

class TrelmixMapEngineSceneView;

/// Base of everything on the map: attaches itself to an engine, takes its projection, hears of every frame.
///
/// Three states: detached; set up and attached (it has a projection and is in the engine's scene); cleared
/// (neither, though `map` may still name the engine). Guarded by the scene lock; the operations below that
/// have no lock of their own are called with it held.
class GeoNode : public SCNNode {
public:
    ~GeoNode() override;
    bool takesFrameUpdates() const final { return true; }

    std::shared_ptr<TrelmixMapEngine> attachedMap() const { return _map.lock(); }
    /// Runs the attach procedure, or clears the node when there is no engine.
    void attachTo(const std::shared_ptr<TrelmixMapEngine>& map);
    const std::shared_ptr<CameraProjection>& cameraProjection() const { return _cameraProjection; }

    std::int64_t layerIndex() const { return _zIndex; }
    void setLayerIndex(std::int64_t index);
    bool isTappable() const { return _tappable; }
    void setIsTappable(bool tappable) { _tappable = tappable; }
    const std::any& applicationData() const { return _userInfo; }
    void setApplicationData(std::any data);

    virtual void clearEverything();
    /// Where the scene's origin goes when this is the first overlay of an engine.
    virtual Coordinate initialTargetCoordinateForProjection() const { return {0, 0}; }
    /// Chooses the first camera when the application has not.
    virtual void setupInitialCameraZoom(TrelmixMapEngineSceneView& mapSceneView);
    virtual void addToMap(TrelmixMapEngineSceneView& mapSceneView);
    virtual void setup(const std::shared_ptr<CameraProjection>& projection);
    /// Once a frame. @param zoom the internal zoom, one less than the public one.
    virtual void update(float zoom, Radians rotation, Radians viewingAngle);

protected:
    GeoNode() = default;
    /// zIndex - 100, saturated.
    void applyRenderingOrder();

private:
    void setUpFor(TrelmixMapEngineSceneView& mapSceneView);

    std::shared_ptr<CameraProjection> _cameraProjection;
    std::weak_ptr<TrelmixMapEngine> _map;
    std::any _userInfo;
    std::int64_t _zIndex = 0;
    bool _tappable = false;
};

} // namespace trelmix
