#pragma once

namespace trelmix {

/// Three 32-bit floats: a place, a set of Euler angles or a scale of the scene.
struct SCNVector3 {
    float x = 0;
    float y = 0;
    float z = 0;
    friend bool operator==(const SCNVector3&, const SCNVector3&) = default;
};

/// The same in doubles: the scene is drawn from these, so that nothing shakes far from its origin.
struct Vector3d {
    double x = 0;
    double y = 0;
    double z = 0;
    friend bool operator==(const Vector3d&, const Vector3d&) = default;
    friend Vector3d operator+(Vector3d a, Vector3d b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
    friend Vector3d operator-(Vector3d a, Vector3d b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
    friend Vector3d operator*(Vector3d a, double s) { return {a.x * s, a.y * s, a.z * s}; }
};

inline double dot(Vector3d a, Vector3d b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

inline SCNVector3 narrowed(Vector3d v) {
    return {static_cast<float>(v.x), static_cast<float>(v.y), static_cast<float>(v.z)};
}
inline Vector3d widened(SCNVector3 v) {
    return {v.x, v.y, v.z};
}

} // namespace trelmix
