#include "Sideview/SideviewFootprint.h"

#include <cmath>

namespace trelmix {

namespace {

constexpr double kAlpha = 0.4;
// Image points.
constexpr CGRect kInitialStrip{{0, 2}, {0, 15}};

bool isFinite(const CGRect& rect) {
    return std::isfinite(rect.origin.x) && std::isfinite(rect.origin.y) && std::isfinite(rect.size.width) &&
           std::isfinite(rect.size.height);
}

std::shared_ptr<UIView> addTintedView(UIView& superview, CGRect frame, UIColor color) {
    auto added = UIView::make(frame);
    added->setBackgroundColor(color.colorWithAlphaComponent(kAlpha));
    superview.addSubview(added);
    return added;
}

} // namespace

void SideviewFootprint::addTo(UIView& imageView) {
    _cameraRectangle = addTintedView(imageView, {}, UIColor::redColor());
    _positionRectangle = addTintedView(imageView, kInitialStrip, UIColor::blueColor());
}

void SideviewFootprint::clear() {
    _cameraRectangle.reset();
    _positionRectangle.reset();
}

bool SideviewFootprint::follow(const TrelmixMapProjection& map, const SideviewProjection& projection,
                               std::int64_t levelNumber) {
    const CGRect footprint =
        projection.cameraBoundingRectangle(map, showsLevel() ? levelNumber : kInvalidLevel);
    if (!isFinite(footprint)) {
        return false;
    }
    const CGRect before = _cameraRectangle->frame();
    _cameraRectangle->setFrame(footprint);
    CGRect strip = _positionRectangle->frame();
    strip.origin.x = footprint.origin.x;
    strip.size.width = footprint.size.width;
    _positionRectangle->setFrame(strip);
    return _cameraRectangle->frame() != before;
}

bool SideviewFootprint::showsLevel() const {
    return !_cameraRectangle->isHidden() &&
           _cameraRectangle->backgroundColor().value_or(UIColor::blackColor()).alpha > 0;
}

} // namespace trelmix
