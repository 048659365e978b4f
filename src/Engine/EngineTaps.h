#pragma once

#include <Trelmix/Platform/CGGeometry.h>
#include <Trelmix/Platform/CLLocation.h>

#include <memory>
#include <optional>

namespace trelmix {

class MarkerNode;
class SCNNode;
class TrelmixMapEngineSceneView;

/// What a tap means: the nearest overlay that takes it, or a place on the map.
///
/// A part of its engine. Needs the scene lock.
class EngineTaps {
public:
    explicit EngineTaps(TrelmixMapEngineSceneView& engine) : _engine(engine) {}

    /// True (as at first): overlays are hit by their bounding boxes. False: by what is drawn.
    bool hitTestBoundingBoxOnly = true;

    /// @param location points, in the engine's view.
    void tap(CGPoint location);
    /// The place on the ground under a point of the view; empty above the horizon, where the ray meets the
    /// ground behind the camera.
    std::optional<CLLocationCoordinate2D> groundCoordinateAt(CGPoint location) const;

private:
    /// True when the tap stops there.
    bool tapNode(const std::shared_ptr<SCNNode>& node);
    void centreOnMarker(const MarkerNode& marker);

    TrelmixMapEngineSceneView& _engine;
};

} // namespace trelmix
