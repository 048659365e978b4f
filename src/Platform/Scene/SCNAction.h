#pragma once

#include "Platform/Scene/SCNVector.h"

#include <functional>
#include <memory>
#include <vector>

namespace trelmix {

class SCNNode;

/// A change of a node over time, linear in time. Immutable; may be run on several nodes.
class SCNAction {
public:
    /// The block gets the node and the elapsed seconds, 0 to `duration`; it runs with the scene locked.
    using Block = std::function<void(SCNNode& node, double elapsed)>;

    static std::shared_ptr<const SCNAction> moveTo(Vector3d position, double duration);
    /// Euler angles in radians.
    static std::shared_ptr<const SCNAction> rotateTo(double x, double y, double z, double duration);
    static std::shared_ptr<const SCNAction> scaleTo(double scale, double duration);
    static std::shared_ptr<const SCNAction> customAction(double duration, Block block);
    static std::shared_ptr<const SCNAction> group(std::vector<std::shared_ptr<const SCNAction>> actions);

    enum class Kind { move, rotate, scale, custom, group };
    Kind kind() const { return _kind; }
    /// Seconds; never negative, never NaN. Of a group: the longest of its members.
    double duration() const { return _duration; }
    Vector3d target() const { return _target; }
    const Block& block() const { return _block; }
    const std::vector<std::shared_ptr<const SCNAction>>& members() const { return _members; }

private:
    SCNAction(Kind kind, double duration, Vector3d target)
        : _kind(kind), _duration(duration), _target(target) {}
    Kind _kind;
    double _duration;
    Vector3d _target;
    Block _block;
    std::vector<std::shared_ptr<const SCNAction>> _members;
};

} // namespace trelmix
