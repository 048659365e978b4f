// What stands on the side view's bitmap: the user's position, the markers and the path.

#include "Platform/Foundation/MainEntry.h"
#include "Sideview/SideviewScrollView.h"

#include <cmath>
#include <utility>

namespace trelmix {

namespace {

/// The level that a path's location carries in its altitude.
std::optional<std::int64_t> levelOf(const CLLocation& location) {
    constexpr double kBeyondLevels = 9223372036854775808.0; // 2^63
    const double level = std::trunc(location.altitude());
    if (!(level >= -kBeyondLevels && level < kBeyondLevels)) {
        return std::nullopt;
    }
    return static_cast<std::int64_t>(level);
}

} // namespace

std::optional<CGPoint> SideviewScrollView::imagePoint(CLLocationCoordinate2D coordinate,
                                                      std::int64_t levelNumber) const {
    const CGPoint point = _projection->point(coordinate, levelNumber);
    if (!std::isfinite(point.x) || !std::isfinite(point.y)) {
        return std::nullopt;
    }
    return point;
}

CGRect SideviewScrollView::iconFrame(CGSize iconSize, CGPoint centre) const {
    const double zoom = _scrollView->zoomScale();
    const CGSize size{iconSize.width / zoom, iconSize.height / zoom};
    return {{centre.x - size.width * 0.5, centre.y - size.height * 0.5}, size};
}

std::shared_ptr<UIImageView> SideviewScrollView::addIconView() {
    auto added = UIImageView::make(CGRect{});
    _imageView->addSubview(added);
    return added;
}

void SideviewScrollView::setUserPositionIcon(std::shared_ptr<const UIImage> icon) {
    if (const MainEntry entry{"setUserPositionIcon"}) {
        _userPositionIcon = std::move(icon);
        updateUserPositionIcon();
    }
}

void SideviewScrollView::updateUserPosition(CLLocationCoordinate2D coordinate, std::int64_t levelNumber) {
    const MainEntry entry{"updateUserPosition"};
    if (!entry || !_projection || !CLLocationCoordinate2DIsValid(coordinate)) {
        return;
    }
    if (const auto point = imagePoint(coordinate, levelNumber)) {
        if (!_userPositionMarker) {
            _userPositionMarker = addIconView();
        }
        _userPosition = *point;
        updateUserPositionIcon();
    }
}

void SideviewScrollView::updateUserPositionIcon() {
    if (_userPositionMarker) {
        _userPositionMarker->setImage(_userPositionIcon);
        if (_userPositionIcon) {
            _userPositionMarker->setFrame(iconFrame(_userPositionIcon->size(), _userPosition));
        }
    }
}

void SideviewScrollView::removeUserPosition() {
    const MainEntry entry{"removeUserPosition"};
    if (entry && _userPositionMarker) {
        std::exchange(_userPositionMarker, nullptr)->removeFromSuperview();
    }
}

SideviewMarker& SideviewScrollView::markerNamed(const std::string& identifier) {
    const auto [place, isNew] = _markers.try_emplace(identifier);
    if (isNew) {
        place->second.identifier = identifier;
        place->second.imageView = addIconView();
    }
    return place->second;
}

void SideviewScrollView::updateSideviewMarkerWithIdentifier(const std::string& identifier,
                                                            std::shared_ptr<const UIImage> icon) {
    const MainEntry entry{"updateSideviewMarkerWithIdentifier"};
    if (entry && _imageView) {
        markerNamed(identifier).icon = std::move(icon);
        updateSideviewMarkers();
    }
}

void SideviewScrollView::updateSideviewMarkerWithIdentifier(const std::string& identifier,
                                                            CLLocationCoordinate2D coordinate,
                                                            std::int64_t levelNumber) {
    const MainEntry entry{"updateSideviewMarkerWithIdentifier"};
    if (!entry || !_projection) {
        return;
    }
    SideviewMarker& marker = markerNamed(identifier);
    if (const auto point = imagePoint(coordinate, levelNumber)) {
        marker.position = point;
    }
    updateSideviewMarkers();
}

void SideviewScrollView::updateSideviewMarkers() {
    for (const auto& [identifier, marker] : _markers) {
        if (marker.position) {
            marker.imageView->setImage(marker.icon);
            if (marker.icon) {
                marker.imageView->setFrame(iconFrame(marker.icon->size(), *marker.position));
            }
        }
    }
}

void SideviewScrollView::removeSideviewMarkerWithIdentifier(const std::string& identifier) {
    if (const MainEntry entry{"removeSideviewMarkerWithIdentifier"}) {
        if (const auto removed = _markers.extract(identifier)) {
            removed.mapped().imageView->removeFromSuperview();
        }
    }
}

void SideviewScrollView::drawNavigationPath(const std::vector<CLLocation>& path, UIColor color,
                                            double width) {
    const MainEntry entry{"drawNavigationPath"};
    if (!entry || !_projection) {
        return;
    }
    _navigationPathColor = color;
    _navigationPathWidth = width;
    UIBezierPath drawn;
    drawn.setLineWidth(width / _scrollView->zoomScale());
    for (const CLLocation& location : path) {
        // The path leaves out points without a finite place by itself; its first one starts it.
        if (const auto level = levelOf(location)) {
            drawn.addLineToPoint(_projection->point(location.coordinate(), *level));
        }
    }
    _navigationPath = std::move(drawn);
    ++_navigationPathRevision;
}

} // namespace trelmix
