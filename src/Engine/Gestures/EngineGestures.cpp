#include "Engine/Gestures/EngineGestures.h"

#include "Engine/TrelmixMapEngineSceneView.h"
#include "Platform/Foundation/SceneLock.h"
#include "Platform/View/UILongPressGestureRecognizer.h"
#include "Platform/View/UITapGestureRecognizer.h"

#include <utility>

namespace trelmix {

void EngineGestures::use(const MapBehaviour& behaviour) {
    for (const auto& recognizer : std::exchange(_recognizers, {})) {
        _engine.removeGestureRecognizer(recognizer);
    }
    _camera = behaviour.groundFollowsFingers ? static_cast<CameraGestures*>(&_anchored) : &_classic;
    _camera->pause();
    for (CameraGestures::Gesture& gesture : _camera->gestures()) {
        add(gesture.recognizer, [this, action = std::move(gesture.action)](UIGestureRecognizer& r) {
            if (canMove()) {
                action(r);
            } else {
                _camera->pause();
            }
        });
    }
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
}

void EngineGestures::cancelPress() {
    if (!_engine.drag().isDragging()) {
        _press->setIsEnabled(false);
        _press->setIsEnabled(true);
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
