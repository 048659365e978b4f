// Taps and drags on the side view, and the mode in which a drag moves the map instead of the picture.

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

void SideviewScrollView::setupGestureRecognisers() {
    const auto tap = std::make_shared<UITapGestureRecognizer>();
    const auto longPress = std::make_shared<UILongPressGestureRecognizer>();
    addRecogniser(tap, &SideviewScrollView::tapOnSideview);
    addRecogniser(longPress, &SideviewScrollView::longPressOnSideview);
    longPress->requireGestureRecognizerToFail(tap);
    addRecogniser(std::make_shared<UIPanGestureRecognizer>(), &SideviewScrollView::dragRecogniser);
}

void SideviewScrollView::addRecogniser(const std::shared_ptr<UIGestureRecognizer>& recogniser,
                                       GestureAction action) {
    // What a removed hierarchy still reports is no longer about what shows.
    recogniser->addTarget([weak = std::weak_ptr(self()), hierarchy = std::weak_ptr(_scrollView),
                           action](UIGestureRecognizer& sender) {
        const auto sideview = weak.lock();
        if (sideview && sideview->_scrollView && sideview->_scrollView == hierarchy.lock()) {
            ((*sideview).*action)(sender);
        }
    });
    recogniser->setDelegate(self());
    _scrollView->addGestureRecognizer(recogniser);
}

bool SideviewScrollView::canMoveCamera() const {
    return _projection && _mapEngine && _mapEngine->camera() && _mapEngine->projection();
}

void SideviewScrollView::moveCameraTo(CGPoint imagePoint, bool animated) {
    const std::shared_ptr<TrelmixMapEngine> engine = _mapEngine;
    if (const auto camera = _projection->cameraForSideviewPoint(imagePoint, *engine->camera())) {
        callOut([&] { engine->setCamera(camera, animated); });
    }
}

template <class Report>
void SideviewScrollView::reportAndMove(UIGestureRecognizer& recogniser, Report report, bool animated) {
    if (!canMoveCamera()) {
        return;
    }
    const auto hierarchy = _scrollView;
    if (const auto delegate = _delegate.lock()) {
        callOut([&] { report(*delegate); });
    }
    // The application may have connected another engine meanwhile, or set everything up anew.
    if (hierarchy == _scrollView && canMoveCamera()) {
        moveCameraTo(recogniser.locationInView(_imageView), animated);
    }
}

void SideviewScrollView::tapOnSideview(UIGestureRecognizer& recogniser) {
    if (recogniser.state() == UIGestureRecognizerState::ended && !isDraggingCamera()) {
        reportAndMove(
            recogniser, [](TMXSideviewScrollViewDelegate& d) { d.sideViewDidReceiveTap(); }, true);
    }
}

void SideviewScrollView::longPressOnSideview(UIGestureRecognizer& recogniser) {
    if (_enableZooming && _scrollView->isScrollEnabled() && isActive(recogniser)) {
        _scrollView->setScrollEnabled(false);
    }
}

void SideviewScrollView::dragRecogniser(UIGestureRecognizer& recogniser) {
    if (_enableZooming && _scrollView->isScrollEnabled()) {
        return;
    }
    if (isActive(recogniser)) {
        reportAndMove(
            recogniser, [](TMXSideviewScrollViewDelegate& d) { d.sideViewDidScroll(); }, false);
    } else if (_enableZooming) {
        // However the drag came to its end, and whether or not it moved anything: the mode ends with it.
        _scrollView->setScrollEnabled(true);
    }
}

} // namespace trelmix
