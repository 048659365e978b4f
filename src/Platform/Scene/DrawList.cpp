#include "Platform/Scene/DrawList.h"

#include <cmath>

namespace trelmix {

Matrix4d DrawCamera::clipFromScene(Vector3d origin, double aspect) const {
    // The difference is taken before anything is narrowed: both places may be far from the scene's origin.
    const Matrix4d node = Matrix4d::translation(position - origin) * Matrix4d::rotation(eulerAngles) *
                          Matrix4d::translation(pivot * -1.0);
    const double focal = 1.0 / std::tan(fieldOfView * 0.5);
    const double nearest = 1.0;
    Matrix4d projection;
    projection.m = {focal / aspect, 0, 0, 0, 0, focal, 0, 0, 0, 0, -1, -1, 0, 0, -2.0 * nearest, 0};
    return projection * node.rigidInverse();
}

} // namespace trelmix
