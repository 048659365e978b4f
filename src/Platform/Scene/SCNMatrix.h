#pragma once

#include "Platform/Scene/SCNVector.h"

#include <array>

namespace trelmix {

/// A 4 x 4 transform in doubles, column by column as OpenGL takes it; points are columns.
struct Matrix4d {
    std::array<double, 16> m{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

    static Matrix4d translation(Vector3d by);
    static Matrix4d scale(Vector3d by);
    /// Rz * Ry * Rx of Euler angles in radians: x first, about the axes of the parent.
    static Matrix4d rotation(Vector3d euler);

    Vector3d transformPoint(Vector3d p) const;
    /// The inverse of a product of translations and rotations.
    Matrix4d rigidInverse() const;
    std::array<float, 16> narrowedValues() const;
    friend Matrix4d operator*(const Matrix4d& a, const Matrix4d& b);
};

} // namespace trelmix
