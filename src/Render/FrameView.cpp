#include "Render/FrameView.h"

#include <algorithm>
#include <cmath>

namespace trelmix {

namespace {

/// How far the eye may be from the origin, in heights above the ground. A pixel is about 1/500 of the height,
/// and floats resolve 1/8,000,000 of the distance: rounding stays near 1/200 of a pixel.
constexpr double kReach = 64;

} // namespace

BoundingSphere BoundingSphere::around(const float (*points)[3], std::size_t count) {
    BoundingSphere sphere;
    if (count == 0) {
        return sphere;
    }
    std::array<float, 3> low{points[0][0], points[0][1], points[0][2]};
    std::array<float, 3> high = low;
    bool finite = true;
    for (std::size_t i = 0; i < count; ++i) {
        for (std::size_t axis = 0; axis < 3; ++axis) {
            finite = finite && std::isfinite(points[i][axis]);
            low[axis] = std::min(low[axis], points[i][axis]);
            high[axis] = std::max(high[axis], points[i][axis]);
        }
    }
    if (!finite) {
        return sphere;
    }
    sphere.x = low[0] + (high[0] - low[0]) * 0.5F;
    sphere.y = low[1] + (high[1] - low[1]) * 0.5F;
    sphere.z = low[2] + (high[2] - low[2]) * 0.5F;
    sphere.radius = std::hypot(high[0] - low[0], high[1] - low[1], high[2] - low[2]) * 0.5F;
    return sphere;
}

bool FrameView::update(const DrawCamera& camera, int width, int height, bool rowsRunDown) {
    _halfSize = {static_cast<float>(width) * 0.5F, static_cast<float>(height) * 0.5F};
    const double aspect = static_cast<double>(width) / height;
    const Matrix4d node = Matrix4d::translation(camera.position) * Matrix4d::rotation(camera.eulerAngles);
    const Vector3d eye = node.transformPoint(camera.pivot * -1.0);
    const bool moved = moveOrigin(eye);
    _clip = camera.clipFromScene(_origin, aspect);
    for (std::size_t column = 0; rowsRunDown && column < 4; ++column) {
        _clip.m[column * 4 + 1] = -_clip.m[column * 4 + 1];
    }
    _matrix = _clip.narrowedValues();
    _isFinite = std::all_of(_matrix.begin(), _matrix.end(), [](float v) { return std::isfinite(v); });
    _eye = relative(eye);
    _pixelSize = static_cast<float>(2 * std::tan(camera.fieldOfView * 0.5) / height);
    for (std::size_t i = 0; i < _planes.size(); ++i) {
        // Inside are |x| <= w, |y| <= w and z >= -w.
        const std::size_t row = i / 2;
        const double sign = i % 2 == 0 ? 1 : -1;
        std::array<double, 4> plane{};
        for (std::size_t column = 0; column < 4; ++column) {
            plane[column] = _clip.m[column * 4 + 3] + sign * _clip.m[column * 4 + row];
        }
        const double length = std::hypot(plane[0], plane[1], plane[2]);
        for (std::size_t column = 0; column < 4; ++column) {
            _planes[i][column] = static_cast<float>(plane[column] / length);
        }
    }
    return moved;
}

bool FrameView::moveOrigin(Vector3d eye) {
    const double distance = std::hypot(eye.x - _origin.x, eye.y - _origin.y);
    if (!std::isfinite(distance) || (_hasOrigin && distance <= kReach * std::max(std::abs(eye.z), 1.0))) {
        return false;
    }
    _hasOrigin = true;
    _origin = {eye.x, eye.y, 0};
    return true;
}

std::array<float, 16> FrameView::matrixFor(Vector3d place) const {
    std::array<float, 16> result = _matrix;
    const Vector3d by = place - _origin;
    for (std::size_t row = 0; row < 4; ++row) {
        result[12 + row] = static_cast<float>(_clip.m[row] * by.x + _clip.m[4 + row] * by.y +
                                              _clip.m[8 + row] * by.z + _clip.m[12 + row]);
    }
    return result;
}

bool FrameView::canShow(const BoundingSphere& sphere) const {
    if (!(sphere.radius >= 0)) {
        return false;
    }
    const float distance =
        std::abs(sphere.x - _eye[0]) + std::abs(sphere.y - _eye[1]) + std::abs(sphere.z - _eye[2]);
    // Edges are smoothed over a pixel beyond the corners.
    const float reach = sphere.radius * 1.01F + 2 * _pixelSize * distance;
    for (const auto& plane : _planes) {
        if (plane[0] * sphere.x + plane[1] * sphere.y + plane[2] * sphere.z + plane[3] < -reach) {
            return false;
        }
    }
    return true;
}

} // namespace trelmix
