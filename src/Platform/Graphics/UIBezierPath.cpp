#include "Platform/Graphics/UIBezierPath.h"

#include <algorithm>
#include <cmath>
#include <numbers>

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

void UIBezierPath::appendOval(CGRect rect) {
    const double radiusX = rect.size.width / 2;
    const double radiusY = rect.size.height / 2;
    const CGPoint centre{rect.origin.x + radiusX, rect.origin.y + radiusY};
    if (!isFinite(centre) || !(radiusX > 0) || !(radiusY > 0) || !std::isfinite(radiusX) ||
        !std::isfinite(radiusY)) {
        return;
    }
    // A chord of n lies at most r * (pi / n)^2 / 2 inside the circle: here 0.02 units.
    const double wanted = std::numbers::pi * std::sqrt(std::max(radiusX, radiusY) / 0.04);
    const int count = static_cast<int>(std::clamp(std::ceil(wanted), 16.0, 1024.0));
    for (int i = 0; i < count; ++i) {
        const double angle = 2 * std::numbers::pi * i / count;
        const CGPoint point{centre.x + radiusX * std::cos(angle), centre.y + radiusY * std::sin(angle)};
        if (i == 0) {
            moveToPoint(point);
        } else {
            addLineToPoint(point);
        }
    }
    closePath();
}

void UIBezierPath::removeAllPoints() {
    _elements.clear();
}

void UIBezierPath::setLineWidth(double width) {
    _lineWidth = std::isfinite(width) && width > 0 ? width : 0;
}

} // namespace trelmix
