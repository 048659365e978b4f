#pragma once

#include "Platform/View/LayoutConstraint.h"

#include <Trelmix/Platform/UIView.h>

#include <memory>
#include <vector>

namespace trelmix {

class Canvas;
class UIGestureRecognizer;
class ViewComposer;

/// What every view has besides its public face: constraints that place its subviews, gesture recognisers, and
/// a picture of its own. Every UIView is one.
class ViewNode : public UIView {
public:
    static std::shared_ptr<ViewNode> make(CGRect frame = {});
    ~ViewNode() override;
    static ViewNode& of(UIView& view) { return static_cast<ViewNode&>(view); }
    static const ViewNode& of(const UIView& view) { return static_cast<const ViewNode&>(view); }

    /// Made by `LayoutConstraint::constraintsWithVisualFormat`; they act at every layout pass.
    void addConstraints(std::vector<LayoutConstraint> constraints);

    /// The recognisers that see the touches landing in this view and below it, in order of addition. One that
    /// is there already, and an empty one, change nothing.
    void addGestureRecognizer(const std::shared_ptr<UIGestureRecognizer>& recognizer);
    void removeGestureRecognizer(const std::shared_ptr<UIGestureRecognizer>& recognizer);
    const std::vector<std::shared_ptr<UIGestureRecognizer>>& gestureRecognizers() const {
        return _recognizers;
    }

protected:
    explicit ViewNode(CGRect frame);
    /// Applies the constraints; overriders call it first.
    void layoutSubviews() override;
    /// The area, from the origin of the view's own coordinates, whose edges constraints pin subviews to.
    virtual CGSize layoutArea() const { return frame().size; }
    const std::vector<LayoutConstraint>& constraints() const { return _constraints; }
    /// Paints the content above the background and below the subviews, in the view's own coordinates.
    virtual void draw(Canvas& canvas) const;
    /// True when nothing below shows outside the frame.
    virtual bool clipsToBounds() const { return false; }

private:
    friend class ViewComposer;

    std::vector<LayoutConstraint> _constraints;
    std::vector<std::shared_ptr<UIGestureRecognizer>> _recognizers;
};

} // namespace trelmix
