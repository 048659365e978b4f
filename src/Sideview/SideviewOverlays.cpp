#include "Sideview/SideviewOverlays.h"

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

void SideviewOverlays::startOn(std::shared_ptr<UIScrollView> scrollView, std::shared_ptr<UIView> imageView,
                               std::shared_ptr<const SideviewProjection> projection) {
    _scrollView = std::move(scrollView);
    _imageView = std::move(imageView);
    _projection = std::move(projection);
}

void SideviewOverlays::clear() {
    startOn(nullptr, nullptr, nullptr);
    _userPositionMarker.reset();
    _markers.clear();
    _path.reset();
    ++_pathRevision;
}

void SideviewOverlays::followZoom() {
    if (_path) {
        _path->setLineWidth(_pathWidth / _scrollView->zoomScale());
    }
    updateUserPositionIcon();
    updateMarkers();
}

std::optional<CGPoint> SideviewOverlays::imagePoint(CLLocationCoordinate2D coordinate,
                                                    std::int64_t levelNumber) const {
    const CGPoint point = _projection->point(coordinate, levelNumber);
    if (!std::isfinite(point.x) || !std::isfinite(point.y)) {
        return std::nullopt;
    }
    return point;
}

CGRect SideviewOverlays::iconFrame(CGSize iconSize, CGPoint centre) const {
    const double zoom = _scrollView->zoomScale();
    const CGSize size{iconSize.width / zoom, iconSize.height / zoom};
    return {{centre.x - size.width * 0.5, centre.y - size.height * 0.5}, size};
}

std::shared_ptr<UIImageView> SideviewOverlays::addIconView() {
    auto added = UIImageView::make(CGRect{});
    _imageView->addSubview(added);
    return added;
}

void SideviewOverlays::setUserPositionIcon(std::shared_ptr<const UIImage> icon) {
    _userPositionIcon = std::move(icon);
    updateUserPositionIcon();
}

void SideviewOverlays::updateUserPosition(CLLocationCoordinate2D coordinate, std::int64_t levelNumber) {
    if (!_projection || !CLLocationCoordinate2DIsValid(coordinate)) {
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

void SideviewOverlays::updateUserPositionIcon() {
    if (_userPositionMarker) {
        _userPositionMarker->setImage(_userPositionIcon);
        if (_userPositionIcon) {
            _userPositionMarker->setFrame(iconFrame(_userPositionIcon->size(), _userPosition));
        }
    }
}

void SideviewOverlays::removeUserPosition() {
    if (_userPositionMarker) {
        std::exchange(_userPositionMarker, nullptr)->removeFromSuperview();
    }
}

SideviewMarker& SideviewOverlays::markerNamed(const std::string& identifier) {
    const auto [place, isNew] = _markers.try_emplace(identifier);
    if (isNew) {
        place->second.identifier = identifier;
        place->second.imageView = addIconView();
    }
    return place->second;
}

void SideviewOverlays::updateMarker(const std::string& identifier, std::shared_ptr<const UIImage> icon) {
    if (_imageView) {
        markerNamed(identifier).icon = std::move(icon);
        updateMarkers();
    }
}

void SideviewOverlays::updateMarker(const std::string& identifier, CLLocationCoordinate2D coordinate,
                                    std::int64_t levelNumber) {
    if (!_projection) {
        return;
    }
    SideviewMarker& marker = markerNamed(identifier);
    if (const auto point = imagePoint(coordinate, levelNumber)) {
        marker.position = point;
    }
    updateMarkers();
}

void SideviewOverlays::updateMarkers() {
    for (const auto& [identifier, marker] : _markers) {
        if (marker.position) {
            marker.imageView->setImage(marker.icon);
            if (marker.icon) {
                marker.imageView->setFrame(iconFrame(marker.icon->size(), *marker.position));
            }
        }
    }
}

void SideviewOverlays::removeMarker(const std::string& identifier) {
    if (const auto removed = _markers.extract(identifier)) {
        removed.mapped().imageView->removeFromSuperview();
    }
}

void SideviewOverlays::drawPath(const std::vector<CLLocation>& path, UIColor color, double width) {
    if (!_projection) {
        return;
    }
    _pathColor = color;
    _pathWidth = width;
    UIBezierPath drawn;
    drawn.setLineWidth(width / _scrollView->zoomScale());
    for (const CLLocation& location : path) {
        // The path leaves out points without a finite place by itself; its first one starts it.
        if (const auto level = levelOf(location)) {
            drawn.addLineToPoint(_projection->point(location.coordinate(), *level));
        }
    }
    _path = std::move(drawn);
    ++_pathRevision;
}

} // namespace trelmix
