#pragma once

#include "Platform/Graphics/UIBezierPath.h"
#include "Platform/View/UIScrollView.h"
#include "Sideview/SideviewMarker.h"
#include "Sideview/SideviewProjection.h"

#include <Trelmix/Platform/UIColor.h>

#include <map>
#include <string>
#include <vector>

namespace trelmix {

/// What stands on the side view's bitmap: the user's position, the markers and the path. Icons and the path's
/// width keep their size on screen at every zoom.
///
/// A part of its side view. Needs the scene lock. Before `startOn` nothing has a place; what needs one is
/// ignored.
class SideviewOverlays {
public:
    /// A new bitmap: an image view that a scroll view zooms. Without a projection nothing can be placed.
    void startOn(std::shared_ptr<UIScrollView> scrollView, std::shared_ptr<UIView> imageView,
                 std::shared_ptr<const SideviewProjection> projection);
    /// Puts everything where another projection of the same bitmap has it.
    void place(std::shared_ptr<const SideviewProjection> projection);
    /// Everything goes, but for the user position's icon.
    void clear();
    /// Brings everything to its size on screen after a zoom.
    void followZoom();

    const std::shared_ptr<const UIImage>& userPositionIcon() const { return _user.icon; }
    void setUserPositionIcon(std::shared_ptr<const UIImage> icon);
    void updateUserPosition(CLLocationCoordinate2D coordinate, std::int64_t levelNumber);
    void removeUserPosition();

    void updateMarker(const std::string& identifier, std::shared_ptr<const UIImage> icon);
    void updateMarker(const std::string& identifier, CLLocationCoordinate2D coordinate,
                      std::int64_t levelNumber);
    void removeMarker(const std::string& identifier);

    void drawPath(const std::vector<CLLocation>& path, UIColor color, double width);
    /// Image points, as wide as it is on screen now; null without one.
    const UIBezierPath* path() const { return _path ? &*_path : nullptr; }
    UIColor pathColor() const { return _pathColor; }
    /// Another number for every path.
    int pathRevision() const { return _pathRevision; }

private:
    CGRect iconFrame(CGSize iconSize, CGPoint centre) const;
    bool hasPlace(const SideviewPlace& place) const;
    std::shared_ptr<UIImageView> addIconView();
    void show(const SideviewMarker& marker) const;
    void showIcons() const;
    void tracePath();
    SideviewMarker& markerNamed(const std::string& identifier);

    std::shared_ptr<UIScrollView> _scrollView;
    std::shared_ptr<UIView> _imageView;
    std::shared_ptr<const SideviewProjection> _projection;
    /// Without a view there is no user position.
    SideviewMarker _user;
    std::map<std::string, SideviewMarker> _markers;
    std::vector<CLLocation> _pathPlaces;
    std::optional<UIBezierPath> _path;
    UIColor _pathColor;
    double _pathWidth = 0;
    int _pathRevision = 0;
};

} // namespace trelmix
