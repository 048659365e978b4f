#pragma once

#include "Platform/View/ViewNode.h"

#include <Trelmix/Platform/UIImage.h>

namespace trelmix {

/// Shows one image, stretched over its bounds. Main thread only.
class UIImageView : public ViewNode {
public:
    /// At the origin, as large as the image.
    static std::shared_ptr<UIImageView> make(std::shared_ptr<const UIImage> image);
    static std::shared_ptr<UIImageView> make(CGRect frame);

    std::shared_ptr<const UIImage> image() const { return _image; }
    /// Leaves the frame as it is.
    virtual void setImage(std::shared_ptr<const UIImage> image) { _image = std::move(image); }

protected:
    explicit UIImageView(std::shared_ptr<const UIImage> image);
    explicit UIImageView(CGRect frame) : ViewNode(frame) {}

    /// Draws the image; overriders call it and draw on top, so that what they add is as sharp as the picture
    /// that is composed. The canvas counts in the view's own coordinates.
    void draw(Canvas& canvas) const override;

private:
    std::shared_ptr<const UIImage> _image;
};

} // namespace trelmix
