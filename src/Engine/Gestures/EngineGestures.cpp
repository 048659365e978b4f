#include "Engine/Gestures/EngineGestures.h"

#include "Engine/Gestures/ClassicGestures.h"
#include "Engine/TrelmixMapEngineSceneView.h"
#include "Platform/Foundation/SceneLock.h"
#include "Platform/View/UILongPressGestureRecognizer.h"
#include "Platform/View/UITapGestureRecognizer.h"

namespace trelmix {

void EngineGestures::setup() {
    _camera = std::make_unique<ClassicGestures>(_engine, flags);
    for (CameraGestures::Gesture& gesture : _camera->gestures()) {
        add(gesture.recognizer, [this, action = std::move(gesture.action)](UIGestureRecognizer& r) {
            if (canMove()) {
                action(r);
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
