#include "Platform/View/UIImageView.h"

#include "Platform/Graphics/Canvas.h"

namespace trelmix {

std::shared_ptr<UIImageView> UIImageView::make(std::shared_ptr<const UIImage> image) {
    return std::shared_ptr<UIImageView>(new UIImageView(std::move(image)));
}

std::shared_ptr<UIImageView> UIImageView::make(CGRect frame) {
    return std::shared_ptr<UIImageView>(new UIImageView(frame));
}

UIImageView::UIImageView(std::shared_ptr<const UIImage> image)
    : ViewNode({{0, 0}, image ? image->size() : CGSize{}}), _image(std::move(image)) {}

void UIImageView::draw(Canvas& canvas) const {
    if (_image) {
        canvas.drawImage(*_image, bounds());
    }
}

} // namespace trelmix
