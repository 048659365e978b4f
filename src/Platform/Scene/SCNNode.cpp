#include "Platform/Scene/SCNNode.h"

#include "Platform/Foundation/Clock.h"
#include "Platform/Foundation/RunLoop.h"
#include "Platform/Scene/DrawItemBuilder.h"
#include "Platform/Scene/SCNScene.h"

#include <algorithm>
#include <cmath>

namespace trelmix {

SCNNode::SCNNode() = default;
SCNNode::~SCNNode() = default;

void SCNNode::setNeedsDrawing() {
    _needsDrawing = true;
    if (_scene) {
        _scene->contentChanged();
        _scene->_spheres.forget(_slot);
    }
}

SCNNode::Property<Vector3d>* SCNNode::propertyOf(SCNAction::Kind kind) {
    switch (kind) {
    case SCNAction::Kind::move:
        return &_position;
    case SCNAction::Kind::rotate:
        return &_euler;
    case SCNAction::Kind::scale:
        return &_scale;
    default:
        return nullptr;
    }
}

void SCNNode::setModel(Property<Vector3d>& property, SCNAction::Kind kind, Vector3d value) {
    if (property.presented) {
        endPartsOf(kind);
    }
    if (property.model != value) {
        property.model = value;
        setNeedsDrawing();
    }
}

void SCNNode::setExactPosition(Vector3d position) {
    setModel(_position, SCNAction::Kind::move, position);
}

void SCNNode::setExactEulerAngles(Vector3d angles) {
    setModel(_euler, SCNAction::Kind::rotate, angles);
}

void SCNNode::setScale(SCNVector3 scale) {
    setModel(_scale, SCNAction::Kind::scale, widened(scale));
}

void SCNNode::setPivot(SCNVector3 translation) {
    if (_pivot != translation) {
        _pivot = translation;
        setNeedsDrawing();
    }
}

void SCNNode::setOpacity(double opacity) {
    if (!std::isnan(opacity)) {
        _opacity = std::clamp(opacity, 0.0, 1.0);
        setNeedsDrawing();
    }
}

void SCNNode::setIsHidden(bool hidden) {
    if (_isHidden != hidden) {
        _isHidden = hidden;
        if (_scene) {
            _scene->orderChanged();
        }
    }
}

void SCNNode::setRenderingOrder(std::int64_t order) {
    if (_renderingOrder != order) {
        _renderingOrder = order;
        setNeedsDrawing();
        if (_scene) {
            _scene->orderChanged();
        }
    }
}

void SCNNode::setDrawSequence(std::uint64_t sequence) {
    if (_drawSequence != sequence) {
        _drawSequence = sequence;
        setNeedsDrawing();
        if (_scene) {
            _scene->orderChanged();
        }
    }
}

void SCNNode::setGeometry(std::shared_ptr<SCNGeometry> geometry) {
    const bool appearsOrGoes = (geometry == nullptr) != (_geometry == nullptr);
    _geometry = std::move(geometry);
    setNeedsDrawing();
    if (_scene && appearsOrGoes) {
        _scene->orderChanged();
    }
}

void SCNNode::removeFromParentNode() {
    if (!_scene) {
        return;
    }
    const auto keep = weak_from_this().lock();
    _scene->remove(*this);
    removeAllActions();
}

void SCNNode::runAction(const std::shared_ptr<const SCNAction>& action, std::function<void()> completion) {
    if (!action) {
        return;
    }
    auto run = std::make_shared<Run>();
    run->parts = action->kind() == SCNAction::Kind::group
                     ? action->members()
                     : std::vector<std::shared_ptr<const SCNAction>>{action};
    run->start = Clock::now();
    run->duration = action->duration();
    run->completion = std::move(completion);
    for (const auto& part : run->parts) {
        if (Property<Vector3d>* property = propertyOf(part->kind())) {
            endPartsOf(part->kind());
            run->from[static_cast<std::size_t>(part->kind())] = property->shown();
            property->presented = property->shown();
        }
    }
    if (!_scene) {
        finishRun(*run);
        return;
    }
    const bool wasIdle = _runs.empty();
    _runs.push_back(std::move(run));
    if (wasIdle) {
        _scene->_acting.push_back(weak_from_this());
        _scene->contentChanged();
    }
}

/// Takes the part of that kind out of the running actions; its property goes on from what is shown.
void SCNNode::endPartsOf(SCNAction::Kind kind) {
    for (const auto& run : _runs) {
        std::erase_if(run->parts, [kind](const auto& part) { return part->kind() == kind; });
    }
    Property<Vector3d>* property = propertyOf(kind);
    if (property && property->presented) {
        property->model = *property->presented;
        property->presented.reset();
    }
    const bool lostOne =
        std::erase_if(_runs, [](const auto& run) { return run->parts.empty() && run->duration > 0; }) > 0;
    if (lostOne) {
        actionsWereCancelled();
    }
}

bool SCNNode::runsActionOf(SCNAction::Kind kind) const {
    return std::any_of(_runs.begin(), _runs.end(), [kind](const auto& run) {
        return std::any_of(run->parts.begin(), run->parts.end(),
                           [kind](const auto& part) { return part->kind() == kind; });
    });
}

void SCNNode::removeAllActions() {
    const bool hadSome = !_runs.empty();
    const std::vector<std::shared_ptr<Run>> ended = std::move(_runs);
    _runs.clear();
    for (Property<Vector3d>* property : {&_position, &_euler, &_scale}) {
        if (property->presented) {
            property->model = *property->presented;
            property->presented.reset();
        }
    }
    if (hadSome) {
        actionsWereCancelled();
    }
}

void SCNNode::applyParts(const Run& run, double elapsed) {
    const double t = run.duration > 0 ? elapsed / run.duration : 1.0;
    for (const auto& part : std::vector(run.parts)) {
        const double share = part->duration() > 0 ? std::min(elapsed / part->duration(), 1.0) : t;
        if (Property<Vector3d>* property = propertyOf(part->kind())) {
            const Vector3d from = run.from[static_cast<std::size_t>(part->kind())];
            property->presented = from + (part->target() - from) * share;
            setNeedsDrawing();
        } else if (part->block()) {
            part->block()(*this, std::min(elapsed, part->duration()));
        }
    }
}

void SCNNode::finishRun(const Run& run) {
    for (const auto& part : std::vector(run.parts)) {
        if (Property<Vector3d>* property = propertyOf(part->kind())) {
            property->model = part->target();
            property->presented.reset();
            setNeedsDrawing();
        } else if (part->block()) {
            part->block()(*this, part->duration());
        }
    }
    if (run.completion) {
        DispatchQueue::main().async(run.completion);
    }
}

bool SCNNode::advanceActions(double time) {
    for (const auto& run : std::vector(_runs)) {
        if (std::find(_runs.begin(), _runs.end(), run) == _runs.end()) {
            continue; // a block of an earlier one ended it
        }
        const double elapsed = std::max(0.0, time - run->start);
        // A frame that lands a rounding error before the end counts as the end.
        if (elapsed >= run->duration - 1e-9) {
            std::erase(_runs, run);
            finishRun(*run);
        } else {
            applyParts(*run, elapsed);
        }
    }
    return !_runs.empty();
}

Matrix4d SCNNode::presentedTransform() const {
    return Matrix4d::translation(presentedPosition()) * Matrix4d::rotation(presentedEulerAngles()) *
           Matrix4d::scale(presentedScale()) * Matrix4d::translation(widened(_pivot) * -1.0);
}

const std::shared_ptr<const DrawItem>& SCNNode::drawItem() {
    if (_needsDrawing) {
        _drawItem = makeDrawItem(*this);
        _needsDrawing = false;
    }
    return _drawItem;
}

} // namespace trelmix
