/// @file
/// A rectangle on screen that holds other rectangles.
#pragma once

#include <Trelmix/Export.h>
#include <Trelmix/Platform/CGGeometry.h>
#include <Trelmix/Platform/UIColor.h>

#include <memory>
#include <optional>
#include <vector>

namespace trelmix {

class ViewNode;

/// A node of the view tree: a frame in its parent's coordinates, and subviews drawn in order above it.
///
/// A plain one is made by `make`; an engine and a side view have one of their own. Owned by its superview and
/// by whoever holds it; the way back up is weak. Main thread only.
class TRELMIX_API UIView : public std::enable_shared_from_this<UIView> {
public:
    /// A view without superview and content.
    static std::shared_ptr<UIView> make(CGRect frame = {});
    virtual ~UIView();
    UIView(const UIView&) = delete;
    UIView& operator=(const UIView&) = delete;

    /// Position and size in the superview's coordinates, points.
    CGRect frame() const { return _frame; }
    /// Sizes that are negative or not finite count as 0, origins that are not finite are ignored. A new size
    /// asks for a layout pass.
    virtual void setFrame(CGRect frame);
    /// The frame's size at the origin: the view's own coordinates.
    virtual CGRect bounds() const { return {{0, 0}, _frame.size}; }

    /// 0 (invisible) to 1, of the view with all that it holds; 1 unless set.
    double alpha() const { return _alpha; }
    /// Limited to 0 to 1; NaN counts as 1.
    void setAlpha(double alpha);
    /// Whether the view and all that it holds is neither drawn nor touched.
    bool isHidden() const { return _isHidden; }
    /// Hides or shows it; what it holds keeps its own state.
    void setHidden(bool hidden) { _isHidden = hidden; }
    /// Absent: nothing is painted behind the view's content.
    virtual std::optional<UIColor> backgroundColor() const { return _backgroundColor; }
    /// Absent for none.
    virtual void setBackgroundColor(std::optional<UIColor> color);

    /// Puts a view on top of the other subviews; it leaves its old superview. Empty, the view itself and its
    /// own ancestors are refused.
    void addSubview(const std::shared_ptr<UIView>& view);
    /// A view without a superview stays as it is.
    void removeFromSuperview();
    /// The view that holds this one; empty at the root of a tree.
    std::shared_ptr<UIView> superview() const { return _superview.lock(); }
    /// Undermost first.
    const std::vector<std::shared_ptr<UIView>>& subviews() const { return _subviews; }

    /// Has the next `layoutIfNeeded` run the layout pass of this view.
    void setNeedsLayout() { _needsLayout = true; }
    /// Runs the layout pass of this view and of those below it where one is due.
    void layoutIfNeeded();

    /// The deepest view at a point of this view's coordinates, empty outside. Hidden and transparent views
    /// and what is below them are passed over; of siblings the topmost wins.
    std::shared_ptr<UIView> hitTest(CGPoint point);
    /// True for the view itself and everything it lies in.
    bool isDescendantOf(const UIView& ancestor) const;
    /// A point of this view's coordinates in those of another view of the same tree (empty: the root of the
    /// tree).
    CGPoint convertPointToView(CGPoint point, const std::shared_ptr<UIView>& view) const;

protected:
    /// From the view's own coordinates to its superview's; scroll views scale and shift here. Never turns.
    virtual CGPoint toSuperview(CGPoint point) const;
    /// The way back.
    virtual CGPoint fromSuperview(CGPoint point) const;

private:
    friend class ViewNode;
    explicit UIView(CGRect frame);
    virtual void layoutSubviews() = 0;
    CGPoint toRoot(CGPoint point) const;
    CGPoint fromRoot(CGPoint point) const;

    CGRect _frame;
    double _alpha = 1;
    bool _isHidden = false;
    bool _needsLayout = true;
    std::optional<UIColor> _backgroundColor;
    std::weak_ptr<UIView> _superview;
    std::vector<std::shared_ptr<UIView>> _subviews;
};

} // namespace trelmix
