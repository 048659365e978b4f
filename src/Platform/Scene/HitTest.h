#pragma once

#include "Platform/Scene/DrawList.h"
#include "Platform/Scene/SCNScene.h"

#include <Trelmix/Platform/CGGeometry.h>

#include <memory>
#include <vector>

namespace trelmix {

/// A node that lies under a point of the view.
struct SCNHitTestResult {
    std::shared_ptr<SCNNode> node;
    /// From the camera, scene units.
    double distance = 0;
};

/// The ray under a point of the view.
SceneRay sceneRayThrough(CGPoint point, CGSize viewSize, const DrawCamera& camera);

/// Every visible node that the ray hits, nearest first; of nodes at one distance (less than 1e-6 apart) the
/// topmost first. @param boxesOnly whether bounding boxes decide; otherwise what is drawn: discs, outlines,
/// bands of lines.
std::vector<SCNHitTestResult> hitTestScene(SCNScene& scene, const SceneRay& ray, bool boxesOnly);

} // namespace trelmix
