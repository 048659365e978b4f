#include "Sideview/SideviewImageView.h"

#include "Platform/Graphics/Canvas.h"
#include "Sideview/SideviewScrollView.h"

#include <utility>

namespace trelmix {

std::shared_ptr<SideviewImageView> SideviewImageView::make(std::shared_ptr<const UIImage> image) {
    return std::shared_ptr<SideviewImageView>(new SideviewImageView(std::move(image)));
}

SideviewImageView::SideviewImageView(std::shared_ptr<const UIImage> image)
    : UIImageView(image), _originalImage(std::move(image)) {}

void SideviewImageView::draw(Canvas& canvas) const {
    UIImageView::draw(canvas);
    canvas.save();
    // As if the path were part of the bitmap, which ends at its edges.
    canvas.clipRect(bounds());
    strokePath(canvas);
    canvas.restore();
}

void SideviewImageView::strokePath(Canvas& canvas) const {
    const auto parent = _parent.lock();
    if (parent && parent->overlays().path()) {
        canvas.strokePath(*parent->overlays().path(), parent->overlays().pathColor());
    }
}

std::shared_ptr<const UIImage> SideviewImageView::createImage() const {
    const auto parent = _parent.lock();
    if (!parent || !parent->overlays().path() || parent->overlays().path()->isEmpty()) {
        return _originalImage;
    }
    Canvas canvas(*_originalImage);
    strokePath(canvas);
    const auto image = std::move(canvas).image();
    return image ? image : _originalImage;
}

} // namespace trelmix
