#pragma once

#include <Trelmix/Platform/CGGeometry.h>

#include <vector>

namespace trelmix {

/// An outline of straight segments: one or more runs of points, each open or closed. A plain value, in
/// whatever units its user draws with. Points that are not finite are left out.
class UIBezierPath {
public:
    struct Element {
        CGPoint point;
        /// No segment leads here from the element before.
        bool startsSubpath = false;
        /// One more segment leads from here to the start of the run.
        bool closesSubpath = false;
    };

    const std::vector<Element>& elements() const { return _elements; }
    bool isEmpty() const { return _elements.empty(); }

    void moveToPoint(CGPoint point);
    /// Starts a run when there is none to go on with; after `closePath` a new one begins where the last one
    /// began.
    void addLineToPoint(CGPoint point);
    void closePath();

    double lineWidth() const { return _lineWidth; }
    /// Negative and not finite widths count as 0, which draws nothing.
    void setLineWidth(double width);

private:
    std::vector<Element> _elements;
    CGPoint _start;
    double _lineWidth = 1;
};

} // namespace trelmix
