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

void SideviewOverlays::place(std::shared_ptr<const SideviewProjection> projection) {
    _projection = std::move(projection);
    if (_projection) {
        showIcons();
        tracePath();
    }
}

void SideviewOverlays::clear() {
    startOn(nullptr, nullptr, nullptr);
    _user.imageView.reset();
    _markers.clear();
    _pathPlaces.clear();
    _path.reset();
    ++_pathRevision;
}

void SideviewOverlays::followZoom() {
    if (_path) {
        _path->setLineWidth(_pathWidth / _scrollView->zoomScale());
    }
    showIcons();
}

// A level that hides what lies on it is a place too.
bool SideviewOverlays::hasPlace(const SideviewPlace& place) const {
    return std::isfinite(_projection->point(place.coordinate, place.levelNumber).x);
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

void SideviewOverlays::show(const SideviewMarker& marker) const {
    if (!marker.imageView || !marker.place) {
        return;
    }
    const CGPoint centre = _projection->point(marker.place->coordinate, marker.place->levelNumber);
    marker.imageView->setHidden(!std::isfinite(centre.y));
    marker.imageView->setImage(marker.icon);
    if (marker.icon) {
        marker.imageView->setFrame(iconFrame(marker.icon->size(), centre));
    }
}

void SideviewOverlays::showIcons() const {
    show(_user);
    for (const auto& [identifier, marker] : _markers) {
        show(marker);
    }
}

void SideviewOverlays::setUserPositionIcon(std::shared_ptr<const UIImage> icon) {
    _user.icon = std::move(icon);
    show(_user);
}

void SideviewOverlays::updateUserPosition(CLLocationCoordinate2D coordinate, std::int64_t levelNumber) {
    const SideviewPlace place{coordinate, levelNumber};
    if (!_projection || !CLLocationCoordinate2DIsValid(coordinate) || !hasPlace(place)) {
        return;
    }
    if (!_user.imageView) {
        _user.imageView = addIconView();
    }
    _user.place = place;
    show(_user);
}

void SideviewOverlays::removeUserPosition() {
    if (_user.imageView) {
        std::exchange(_user.imageView, nullptr)->removeFromSuperview();
    }
}

SideviewMarker& SideviewOverlays::markerNamed(const std::string& identifier) {
    const auto [place, isNew] = _markers.try_emplace(identifier);
    if (isNew) {
        place->second.imageView = addIconView();
    }
    return place->second;
}

void SideviewOverlays::updateMarker(const std::string& identifier, std::shared_ptr<const UIImage> icon) {
    if (_imageView) {
        SideviewMarker& marker = markerNamed(identifier);
        marker.icon = std::move(icon);
        show(marker);
    }
}

void SideviewOverlays::updateMarker(const std::string& identifier, CLLocationCoordinate2D coordinate,
                                    std::int64_t levelNumber) {
    if (!_projection) {
        return;
    }
    SideviewMarker& marker = markerNamed(identifier);
    const SideviewPlace place{coordinate, levelNumber};
    if (hasPlace(place)) {
        marker.place = place;
    }
    show(marker);
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
    _pathPlaces = path;
    _path.emplace();
    tracePath();
}

void SideviewOverlays::tracePath() {
    if (!_path) {
        return;
    }
    UIBezierPath drawn;
    drawn.setLineWidth(_pathWidth / _scrollView->zoomScale());
    bool hasGap = false;
    for (const CLLocation& location : _pathPlaces) {
        const auto level = levelOf(location);
        if (!level) {
            continue;
        }
        // The path leaves out points without a finite place by itself; its first one starts it.
        const CGPoint point = _projection->point(location.coordinate(), *level);
        hasGap ? drawn.moveToPoint(point) : drawn.addLineToPoint(point);
        hasGap = std::isfinite(point.x) ? !std::isfinite(point.y) : hasGap;
    }
    _path = std::move(drawn);
    ++_pathRevision;
}

} // namespace trelmix
