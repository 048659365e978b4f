#pragma once

#include <memory>

namespace trelmix {

class UIView;

/// Watches the touches that land in its view and in the views below it. Main thread only.
class UIGestureRecognizer : public std::enable_shared_from_this<UIGestureRecognizer> {
public:
    virtual ~UIGestureRecognizer() = default;
    /// Empty while it belongs to no view.
    std::shared_ptr<UIView> view() const { return _view.lock(); }

private:
    friend class UIView;
    void setView(std::weak_ptr<UIView> view) { _view = std::move(view); }

    std::weak_ptr<UIView> _view;
};

} // namespace trelmix
