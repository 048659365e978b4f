#include "Platform/Scene/SCNMatrix.h"

#include <cmath>

namespace trelmix {

Matrix4d Matrix4d::translation(Vector3d by) {
    Matrix4d result;
    result.m[12] = by.x;
    result.m[13] = by.y;
    result.m[14] = by.z;
    return result;
}

Matrix4d Matrix4d::scale(Vector3d by) {
    Matrix4d result;
    result.m[0] = by.x;
    result.m[5] = by.y;
    result.m[10] = by.z;
    return result;
}

Matrix4d Matrix4d::rotation(Vector3d euler) {
    const double sx = std::sin(euler.x);
    const double cx = std::cos(euler.x);
    const double sy = std::sin(euler.y);
    const double cy = std::cos(euler.y);
    const double sz = std::sin(euler.z);
    const double cz = std::cos(euler.z);
    Matrix4d result;
    result.m = {cz * cy,
                sz * cy,
                -sy,
                0,
                cz * sy * sx - sz * cx,
                sz * sy * sx + cz * cx,
                cy * sx,
                0,
                cz * sy * cx + sz * sx,
                sz * sy * cx - cz * sx,
                cy * cx,
                0,
                0,
                0,
                0,
                1};
    return result;
}

Vector3d Matrix4d::transformPoint(Vector3d p) const {
    return {m[0] * p.x + m[4] * p.y + m[8] * p.z + m[12], m[1] * p.x + m[5] * p.y + m[9] * p.z + m[13],
            m[2] * p.x + m[6] * p.y + m[10] * p.z + m[14]};
}

Matrix4d Matrix4d::rigidInverse() const {
    Matrix4d result;
    for (std::size_t row = 0; row < 3; ++row) {
        double shift = 0;
        for (std::size_t column = 0; column < 3; ++column) {
            result.m[column * 4 + row] = m[row * 4 + column];
            shift += m[row * 4 + column] * m[12 + column];
        }
        result.m[12 + row] = -shift;
    }
    return result;
}

std::array<float, 16> Matrix4d::narrowedValues() const {
    std::array<float, 16> result{};
    for (std::size_t i = 0; i < 16; ++i) {
        result[i] = static_cast<float>(m[i]);
    }
    return result;
}

Matrix4d operator*(const Matrix4d& a, const Matrix4d& b) {
    Matrix4d result;
    for (std::size_t column = 0; column < 4; ++column) {
        for (std::size_t row = 0; row < 4; ++row) {
            double sum = 0;
            for (std::size_t i = 0; i < 4; ++i) {
                sum += a.m[i * 4 + row] * b.m[column * 4 + i];
            }
            result.m[column * 4 + row] = sum;
        }
    }
    return result;
}

} // namespace trelmix
