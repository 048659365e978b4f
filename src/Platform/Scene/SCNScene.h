#pragma once

#include "Platform/Scene/DrawList.h"
#include "Platform/Scene/HitSpheres.h"
#include "Platform/Scene/SCNNode.h"

#include <memory>
#include <vector>

namespace trelmix {

struct SCNHitTestResult;

/// What a scene view shows: the children of one root.
///
/// It owns its nodes. Adding and removing a node takes constant time. Guarded by the scene lock.
class SCNScene {
public:
    using NodeList = std::vector<std::shared_ptr<SCNNode>>;

    SCNScene() = default;
    ~SCNScene();
    SCNScene(const SCNScene&) = delete;
    SCNScene& operator=(const SCNScene&) = delete;

    /// Puts a node behind the others; it leaves the scene it was in. Empty is refused.
    void addChildNode(const std::shared_ptr<SCNNode>& node);
    /// The children in order of addition. The list never changes: later additions make a new one, so a walk
    /// over it is safe whatever the nodes do; a walker skips nodes whose `scene()` is another by then.
    std::shared_ptr<const NodeList> childNodes();

    /// Runs the actions of all nodes up to a time; completions go to the main queue.
    void advanceActions(double time);
    bool hasActions() const { return !_acting.empty(); }

    /// Everything visible in painter's order; the same object as long as nothing changed.
    const std::shared_ptr<const DrawList>& collect();

private:
    friend class SCNNode;
    friend std::vector<SCNHitTestResult> hitTestScene(SCNScene& scene, const SceneRay& ray, bool boxesOnly);
    void remove(SCNNode& node);
    /// The next list is made anew. Both want a frame.
    void contentChanged();
    /// What is painted, or in which order.
    void orderChanged();
    void compact();
    void sortVisible();

    /// Removed nodes leave an empty place until there are many.
    NodeList _children;
    std::size_t _emptyPlaces = 0;
    HitSpheres _spheres;
    std::shared_ptr<const NodeList> _snapshot;
    std::vector<std::weak_ptr<SCNNode>> _acting;
    std::vector<SCNNode*> _painted;
    bool _orderChanged = true;
    bool _contentChanged = true;
    std::uint64_t _nextSequence = 0;
    std::shared_ptr<const DrawList> _list;
};

} // namespace trelmix
