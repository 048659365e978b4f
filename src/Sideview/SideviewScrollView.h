#pragma once

#include "Platform/Graphics/UIBezierPath.h"
#include "Platform/View/UIGestureRecognizer.h"
#include "Platform/View/UIScrollView.h"
#include "Platform/View/ViewNode.h"
#include "Sideview/SideviewImageView.h"
#include "Sideview/SideviewMarker.h"
#include "Sideview/SideviewProjection.h"

#include <Trelmix/TMXSideviewScrollView.h>
#include <Trelmix/TMXSideviewScrollViewDelegate.h>
#include <Trelmix/TrelmixMapEngine.h>

#include <map>

namespace trelmix {

/// The side view: a scroll view that holds the bitmap, which in turn holds the camera's footprint, the strip
/// and the icons, in the order in which they came.
///
/// There is no hierarchy before the set-up and no projection after one that failed. Scrolling that is off
/// while zooming is enabled means that a long press has started a camera drag.
class SideviewScrollView final : public ViewNode,
                                 public TMXSideviewScrollView,
                                 public UIScrollViewDelegate,
                                 public UIGestureRecognizerDelegate {
public:
    static std::shared_ptr<SideviewScrollView> make(CGRect frame = {});
    ~SideviewScrollView() override;

    std::shared_ptr<UIView> view() override { return shared_from_this(); }
    std::shared_ptr<TMXSideviewScrollViewDelegate> delegate() const override { return _delegate.lock(); }
    void setDelegate(std::weak_ptr<TMXSideviewScrollViewDelegate> delegate) override;
    std::optional<UIColor> backgroundColor() const override { return UIView::backgroundColor(); }
    void setBackgroundColor(std::optional<UIColor> color) override;
    bool enableZooming() const override { return _enableZooming; }
    void setEnableZooming(bool enable) override;

    void setupSideviewWith(std::shared_ptr<const UIImage> image, const std::string& levelsPath) override;
    std::string setupFailure() const override { return _setupFailure; }
    void setDisplayedLevel(std::int64_t level, std::shared_ptr<TrelmixMapEngine> engine) override;
    std::int64_t levelNumber() const override { return _levelNumber; }
    void mapViewIdle() override;
    void mapViewIdleAtCamera(const std::shared_ptr<TrelmixMapEngineCamera>& camera) override;

    std::shared_ptr<const TMXSideviewProjection> sideviewProjection() const override { return _projection; }
    std::vector<std::int64_t> levelNumbers() const override;
    std::optional<std::int64_t> levelAt(CGPoint point) const override;
    std::shared_ptr<UIView> sideviewCameraRectangle() const override { return _cameraRectangle; }
    std::shared_ptr<UIView> sideviewPositionRectangle() const override { return _positionRectangle; }

    // Overlays (SideviewOverlays.cpp)
    std::shared_ptr<const UIImage> userPositionIcon() const override { return _userPositionIcon; }
    void setUserPositionIcon(std::shared_ptr<const UIImage> icon) override;
    void updateUserPosition(CLLocationCoordinate2D coordinate, std::int64_t levelNumber) override;
    void removeUserPosition() override;
    void updateSideviewMarkerWithIdentifier(const std::string& identifier,
                                            std::shared_ptr<const UIImage> icon) override;
    void updateSideviewMarkerWithIdentifier(const std::string& identifier, CLLocationCoordinate2D coordinate,
                                            std::int64_t levelNumber) override;
    void removeSideviewMarkerWithIdentifier(const std::string& identifier) override;
    void drawNavigationPath(const std::vector<CLLocation>& path, UIColor color, double width) override;
    /// Image points, as wide as it is on screen now; null without one.
    const UIBezierPath* navigationPath() const { return _navigationPath ? &*_navigationPath : nullptr; }
    UIColor navigationPathColor() const { return _navigationPathColor; }
    /// Another number for every path.
    int navigationPathRevision() const { return _navigationPathRevision; }

    /// Empty before the set-up.
    const std::shared_ptr<UIScrollView>& scrollView() const { return _scrollView; }
    const std::shared_ptr<SideviewImageView>& sideviewImageView() const { return _imageView; }
    /// Zooms so that what lies at a point of this view stays there.
    void zoomBy(double factor, CGPoint point);
    /// Scrolls up or down just so far that the level of the footprint is in view.
    void revealDisplayedLevel();

    std::shared_ptr<UIView> viewForZoomingInScrollView(UIScrollView& scrollView) override;
    void scrollViewDidZoom(UIScrollView& scrollView) override;
    bool gestureRecognizerShouldRecognizeSimultaneouslyWith(UIGestureRecognizer&,
                                                            UIGestureRecognizer&) override {
        return true;
    }

private:
    explicit SideviewScrollView(CGRect frame) : ViewNode(frame) {}
    std::shared_ptr<SideviewScrollView> self();
    void removeHierarchy();
    void addScrollView();
    void addImageView(const std::shared_ptr<const UIImage>& image);
    void fitToWidth(CGSize imageSize);
    void addRectangles();
    void applyEnableZooming();
    bool shouldCameraRectangleBeVisible() const;

    // Gestures (SideviewGestures.cpp)
    using GestureAction = void (SideviewScrollView::*)(UIGestureRecognizer&);
    void setupGestureRecognisers();
    void addRecogniser(const std::shared_ptr<UIGestureRecognizer>& recogniser, GestureAction action);
    void tapOnSideview(UIGestureRecognizer& recogniser);
    void longPressOnSideview(UIGestureRecognizer& recogniser);
    void dragRecogniser(UIGestureRecognizer& recogniser);
    bool isDraggingCamera() const { return _enableZooming && !_scrollView->isScrollEnabled(); }
    bool canMoveCamera() const;
    void moveCameraTo(CGPoint imagePoint, bool animated);
    template <class Report>
    void reportAndMove(UIGestureRecognizer& recogniser, Report report, bool animated);

    // Overlays
    CGRect iconFrame(CGSize iconSize, CGPoint centre) const;
    std::optional<CGPoint> imagePoint(CLLocationCoordinate2D coordinate, std::int64_t levelNumber) const;
    std::shared_ptr<UIImageView> addIconView();
    void updateUserPositionIcon();
    void updateSideviewMarkers();
    SideviewMarker& markerNamed(const std::string& identifier);

    std::weak_ptr<TMXSideviewScrollViewDelegate> _delegate;
    std::shared_ptr<TrelmixMapEngine> _mapEngine;
    std::int64_t _levelNumber = kInitialLevel;
    std::shared_ptr<const SideviewProjection> _projection;
    std::string _setupFailure;
    std::shared_ptr<UIScrollView> _scrollView;
    std::shared_ptr<SideviewImageView> _imageView;
    std::shared_ptr<UIView> _cameraRectangle;
    std::shared_ptr<UIView> _positionRectangle;
    bool _enableZooming = true;
    std::shared_ptr<const UIImage> _userPositionIcon;
    std::shared_ptr<UIImageView> _userPositionMarker;
    CGPoint _userPosition;
    std::map<std::string, SideviewMarker> _markers;
    std::optional<UIBezierPath> _navigationPath;
    UIColor _navigationPathColor;
    double _navigationPathWidth = 0;
    int _navigationPathRevision = 0;
};

} // namespace trelmix
