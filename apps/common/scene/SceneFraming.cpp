#include "common/scene/SceneContent.h"

#include <Trelmix/CameraFitting.h>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace trelmix::apps {

namespace {

constexpr double kMetresPerDegree = 111'195;

void addBox(CoordinateList& places, CLLocationCoordinate2D southWest, CLLocationCoordinate2D northEast) {
    places.push_back(southWest);
    places.push_back(northEast);
}

void addDisc(CoordinateList& places, CLLocationCoordinate2D centre, double radius) {
    const double up = radius / kMetresPerDegree;
    // Near the poles a disc spans every longitude; ten degrees are more than any view shows.
    const double across =
        std::min(10.0, up / std::max(0.01, std::cos(centre.latitude * std::numbers::pi / 180)));
    const auto corner = [&](double sign) {
        return CLLocationCoordinate2D{std::clamp(centre.latitude + sign * up, -90.0, 90.0),
                                      std::clamp(centre.longitude + sign * across, -180.0, 180.0)};
    };
    addBox(places, corner(-1), corner(1));
}

void addAll(CoordinateList& places, const CoordinateList& more) {
    places.insert(places.end(), more.begin(), more.end());
}

void addFeature(CoordinateList& places, const GeoJsonFeature& feature, double radius) {
    for (const auto& point : feature.points) {
        addDisc(places, point, radius);
    }
    for (const auto& line : feature.lines) {
        addAll(places, line);
    }
    for (const auto& area : feature.areas) {
        addAll(places, area.rings.front());
    }
}

CoordinateList placesOfScene(const SceneFile& scene, const SceneContent& content) {
    CoordinateList places;
    for (const auto& source : content.tiles) {
        if (const auto bounds = source ? source->store().bounds() : std::nullopt) {
            addBox(places, bounds->southWest, bounds->northEast);
        }
    }
    for (const auto& plan : scene.levelPlans) {
        addBox(places, plan.box.southWest, plan.box.northEast);
    }
    for (const auto& marker : scene.markers) {
        places.push_back(marker.coordinate);
    }
    for (const auto& circle : scene.circles) {
        addDisc(places, circle.coordinate, circle.radius);
    }
    for (const auto& polygon : scene.polygons) {
        addAll(places, polygon.corners);
    }
    for (const auto& line : scene.polylines) {
        addAll(places, line.vertices);
    }
    for (std::size_t i = 0; i < scene.geojson.size(); ++i) {
        for (const auto& feature : content.geojson[i].file.features) {
            addFeature(places, feature, scene.geojson[i].radius.value_or(0));
        }
    }
    return places;
}

} // namespace

Result<SceneCamera> cameraOfScene(const SceneFile& scene, const SceneContent& content, CGSize viewSize) {
    if (scene.camera) {
        return *scene.camera;
    }
    const auto places = placesOfScene(scene, content);
    const auto camera = cameraShowing(places, viewSize);
    if (!camera) {
        return Result<SceneCamera>::failure("needs the key \"camera\", as it holds nothing to show");
    }
    return SceneCamera{camera->target(), static_cast<double>(camera->zoom()), camera->rotation(),
                       camera->viewingAngle()};
}

} // namespace trelmix::apps
