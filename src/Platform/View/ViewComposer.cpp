#include "Platform/View/ViewComposer.h"

#include "Platform/Graphics/Canvas.h"
#include "Platform/View/ViewNode.h"

#include <Trelmix/Platform/UIImage.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace trelmix {
namespace {

CGRect intersection(const CGRect& a, const CGRect& b) {
    const double left = std::max(a.origin.x, b.origin.x);
    const double top = std::max(a.origin.y, b.origin.y);
    const double right = std::min(a.origin.x + a.size.width, b.origin.x + b.size.width);
    const double bottom = std::min(a.origin.y + a.size.height, b.origin.y + b.size.height);
    return {{left, top}, {std::max(0.0, right - left), std::max(0.0, bottom - top)}};
}

bool isEmpty(const CGRect& rect) {
    return !(rect.size.width > 0 && rect.size.height > 0);
}

} // namespace

Result<std::shared_ptr<const UIImage>> ViewComposer::compose(UIView& root, double scale) {
    using Answer = Result<std::shared_ptr<const UIImage>>;
    root.layoutIfNeeded();
    const CGSize size = root.frame().size;
    const double width = std::round(size.width * scale);
    const double height = std::round(size.height * scale);
    // Written so that NaN fails too; the product limits each side well below what an int holds.
    if (!(scale > 0 && width >= 1 && height >= 1 &&
          width * height <= static_cast<double>(UIImage::kMaximumPixelCount))) {
        return Answer::failure("a view of this size and scale has no picture");
    }
    Canvas canvas(static_cast<int>(width), static_cast<int>(height), scale);
    if (!canvas.isValid()) {
        return Answer::failure("a picture of this size cannot be made");
    }
    const CGPoint frameOrigin = root.frame().origin;
    const Place place{{-frameOrigin.x, -frameOrigin.y}, 1, {{0, 0}, size}};
    drawView(ViewNode::of(root), place, {canvas, static_cast<int>(width), static_cast<int>(height), scale});
    return std::move(canvas).image();
}

ViewComposer::Place ViewComposer::placeOf(const ViewNode& view, const Place& place) {
    const CGPoint origin = view.toSuperview({0, 0});
    const double zoom = view.toSuperview({1, 0}).x - origin.x;
    return {{place.origin.x + place.zoom * origin.x, place.origin.y + place.zoom * origin.y},
            place.zoom * zoom,
            place.clip};
}

void ViewComposer::drawView(const ViewNode& view, const Place& place, const Target& target) {
    if (view.isHidden() || view.alpha() <= 0 || isEmpty(place.clip)) {
        return;
    }
    if (view.alpha() >= 1) {
        drawOpaque(view, placeOf(view, place), target);
        return;
    }
    // What lies below becomes translucent as one picture: its parts must not show through each other.
    Canvas group(target.width, target.height, target.scale);
    drawOpaque(view, placeOf(view, place), {group, target.width, target.height, target.scale});
    if (const std::shared_ptr<const UIImage> picture = std::move(group).image()) {
        target.canvas.drawImage(*picture, {{0, 0}, picture->size()}, view.alpha());
    }
}

void ViewComposer::drawOpaque(const ViewNode& view, const Place& place, const Target& target) {
    const CGRect bounds = view.bounds();
    const CGRect onCanvas{
        {place.origin.x + place.zoom * bounds.origin.x, place.origin.y + place.zoom * bounds.origin.y},
        {place.zoom * bounds.size.width, place.zoom * bounds.size.height}};
    Place below = place;
    if (view.clipsToBounds()) {
        below.clip = intersection(place.clip, onCanvas);
    }
    // A view may draw beyond its frame only by its subviews.
    if (!isEmpty(intersection(place.clip, onCanvas))) {
        Canvas& canvas = target.canvas;
        canvas.save();
        canvas.clipRect(below.clip);
        if (const std::optional<UIColor> color = view.backgroundColor()) {
            canvas.fillRect(onCanvas, *color);
        }
        canvas.translate(place.origin.x, place.origin.y);
        canvas.scale(place.zoom, place.zoom);
        view.draw(canvas);
        canvas.restore();
    }
    for (const std::shared_ptr<UIView>& child : view.subviews()) {
        drawView(ViewNode::of(*child), below, target);
    }
}

} // namespace trelmix
