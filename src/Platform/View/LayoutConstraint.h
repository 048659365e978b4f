#pragma once

#include <Trelmix/Platform/Result.h>

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace trelmix {

class UIView;

/// Pins one subview to two opposite edges of its superview, and fixes its length between them when one is
/// given.
///
/// A plain value; it refers to its view weakly and acts only while that is a subview of the view it was added
/// to. In a scroll view the edges are those of the content, so that a fixed length gives the content its
/// size.
class LayoutConstraint {
public:
    enum class Axis { horizontal, vertical };
    using Metrics = std::map<std::string, double>;
    using Views = std::map<std::string, std::weak_ptr<UIView>>;

    /// Reads one of the four forms `H:|[name]|`, `V:|[name]|`, `H:|[name(==length)]|` and
    /// `V:|[name(==length)]|`, where `length` is a plain number of points or a key of `metrics`. Anything
    /// else fails with a reason.
    static Result<std::vector<LayoutConstraint>>
    constraintsWithVisualFormat(std::string_view format, const Metrics& metrics, const Views& views);

    Axis axis() const { return _axis; }
    /// Points; absent: as long as the superview.
    std::optional<double> length() const { return _length; }
    std::shared_ptr<UIView> view() const { return _view.lock(); }

private:
    LayoutConstraint(Axis axis, std::optional<double> length, std::weak_ptr<UIView> view)
        : _axis(axis), _length(length), _view(std::move(view)) {}

    Axis _axis;
    std::optional<double> _length;
    std::weak_ptr<UIView> _view;
};

} // namespace trelmix
