#include "Sideview/SideviewScrollView.h"

#include "Platform/Foundation/Clock.h"
#include "Platform/Foundation/MainEntry.h"
#include "Platform/Foundation/SceneLock.h"
#include "Platform/View/LayoutConstraint.h"
#include "Platform/View/UIScreen.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace trelmix {

namespace {

// Seconds.
constexpr double kFollowingStep = 1.0 / 60;
constexpr double kStandsAfter = 0.5;

void pin(ViewNode& superview, const char* format, const LayoutConstraint::Metrics& metrics,
         const LayoutConstraint::Views& views) {
    if (auto constraints = LayoutConstraint::constraintsWithVisualFormat(format, metrics, views)) {
        superview.addConstraints(std::move(*constraints));
    }
}

} // namespace

TMXSideviewScrollViewDelegate::~TMXSideviewScrollViewDelegate() = default;
TMXSideviewScrollView::~TMXSideviewScrollView() = default;

std::shared_ptr<TMXSideviewScrollView> TMXSideviewScrollView::make(CGRect frame,
                                                                   const SideviewBehaviour& behaviour) {
    return SideviewScrollView::make(frame, behaviour);
}

std::shared_ptr<SideviewScrollView> SideviewScrollView::make(CGRect frame,
                                                             const SideviewBehaviour& behaviour) {
    return std::shared_ptr<SideviewScrollView>(new SideviewScrollView(frame, behaviour));
}

SideviewScrollView::~SideviewScrollView() {
    if (_following) {
        _following->invalidate();
    }
}

std::shared_ptr<SideviewScrollView> SideviewScrollView::self() {
    return std::static_pointer_cast<SideviewScrollView>(shared_from_this());
}

void SideviewScrollView::setDelegate(std::weak_ptr<TMXSideviewScrollViewDelegate> delegate) {
    if (const MainEntry entry{"setDelegate"}) {
        _delegate = std::move(delegate);
    }
}

void SideviewScrollView::setBehaviour(const SideviewBehaviour& behaviour) {
    const MainEntry entry{"setBehaviour"};
    if (!entry || behaviour == _behaviour) {
        return;
    }
    const auto keep = self();
    _behaviour = behaviour;
    if (_following) {
        std::exchange(_following, nullptr)->invalidate();
    }
    _gestures.cancel();
    if (_projection) {
        _projection = _projection->withBehaviour(behaviour);
        _overlays.place(_projection);
    }
    mapViewIdle();
}

void SideviewScrollView::setBackgroundColor(std::optional<UIColor> color) {
    if (const MainEntry entry{"setBackgroundColor"}) {
        UIView::setBackgroundColor(color);
        if (_imageView) {
            _imageView->setBackgroundColor(color);
        }
    }
}

void SideviewScrollView::setEnableZooming(bool enable) {
    if (const MainEntry entry{"setEnableZooming"}) {
        _enableZooming = enable;
        applyEnableZooming();
    }
}

void SideviewScrollView::applyEnableZooming() {
    if (!_scrollView) {
        return;
    }
    if (_enableZooming) {
        _scrollView->setMaximumZoomScale(1.0);
    } else {
        _scrollView->setMaximumZoomScale(_scrollView->minimumZoomScale());
        _scrollView->setZoomScale(_scrollView->minimumZoomScale(), false);
    }
    _scrollView->setScrollEnabled(_enableZooming);
}

void SideviewScrollView::setupSideviewWith(std::shared_ptr<const UIImage> image,
                                           const std::string& levelsPath) {
    // The file is read before the lock is taken: no frame waits for a disk.
    if (!requireMainThread("setupSideviewWith")) {
        return;
    }
    const auto keep = self();
    using Made = Result<std::shared_ptr<const SideviewProjection>>;
    auto projection =
        image ? SideviewProjection::make(levelsPath, image->size().width, image->size().height, _behaviour)
              : Made::failure("image: there is none");
    const MainEntry entry{"setupSideviewWith"};
    removeHierarchy();
    _setupFailure = projection.reason();
    _projection = projection ? *projection : nullptr;
    if (!image) {
        return;
    }
    setBackgroundColor(UIColor::whiteColor());
    addScrollView();
    addImageView(image);
    fitToWidth(image->size());
    _footprint.addTo(*_imageView);
    _overlays.startOn(_scrollView, _imageView, _projection);
    layoutIfNeeded();
    mapViewIdle();
    _gestures.setup();
}

void SideviewScrollView::removeHierarchy() {
    if (_scrollView) {
        _scrollView->removeFromSuperview();
    }
    _scrollView.reset();
    _imageView.reset();
    _footprint.clear();
    _overlays.clear();
}

void SideviewScrollView::addScrollView() {
    _scrollView = UIScrollView::make();
    _scrollView->setDelegate(self());
    addSubview(_scrollView);
    for (const char* format : {"H:|[scrollView]|", "V:|[scrollView]|"}) {
        pin(*this, format, {}, {{"scrollView", _scrollView}});
    }
}

void SideviewScrollView::addImageView(const std::shared_ptr<const UIImage>& image) {
    _imageView = SideviewImageView::make(image);
    _imageView->setBackgroundColor(backgroundColor());
    _imageView->setParentScrollView(self());
    _scrollView->addSubview(_imageView);
    const LayoutConstraint::Metrics metrics{{"width", image->size().width}, {"height", image->size().height}};
    for (const char* format : {"H:|[sideviewImageView(==width)]|", "V:|[sideviewImageView(==height)]|"}) {
        pin(*_scrollView, format, metrics, {{"sideviewImageView", _imageView}});
    }
}

void SideviewScrollView::fitToWidth(CGSize imageSize) {
    const double ownWidth = frame().size.width;
    const double width = ownWidth == 0 ? UIScreen::mainScreenBounds().size.width : ownWidth;
    const double fitting = width / imageSize.width;
    _scrollView->setContentSize(imageSize);
    _scrollView->setMinimumZoomScale(std::isnan(fitting) ? 1.0 : std::min(1.0, fitting));
    applyEnableZooming();
    _scrollView->setZoomScale(_scrollView->minimumZoomScale(), false);
}

void SideviewScrollView::setDisplayedLevel(std::int64_t level, std::shared_ptr<TrelmixMapEngine> engine) {
    if (const MainEntry entry{"setDisplayedLevel"}) {
        _levelNumber = level;
        _mapEngine.swap(engine);
        mapViewIdle();
    }
}

void SideviewScrollView::mapViewIdleAtCamera(const std::shared_ptr<TrelmixMapEngineCamera>&) {
    mapViewIdle();
}

void SideviewScrollView::mapViewIdle() {
    // The lock keeps the four corners of the view those of one camera.
    if (const MainEntry entry{"mapViewIdle"}) {
        followMap();
    }
}

bool SideviewScrollView::followMap() {
    const auto map = _projection && _mapEngine ? _mapEngine->projection() : nullptr;
    return map && _footprint.follow(*map, *_projection, _levelNumber);
}

void SideviewScrollView::mapViewWillMoveFromGesture(bool) {
    const MainEntry entry{"mapViewWillMoveFromGesture"};
    if (!entry || !_behaviour.footprintIsLive) {
        return;
    }
    _lastMove = Clock::now();
    if (!_following) {
        _following = Timer::scheduledTimer(kFollowingStep, true, [weak = std::weak_ptr(self())] {
            if (const auto sideview = weak.lock()) {
                sideview->followWhileMoving();
            }
        });
    }
}

// Until the map has stood for a while: the report that it rests may go to somebody else by then.
void SideviewScrollView::followWhileMoving() {
    const SceneLock lock;
    if (!_following) {
        return;
    }
    if (followMap()) {
        _lastMove = Clock::now();
    } else if (Clock::now() - _lastMove > kStandsAfter) {
        std::exchange(_following, nullptr)->invalidate();
    }
}

std::vector<std::int64_t> SideviewScrollView::levelNumbers() const {
    std::vector<std::int64_t> numbers;
    if (_projection && _projection->levels()) {
        for (const SideviewLevel& level : *_projection->levels()) {
            if (level.levelNumber) {
                numbers.push_back(*level.levelNumber);
            }
        }
    }
    return numbers;
}

std::optional<std::int64_t> SideviewScrollView::levelAt(CGPoint point) const {
    return _projection ? _projection->levelAt(convertPointToView(point, _imageView)) : std::nullopt;
}

void SideviewScrollView::setUserPositionIcon(std::shared_ptr<const UIImage> icon) {
    if (const MainEntry entry{"setUserPositionIcon"}) {
        _overlays.setUserPositionIcon(std::move(icon));
    }
}

void SideviewScrollView::updateUserPosition(CLLocationCoordinate2D coordinate, std::int64_t levelNumber) {
    if (const MainEntry entry{"updateUserPosition"}) {
        _overlays.updateUserPosition(coordinate, levelNumber);
    }
}

void SideviewScrollView::removeUserPosition() {
    if (const MainEntry entry{"removeUserPosition"}) {
        _overlays.removeUserPosition();
    }
}

void SideviewScrollView::updateSideviewMarkerWithIdentifier(const std::string& identifier,
                                                            std::shared_ptr<const UIImage> icon) {
    if (const MainEntry entry{"updateSideviewMarkerWithIdentifier"}) {
        _overlays.updateMarker(identifier, std::move(icon));
    }
}

void SideviewScrollView::updateSideviewMarkerWithIdentifier(const std::string& identifier,
                                                            CLLocationCoordinate2D coordinate,
                                                            std::int64_t levelNumber) {
    if (const MainEntry entry{"updateSideviewMarkerWithIdentifier"}) {
        _overlays.updateMarker(identifier, coordinate, levelNumber);
    }
}

void SideviewScrollView::removeSideviewMarkerWithIdentifier(const std::string& identifier) {
    if (const MainEntry entry{"removeSideviewMarkerWithIdentifier"}) {
        _overlays.removeMarker(identifier);
    }
}

void SideviewScrollView::drawNavigationPath(const std::vector<CLLocation>& path, UIColor color,
                                            double width) {
    if (const MainEntry entry{"drawNavigationPath"}) {
        _overlays.drawPath(path, color, width);
    }
}

void SideviewScrollView::zoomBy(double factor, CGPoint point) {
    if (!_scrollView || !std::isfinite(point.x) || !std::isfinite(point.y)) {
        return;
    }
    const double before = _scrollView->zoomScale();
    const CGPoint offset = _scrollView->contentOffset();
    _scrollView->setZoomScale(before * factor, false);
    const double zoomed = _scrollView->zoomScale() / before;
    _scrollView->setContentOffset(
        {(offset.x + point.x) * zoomed - point.x, (offset.y + point.y) * zoomed - point.y});
}

void SideviewScrollView::revealDisplayedLevel() {
    if (!_scrollView || !(_footprint.cameraRectangle()->frame().size.height > 0)) {
        return;
    }
    const CGRect footprint = _footprint.cameraRectangle()->frame();
    const double zoom = _scrollView->zoomScale();
    const double top = footprint.origin.y * zoom;
    const double bottom = top + footprint.size.height * zoom;
    const double height = _scrollView->frame().size.height;
    const CGPoint offset = _scrollView->contentOffset();
    const double y =
        bottom - top > height ? (top + bottom - height) / 2 : std::clamp(offset.y, bottom - height, top);
    _scrollView->setContentOffset({offset.x, y});
}

std::shared_ptr<UIView> SideviewScrollView::viewForZoomingInScrollView(UIScrollView&) {
    return _imageView;
}

void SideviewScrollView::scrollViewDidZoom(UIScrollView&) {
    _overlays.followZoom();
}

} // namespace trelmix
