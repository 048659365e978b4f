#pragma once

#include "Platform/Scene/SCNVector.h"

#include <array>
#include <cstddef>
#include <limits>
#include <vector>

namespace trelmix {

/// A straight line from the camera through a point of the view, in the scene.
struct SceneRay {
    Vector3d origin;
    /// Not of unit length: a step of 1 goes as deep into the picture as the focal length in points.
    Vector3d direction;
};

/// A sphere around what each node of a scene shows, side by side in memory, so that a ray passes most nodes
/// by without touching them. A node's place here is its place in the scene's list. Guarded by the scene lock.
class HitSpheres {
public:
    /// One more place, not known yet.
    void add() { _spheres.emplace_back(); }
    /// The node of that place has changed.
    void forget(std::size_t place) { _spheres[place] = {}; }
    /// The place has no node any more: no ray meets it.
    void clear(std::size_t place) { _spheres[place].radiusSquared = -1; }
    /// All places anew, none of them known.
    void reset(std::size_t count) { _spheres.assign(count, {}); }

    bool knows(std::size_t place) const { return _spheres[place].radiusSquared < kUnknown; }
    /// Points that are not finite leave the place unknown.
    void enclose(std::size_t place, const std::array<Vector3d, 4>& points);
    /// The places whose sphere the line meets, or is not known, in order.
    std::vector<std::size_t> placesAlong(const SceneRay& ray) const;

private:
    static constexpr double kUnknown = std::numeric_limits<double>::infinity();
    struct Sphere {
        Vector3d center;
        double radiusSquared = kUnknown;
    };
    std::vector<Sphere> _spheres;
};

} // namespace trelmix
