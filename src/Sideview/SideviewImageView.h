#pragma once

#include "Platform/View/UIImageView.h"

namespace trelmix {

class SideviewScrollView;

/// The side view's bitmap with the navigation path on it.
///
/// The path is stroked whenever the view is drawn, at the zoom that it is drawn with: sharp, and without a
/// copy of the bitmap for every step of a zoom. Belongs to its side view, which it refers to weakly. Main
/// thread only.
class SideviewImageView final : public UIImageView {
public:
    static std::shared_ptr<SideviewImageView> make(std::shared_ptr<const UIImage> image);

    /// The side view whose path is drawn.
    void setParentScrollView(std::weak_ptr<SideviewScrollView> parent) { _parent = std::move(parent); }
    /// As handed to the set-up.
    const std::shared_ptr<const UIImage>& originalImage() const { return _originalImage; }
    /// A copy of the bitmap with the path stroked on it; the bitmap itself without a path, and when there is
    /// no memory for another.
    std::shared_ptr<const UIImage> createImage() const;

protected:
    void draw(Canvas& canvas) const override;

private:
    explicit SideviewImageView(std::shared_ptr<const UIImage> image);
    void strokePath(Canvas& canvas) const;

    std::weak_ptr<SideviewScrollView> _parent;
    std::shared_ptr<const UIImage> _originalImage;
};

} // namespace trelmix
