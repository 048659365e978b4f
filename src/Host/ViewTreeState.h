#pragma once

#include <Trelmix/Platform/UIImage.h>
#include <Trelmix/Platform/UIView.h>

#include <memory>
#include <vector>

namespace trelmix {

/// Everything that decides how a view tree looks, to be compared with a later one: the views themselves do
/// not count their changes, and an application may reach some of them. Knows views, image views, scroll views
/// and the side view's path. Keeps the images of the tree. Main thread only.
class ViewTreeState {
public:
    ViewTreeState() = default;
    static ViewTreeState of(const UIView& root);
    friend bool operator==(const ViewTreeState&, const ViewTreeState&) = default;

private:
    void add(const UIView& view);
    void add(CGRect rect);

    std::vector<double> _numbers;
    // Held, so that no new image can come to lie where an old one was.
    std::vector<std::shared_ptr<const UIImage>> _images;
};

} // namespace trelmix
