#include "Host/ViewTreeState.h"

#include "Platform/View/UIImageView.h"
#include "Platform/View/UIScrollView.h"
#include "Sideview/SideviewScrollView.h"

namespace trelmix {

ViewTreeState ViewTreeState::of(const UIView& root) {
    ViewTreeState state;
    state.add(root);
    return state;
}

void ViewTreeState::add(CGRect rect) {
    _numbers.insert(_numbers.end(), {rect.origin.x, rect.origin.y, rect.size.width, rect.size.height});
}

void ViewTreeState::add(const UIView& view) {
    add(view.frame());
    // A scroll view's bounds are its zoom and its offset.
    add(view.bounds());
    const UIColor background = view.backgroundColor().value_or(UIColor::clearColor()).limited();
    _numbers.insert(_numbers.end(), {view.isHidden() ? 0.0 : view.alpha(), background.red, background.green,
                                     background.blue, background.alpha});
    if (const auto* image = dynamic_cast<const UIImageView*>(&view)) {
        _images.push_back(image->image());
    }
    if (const auto* sideview = dynamic_cast<const SideviewScrollView*>(&view)) {
        _numbers.push_back(sideview->overlays().pathRevision());
    }
    _numbers.push_back(static_cast<double>(view.subviews().size()));
    for (const std::shared_ptr<UIView>& child : view.subviews()) {
        add(*child);
    }
}

} // namespace trelmix
