#pragma once

#include "Platform/Scene/DrawList.h"
#include "Platform/Scene/SCNAction.h"
#include "Platform/Scene/SCNGeometry.h"
#include "Platform/Scene/SCNVector.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace trelmix {

class SCNScene;

/// Perspective camera of a node: vertical field of view 60 degrees.
struct SCNCamera {
    double fieldOfView = 1.0471975511965976;
    /// Near and far follow the scene; see `DrawCamera::clipFromScene`.
    bool automaticallyAdjustsZRange = false;
};

/// A thing of the scene: a transform, and what is shown there.
///
/// The transform is position * Rz * Ry * Rx * scale * inverse of the pivot translation. Each of position,
/// angles and scale has a model value and, while an action runs on it, a presented one, which is what is
/// drawn. Setting a model value ends a running action on the same property. Scenes are flat: nodes are
/// children of a scene's root. Guarded by the scene lock.
///
/// Larger than most classes: every property has its model and its presented side, and a change of one may end
/// an action or ask for a new draw item.
class SCNNode : public std::enable_shared_from_this<SCNNode> {
public:
    SCNNode();
    virtual ~SCNNode();
    SCNNode(const SCNNode&) = delete;
    SCNNode& operator=(const SCNNode&) = delete;

    SCNVector3 position() const { return narrowed(_position.model); }
    Vector3d exactPosition() const { return _position.model; }
    void setPosition(SCNVector3 position) { setExactPosition(widened(position)); }
    void setExactPosition(Vector3d position);
    /// What is drawn now, also inside a running action.
    Vector3d presentedPosition() const { return _position.shown(); }
    SCNVector3 eulerAngles() const { return narrowed(_euler.model); }
    void setEulerAngles(SCNVector3 angles) { setExactEulerAngles(widened(angles)); }
    void setExactEulerAngles(Vector3d angles);
    Vector3d presentedEulerAngles() const { return _euler.shown(); }
    SCNVector3 scale() const { return narrowed(_scale.model); }
    void setScale(SCNVector3 scale);
    Vector3d presentedScale() const { return _scale.shown(); }
    /// The translation row of the pivot.
    SCNVector3 pivot() const { return _pivot; }
    void setPivot(SCNVector3 translation);

    /// 0 to 1; limited to that range, NaN changes nothing.
    double opacity() const { return _opacity; }
    void setOpacity(double opacity);
    bool isHidden() const { return _isHidden; }
    void setIsHidden(bool hidden);
    std::int64_t renderingOrder() const { return _renderingOrder; }
    void setRenderingOrder(std::int64_t order);
    /// Place among nodes of equal rendering order; the scene sets it when the node is added.
    std::uint64_t drawSequence() const { return _drawSequence; }
    void setDrawSequence(std::uint64_t sequence);

    const std::shared_ptr<SCNGeometry>& geometry() const { return _geometry; }
    void setGeometry(std::shared_ptr<SCNGeometry> geometry);
    const std::optional<SCNCamera>& camera() const { return _camera; }
    void setCamera(std::optional<SCNCamera> camera) { _camera = camera; }

    /// How far beyond its mesh the node is drawn, and hit, to each side: half a line's width, in scene units.
    virtual double hitMargin() const { return 0; }
    /// True for nodes that hear of every frame; the class that answers so is the only one.
    virtual bool takesFrameUpdates() const { return false; }

    /// The scene whose root holds the node; null when none does.
    SCNScene* scene() const { return _scene; }
    void removeFromParentNode();

    /// Starts at the time of the call and advances with the frames; `completion` runs on the main queue when
    /// it has ended, and never when it is cancelled. An action that moves, turns or scales replaces the
    /// running one of the same kind. On a node outside every scene it takes effect at once.
    void runAction(const std::shared_ptr<const SCNAction>& action,
                   std::function<void()> completion = nullptr);
    /// Cancels all; the presented values become the model's.
    void removeAllActions();
    bool hasActions() const { return !_runs.empty(); }
    /// Whether an action of that kind runs, alone or in a group.
    bool runsActionOf(SCNAction::Kind kind) const;

    /// The picture of the node as it stands; empty when it shows nothing. The same object while nothing
    /// changed.
    const std::shared_ptr<const DrawItem>& drawItem();
    /// From the node's geometry to the scene, as presented.
    Matrix4d presentedTransform() const;

protected:
    /// Called when actions ended without running to their end.
    virtual void actionsWereCancelled() {}

private:
    friend class SCNScene;
    template <class T>
    struct Property {
        T model;
        std::optional<T> presented;
        const T& shown() const { return presented ? *presented : model; }
    };
    /// One run of an action: a group is a run of several.
    struct Run {
        std::vector<std::shared_ptr<const SCNAction>> parts;
        double start = 0;
        double duration = 0;
        Vector3d from[3];
        std::function<void()> completion;
    };

    void setNeedsDrawing();
    Property<Vector3d>* propertyOf(SCNAction::Kind kind);
    void endPartsOf(SCNAction::Kind kind);
    void setModel(Property<Vector3d>& property, SCNAction::Kind kind, Vector3d value);
    void applyParts(const Run& run, double elapsed);
    void finishRun(const Run& run);
    /// False when nothing runs any more.
    bool advanceActions(double time);

    Property<Vector3d> _position{{}, {}};
    Property<Vector3d> _euler{{}, {}};
    Property<Vector3d> _scale{{1, 1, 1}, {}};
    SCNVector3 _pivot;
    double _opacity = 1;
    bool _isHidden = false;
    bool _needsDrawing = true;
    std::int64_t _renderingOrder = 0;
    std::uint64_t _drawSequence = 0;
    std::shared_ptr<SCNGeometry> _geometry;
    std::optional<SCNCamera> _camera;
    SCNScene* _scene = nullptr;
    std::size_t _slot = 0;
    std::vector<std::shared_ptr<Run>> _runs;
    std::shared_ptr<const DrawItem> _drawItem;
};

} // namespace trelmix
