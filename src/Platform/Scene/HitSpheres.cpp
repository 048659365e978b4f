#include "Platform/Scene/HitSpheres.h"

#include <algorithm>
#include <cmath>

namespace trelmix {

namespace {

/// Scene units, far above what the positions round to: a sphere may be too large, never too small.
constexpr double kSlack = 1e-5;

} // namespace

void HitSpheres::enclose(std::size_t place, const std::array<Vector3d, 4>& points) {
    const Vector3d center = (points[0] + points[1] + points[2] + points[3]) * 0.25;
    double radius = 0;
    for (const Vector3d& point : points) {
        radius = std::max(radius, std::sqrt(dot(point - center, point - center)));
    }
    const double radiusSquared = (radius + kSlack) * (radius + kSlack);
    // One term that is not finite makes the whole so; what it does to the radius depends on its sign and
    // kind.
    if (std::isfinite(radiusSquared + dot(center, center))) {
        _spheres[place] = {center, radiusSquared};
    }
}

std::vector<std::size_t> HitSpheres::placesAlong(const SceneRay& ray) const {
    std::vector<std::size_t> places;
    const Vector3d unit = ray.direction * (1 / std::sqrt(dot(ray.direction, ray.direction)));
    for (std::size_t i = 0; i < _spheres.size(); ++i) {
        const Vector3d away = _spheres[i].center - ray.origin;
        const Vector3d aside = away - unit * dot(away, unit);
        // A ray without a direction meets all, and is turned down node by node.
        if (!(dot(aside, aside) > _spheres[i].radiusSquared)) {
            places.push_back(i);
        }
    }
    return places;
}

} // namespace trelmix
