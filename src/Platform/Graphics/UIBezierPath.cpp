#include "Platform/Graphics/UIBezierPath.h"

#include <cmath>

namespace trelmix {
namespace {

bool isFinite(CGPoint point) {
    return std::isfinite(point.x) && std::isfinite(point.y);
}

} // namespace

void UIBezierPath::moveToPoint(CGPoint point) {
    if (!isFinite(point)) {
        return;
    }
    _start = point;
    // Of several moves in a row only the last counts.
    if (!_elements.empty() && _elements.back().startsSubpath && !_elements.back().closesSubpath) {
        _elements.back().point = point;
    } else {
        _elements.push_back({point, true, false});
    }
}

void UIBezierPath::addLineToPoint(CGPoint point) {
    if (!isFinite(point)) {
        return;
    }
    if (_elements.empty()) {
        moveToPoint(point);
        return;
    }
    if (_elements.back().closesSubpath) {
        moveToPoint(_start);
    }
    _elements.push_back({point, false, false});
}

void UIBezierPath::closePath() {
    if (!_elements.empty()) {
        _elements.back().closesSubpath = true;
    }
}

void UIBezierPath::setLineWidth(double width) {
    _lineWidth = std::isfinite(width) && width > 0 ? width : 0;
}

} // namespace trelmix
