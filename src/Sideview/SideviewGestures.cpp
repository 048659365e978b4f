#include "Sideview/SideviewGestures.h"

#include "Platform/Foundation/SceneLock.h"
#include "Platform/View/UILongPressGestureRecognizer.h"
#include "Platform/View/UIPanGestureRecognizer.h"
#include "Platform/View/UITapGestureRecognizer.h"
#include "Sideview/SideviewScrollView.h"

namespace trelmix {

namespace {

bool isActive(const UIGestureRecognizer& recogniser) {
    return recogniser.state() == UIGestureRecognizerState::began ||
           recogniser.state() == UIGestureRecognizerState::changed;
}

} // namespace

void SideviewGestures::setup() {
    _recognisers.clear();
    const auto tapping = std::make_shared<UITapGestureRecognizer>();
    const auto pressing = std::make_shared<UILongPressGestureRecognizer>();
    add(tapping, &SideviewGestures::tap);
    add(pressing, &SideviewGestures::longPress);
    pressing->requireGestureRecognizerToFail(tapping);
    add(std::make_shared<UIPanGestureRecognizer>(), &SideviewGestures::drag);
}

void SideviewGestures::add(const std::shared_ptr<UIGestureRecognizer>& recogniser, Handler handler) {
    // What a removed hierarchy still reports is no longer about what shows.
    recogniser->addTarget([weak = std::weak_ptr(_sideview.self()),
                           hierarchy = std::weak_ptr(_sideview.scrollView()),
                           handler](UIGestureRecognizer& sender) {
        const auto sideview = weak.lock();
        if (sideview && sideview->scrollView() && sideview->scrollView() == hierarchy.lock()) {
            (sideview->gestures().*handler)(sender);
        }
    });
    recogniser->setDelegate(_sideview.self());
    _sideview.scrollView()->addGestureRecognizer(recogniser);
    _recognisers.push_back(recogniser);
}

void SideviewGestures::cancel() {
    for (const auto& recogniser : _recognisers) {
        recogniser->setIsEnabled(false);
        recogniser->setIsEnabled(true);
    }
    if (const auto& scrollView = _sideview.scrollView()) {
        // The scroll view's own pan as well.
        scrollView->setScrollEnabled(false);
        scrollView->setScrollEnabled(_sideview.enableZooming());
    }
}

bool SideviewGestures::isDraggingCamera() const {
    return _sideview.enableZooming() && !_sideview.scrollView()->isScrollEnabled();
}

bool SideviewGestures::canMoveCamera() const {
    const auto& engine = _sideview.mapEngine();
    return _sideview.projection() && engine && engine->camera() && engine->projection();
}

void SideviewGestures::moveCameraTo(CGPoint imagePoint, bool animated) {
    const std::shared_ptr<TrelmixMapEngine> engine = _sideview.mapEngine();
    if (const auto camera = _sideview.projection()->cameraForSideviewPoint(imagePoint, *engine->camera())) {
        callOut([&] { engine->setCamera(camera, animated); });
    }
}

template <class Report>
void SideviewGestures::reportAndMove(UIGestureRecognizer& recogniser, Report report, bool animated) {
    if (!canMoveCamera()) {
        return;
    }
    const auto hierarchy = _sideview.scrollView();
    if (const auto delegate = _sideview.delegate()) {
        callOut([&] { report(*delegate); });
    }
    // The application may have connected another engine meanwhile, or set everything up anew.
    if (hierarchy == _sideview.scrollView() && canMoveCamera()) {
        moveCameraTo(recogniser.locationInView(_sideview.sideviewImageView()), animated);
    }
}

void SideviewGestures::tap(UIGestureRecognizer& recogniser) {
    if (recogniser.state() == UIGestureRecognizerState::ended && !isDraggingCamera()) {
        reportAndMove(
            recogniser, [](TMXSideviewScrollViewDelegate& d) { d.sideViewDidReceiveTap(); }, true);
    }
}

void SideviewGestures::longPress(UIGestureRecognizer& recogniser) {
    UIScrollView& scrollView = *_sideview.scrollView();
    if (_sideview.enableZooming() && scrollView.isScrollEnabled() && isActive(recogniser)) {
        scrollView.setScrollEnabled(false);
    }
    const bool dragGoesOn = isActive(*_recognisers.back());
    if (_sideview.behaviour().pressEndsWithFinger && isDraggingCamera() && !isActive(recogniser) &&
        !dragGoesOn) {
        scrollView.setScrollEnabled(true);
    }
}

void SideviewGestures::drag(UIGestureRecognizer& recogniser) {
    if (_sideview.enableZooming() && _sideview.scrollView()->isScrollEnabled()) {
        return;
    }
    if (isActive(recogniser)) {
        reportAndMove(
            recogniser, [](TMXSideviewScrollViewDelegate& d) { d.sideViewDidScroll(); }, false);
    } else if (_sideview.enableZooming()) {
        // However the drag came to its end, and whether or not it moved anything: the mode ends with it.
        _sideview.scrollView()->setScrollEnabled(true);
    }
}

} // namespace trelmix
