#include "Engine/Gestures/EngineGestures.h"

#include "Engine/TrelmixMapEngineSceneView.h"
#include "Platform/Foundation/SceneLock.h"
#include "Platform/View/UILongPressGestureRecognizer.h"
#include "Platform/View/UITapGestureRecognizer.h"

#include <utility>

namespace trelmix {

namespace {

/// Tells of every finger that comes down, and recognises nothing.
class TouchWatcher final : public UIGestureRecognizer {
public:
    explicit TouchWatcher(std::function<void()> onTouch) : _onTouch(std::move(onTouch)) {}

protected:
    void touchBegan(const TrackedTouch&) override { _onTouch(); }
    void touchesMoved(double) override {}
    void touchEnded(const TrackedTouch&) override {}

private:
    std::function<void()> _onTouch;
};

} // namespace

void EngineGestures::use(const MapBehaviour& behaviour) {
    for (const auto& recognizer : std::exchange(_recognizers, {})) {
        _engine.removeGestureRecognizer(recognizer);
    }
    _camera = behaviour.groundFollowsFingers ? static_cast<CameraGestures*>(&_anchored) : &_classic;
    _camera->pause();
    _glide.forget();
    for (CameraGestures::Gesture& gesture : _camera->gestures()) {
        add(gesture.recognizer,
            [this, action = std::move(gesture.action)](UIGestureRecognizer& r) { move(r, action); });
    }
    add(std::make_shared<TouchWatcher>([weak = _engine.weakSelf()] {
            const SceneLock lock;
            if (const auto engine = weak.lock()) {
                engine->cameraPath().touched();
            }
        }),
        [](UIGestureRecognizer&) {});
    const auto tapping = std::make_shared<UITapGestureRecognizer>();
    const auto doubleTapping = std::make_shared<UITapGestureRecognizer>();
    const auto pressing = std::make_shared<UILongPressGestureRecognizer>();
    doubleTapping->setNumberOfTapsRequired(2);
    tapping->requireGestureRecognizerToFail(doubleTapping);
    tapping->requireGestureRecognizerToFail(pressing);
    add(tapping, [this](UIGestureRecognizer& r) {
        if (!_engine.drag().isDragging()) {
            _engine.taps().tap(locationOf(r));
        }
    });
    add(doubleTapping, [this](UIGestureRecognizer& r) {
        if (canMove()) {
            _camera->doubleTap(locationOf(r));
        }
    });
    add(pressing, [this](UIGestureRecognizer& r) { _engine.drag().press(locationOf(r), r.state()); });
    _press = pressing;
    _tap = tapping;
}

void EngineGestures::move(UIGestureRecognizer& recognizer, const Action& action) {
    if (!canMove()) {
        _camera->pause();
        _glide.forget();
        return;
    }
    if (recognizer.state() == UIGestureRecognizerState::began) {
        _glide.forget();
    }
    const CameraPose before = _engine.cameraProjection()->pose();
    action(recognizer);
    const CGPoint centre = _camera->centre(locationOf(recognizer));
    const CameraProjection& projection = *_engine.cameraProjection();
    if (_engine.currentBehaviour().glide && projection.pose() != before) {
        _glide.record(before, projection.pose(), projection.stage(), {centre.x, centre.y}, recognizer.time());
    }
    if (recognizer.state() == UIGestureRecognizerState::ended) {
        glideOn(recognizer.time());
    }
}

void EngineGestures::glideOn(double time) {
    CameraPath& path = _engine.cameraPath();
    const CameraProjection& projection = *_engine.cameraProjection();
    const Glide::Limits limits{
        [&](float internalZoom) { return path.limitedZoom(internalZoom + 1.0F) - 1.0F; },
        [&](WorldMapPoint target) { return path.canSetCameraToTarget(target); }};
    if (auto motion = _glide.motion(projection.pose(), projection.stage(), limits, time)) {
        path.run(std::move(motion->pose), motion->duration, CameraPath::Touch::stops);
    }
}

void EngineGestures::cancelPress(bool alsoTap) {
    const auto press = _engine.drag().isDragging() ? nullptr : _press;
    for (const auto& recognizer : {press, alsoTap ? _tap : nullptr}) {
        if (recognizer) {
            recognizer->setIsEnabled(false);
            recognizer->setIsEnabled(true);
        }
    }
}

void EngineGestures::add(const std::shared_ptr<UIGestureRecognizer>& recognizer, Action action) {
    recognizer->setDelegate(_engine.weakSelf());
    recognizer->addTarget([weak = _engine.weakSelf(), action = std::move(action)](UIGestureRecognizer& r) {
        if (const auto engine = weak.lock()) {
            const SceneLock lock;
            action(r);
        }
    });
    _engine.addGestureRecognizer(recognizer);
    _recognizers.push_back(recognizer);
}

CGPoint EngineGestures::locationOf(const UIGestureRecognizer& recognizer) const {
    return recognizer.locationInView(_engine.shared_from_this());
}

bool EngineGestures::canMove() const {
    return _engine.cameraProjection() && !_engine.drag().isDragging();
}

bool EngineGestures::recognizesTogether(const UIGestureRecognizer& asked,
                                        const UIGestureRecognizer& other) const {
    return _engine.drag().isDragging() || _camera->recognizesTogether(asked, other);
}

} // namespace trelmix
