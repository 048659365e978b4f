#pragma once

#include "Platform/Foundation/RunLoop.h"
#include "Platform/View/UIScrollView.h"
#include "Platform/View/ViewNode.h"
#include "Sideview/SideviewFootprint.h"
#include "Sideview/SideviewGestures.h"
#include "Sideview/SideviewImageView.h"
#include "Sideview/SideviewOverlays.h"
#include "Sideview/SideviewProjection.h"

#include <Trelmix/TMXSideviewScrollView.h>
#include <Trelmix/TMXSideviewScrollViewDelegate.h>
#include <Trelmix/TrelmixMapEngine.h>

namespace trelmix {

/// The side view: a scroll view that holds the bitmap, which in turn holds the camera's footprint, the strip
/// and the icons, in the order in which they came.
///
/// There is no hierarchy before the set-up and no projection after one that failed.
///
/// Long by the interface, whose every entry stands here and is forwarded; what it does itself is the
/// hierarchy.
class SideviewScrollView final : public ViewNode,
                                 public TMXSideviewScrollView,
                                 public UIScrollViewDelegate,
                                 public UIGestureRecognizerDelegate {
public:
    static std::shared_ptr<SideviewScrollView> make(CGRect frame = {},
                                                    const SideviewBehaviour& behaviour = {});
    ~SideviewScrollView() override;

    std::shared_ptr<UIView> view() override { return shared_from_this(); }
    std::shared_ptr<TMXSideviewScrollViewDelegate> delegate() const override { return _delegate.lock(); }
    void setDelegate(std::weak_ptr<TMXSideviewScrollViewDelegate> delegate) override;
    SideviewBehaviour behaviour() const override { return _behaviour; }
    void setBehaviour(const SideviewBehaviour& behaviour) override;
    std::optional<UIColor> backgroundColor() const override { return UIView::backgroundColor(); }
    void setBackgroundColor(std::optional<UIColor> color) override;
    bool enableZooming() const override { return _enableZooming; }
    void setEnableZooming(bool enable) override;

    void setupSideviewWith(std::shared_ptr<const UIImage> image, const std::string& levelsPath) override;
    std::string setupFailure() const override { return _setupFailure; }
    void setDisplayedLevel(std::int64_t level, std::shared_ptr<TrelmixMapEngine> engine) override;
    std::int64_t levelNumber() const override { return _levelNumber; }
    void mapViewIdle() override;
    void mapViewWillMoveFromGesture(bool fromGesture) override;
    void mapViewIdleAtCamera(const std::shared_ptr<TrelmixMapEngineCamera>& camera) override;

    std::shared_ptr<const TMXSideviewProjection> sideviewProjection() const override { return _projection; }
    std::vector<std::int64_t> levelNumbers() const override;
    std::optional<std::int64_t> levelAt(CGPoint point) const override;
    std::shared_ptr<UIView> sideviewCameraRectangle() const override { return _footprint.cameraRectangle(); }
    std::shared_ptr<UIView> sideviewPositionRectangle() const override {
        return _footprint.positionRectangle();
    }

    std::shared_ptr<const UIImage> userPositionIcon() const override { return _overlays.userPositionIcon(); }
    void setUserPositionIcon(std::shared_ptr<const UIImage> icon) override;
    void updateUserPosition(CLLocationCoordinate2D coordinate, std::int64_t levelNumber) override;
    void removeUserPosition() override;
    void updateSideviewMarkerWithIdentifier(const std::string& identifier,
                                            std::shared_ptr<const UIImage> icon) override;
    void updateSideviewMarkerWithIdentifier(const std::string& identifier, CLLocationCoordinate2D coordinate,
                                            std::int64_t levelNumber) override;
    void removeSideviewMarkerWithIdentifier(const std::string& identifier) override;
    void drawNavigationPath(const std::vector<CLLocation>& path, UIColor color, double width) override;

    // For its parts and its host.
    std::shared_ptr<SideviewScrollView> self();
    const SideviewOverlays& overlays() const { return _overlays; }
    SideviewGestures& gestures() { return _gestures; }
    const std::shared_ptr<const SideviewProjection>& projection() const { return _projection; }
    const std::shared_ptr<TrelmixMapEngine>& mapEngine() const { return _mapEngine; }
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
    SideviewScrollView(CGRect frame, const SideviewBehaviour& behaviour)
        : ViewNode(frame), _behaviour(behaviour) {}
    bool followMap();
    void followWhileMoving();
    void removeHierarchy();
    void addScrollView();
    void addImageView(const std::shared_ptr<const UIImage>& image);
    void fitToWidth(CGSize imageSize);
    void applyEnableZooming();

    SideviewBehaviour _behaviour;
    std::weak_ptr<TMXSideviewScrollViewDelegate> _delegate;
    std::shared_ptr<TrelmixMapEngine> _mapEngine;
    std::int64_t _levelNumber = kInitialLevel;
    std::shared_ptr<const SideviewProjection> _projection;
    std::string _setupFailure;
    std::shared_ptr<UIScrollView> _scrollView;
    std::shared_ptr<SideviewImageView> _imageView;
    bool _enableZooming = true;
    SideviewFootprint _footprint;
    /// Runs while the map may be moving and the footprint is live.
    std::shared_ptr<Timer> _following;
    double _lastMove = 0;
    SideviewOverlays _overlays;
    SideviewGestures _gestures{*this};
};

} // namespace trelmix
