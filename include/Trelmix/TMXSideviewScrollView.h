/// @file
/// One picture of a structure's levels, seen from the side and joined to the map.
#pragma once

#include <Trelmix/Export.h>
#include <Trelmix/Platform/CGGeometry.h>
#include <Trelmix/Platform/CLLocation.h>
#include <Trelmix/Platform/UIColor.h>
#include <Trelmix/Platform/UIImage.h>
#include <Trelmix/SideviewBehaviour.h>
#include <Trelmix/TrelmixMapEngineDelegate.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace trelmix {

class TMXSideviewProjection;
class TMXSideviewScrollViewDelegate;
class TrelmixMapEngine;
class UIView;

/// Shows a bitmap of stacked levels that zooms and pans, marks in it what the map's camera sees, the user's
/// position, named markers and a path, and turns taps and drags into cameras of the map.
///
/// Made by `make`, owned by the application. It keeps the engine that it is connected to alive; the engine
/// refers to it weakly, as its delegate or through a TrelmixMapEngineDelegateGroup. Main thread only; a call
/// from elsewhere is ignored and reported as a fault. Image points: the bitmap's own, origin at its top left,
/// x right, y down.
class TRELMIX_API TMXSideviewScrollView : public TrelmixMapEngineDelegate {
public:
    /// The level that is displayed until one is set.
    static constexpr std::int64_t kInitialLevel = -1337;

    /// Nothing to see yet. Without a width the picture will be fitted to the width of the screen.
    static std::shared_ptr<TMXSideviewScrollView> make(CGRect frame = {},
                                                       const SideviewBehaviour& behaviour = {});
    ~TMXSideviewScrollView() override;

    /// The view that the application places in its hierarchy.
    virtual std::shared_ptr<UIView> view() = 0;
    /// Hears of taps and of camera drags; not owned.
    virtual std::shared_ptr<TMXSideviewScrollViewDelegate> delegate() const = 0;
    /// Takes the place of the one before; empty for none.
    virtual void setDelegate(std::weak_ptr<TMXSideviewScrollViewDelegate> delegate) = 0;
    /// How the side view behaves; classic at first.
    virtual SideviewBehaviour behaviour() const = 0;
    /// Takes effect at once, also in a side view that is shown; a gesture under way is cancelled.
    virtual void setBehaviour(const SideviewBehaviour& behaviour) = 0;
    /// White once set up, unless changed after.
    virtual std::optional<UIColor> backgroundColor() const = 0;
    /// Behind the picture; without one nothing is painted there. A later set-up makes it white again.
    virtual void setBackgroundColor(std::optional<UIColor> color) = 0;
    /// True (as at first): fingers pan and zoom the picture, and drag the camera after a long press. False:
    /// the whole width shows and every drag moves the camera.
    virtual bool enableZooming() const = 0;
    /// Takes effect at once: without zooming the picture goes back to its whole width.
    virtual void setEnableZooming(bool enable) = 0;

    /// Shows a bitmap, as far as its width fits, and reads how it lies in the world. Whatever an earlier
    /// set-up showed is gone, user position, markers and path included; the displayed level, the engine and
    /// the user position's icon stay.
    ///
    /// When the levels file cannot be used the bitmap still shows, but nothing can be placed in it and
    /// touches move no camera; `setupFailure` says why. Without an image nothing shows.
    /// @param levelsPath a file as docs/level-files.md describes it.
    virtual void setupSideviewWith(std::shared_ptr<const UIImage> image, const std::string& levelsPath) = 0;
    /// One line (file, place in it, what is wrong) on why the last set-up is not connected to the world;
    /// empty when it is, and before the first.
    virtual std::string setupFailure() const = 0;

    /// Shows a level, and what the engine's camera sees of it from now on. Without an engine the footprint
    /// stays where it is and touches move nothing. May be called before the set-up.
    virtual void setDisplayedLevel(std::int64_t level, std::shared_ptr<TrelmixMapEngine> engine) = 0;
    /// The displayed level; `kInitialLevel` until one is set.
    virtual std::int64_t levelNumber() const = 0;
    /// Moves the camera's footprint to where the engine's camera is now. Runs by itself whenever the camera
    /// comes to rest, if the engine reports it here.
    virtual void mapViewIdle() = 0;

    /// How the bitmap lies in the world; empty unless the last set-up went well.
    virtual std::shared_ptr<const TMXSideviewProjection> sideviewProjection() const = 0;
    /// The levels that have a number, in the file's order.
    virtual std::vector<std::int64_t> levelNumbers() const = 0;
    /// The level drawn at, or nearest to, a point of `view()`; empty without levels.
    virtual std::optional<std::int64_t> levelAt(CGPoint point) const = 0;

    /// The camera's footprint on the displayed level, red unless changed. Hidden or wholly transparent it
    /// stands for no level: only the strip follows the camera. Empty before the set-up.
    virtual std::shared_ptr<UIView> sideviewCameraRectangle() const = 0;
    /// The footprint's horizontal extent, a blue strip near the top of the picture.
    virtual std::shared_ptr<UIView> sideviewPositionRectangle() const = 0;

    /// Marks the user position; empty at first. As the markers' icons it keeps its size on screen at every
    /// zoom, and stands centred on its place.
    virtual std::shared_ptr<const UIImage> userPositionIcon() const = 0;
    /// Empty: the user position does not show.
    virtual void setUserPositionIcon(std::shared_ptr<const UIImage> icon) = 0;
    /// Shows or moves the user position. Ignored before the set-up, and for coordinates that are invalid or
    /// have no place in the picture.
    virtual void updateUserPosition(CLLocationCoordinate2D coordinate, std::int64_t levelNumber) = 0;
    /// Until the next update; nothing when there is none.
    virtual void removeUserPosition() = 0;

    /// A marker shows once it has both an icon and a place; whichever comes first creates it. Ignored before
    /// the set-up.
    virtual void updateSideviewMarkerWithIdentifier(const std::string& identifier,
                                                    std::shared_ptr<const UIImage> icon) = 0;
    /// A coordinate that has no place in the picture moves nothing.
    virtual void updateSideviewMarkerWithIdentifier(const std::string& identifier,
                                                    CLLocationCoordinate2D coordinate,
                                                    std::int64_t levelNumber) = 0;
    /// Takes its icon and its place away; an unknown identifier changes nothing.
    virtual void removeSideviewMarkerWithIdentifier(const std::string& identifier) = 0;

    /// Replaces the path; an empty one removes it. Ignored before the set-up.
    /// @param path the altitude of each location is its level number, cut to a whole number; locations
    /// without a usable one, and those that have no place in the picture, are left out.
    /// @param width points on screen, whatever the zoom.
    virtual void drawNavigationPath(const std::vector<CLLocation>& path, UIColor color, double width) = 0;
};

} // namespace trelmix
