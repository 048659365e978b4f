#include "common/scene/SceneFraming.h"

#include <Trelmix/CameraFitting.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numbers>

namespace trelmix::apps {

namespace {

constexpr double kMetresPerDegree = 111'195;

void addBox(CoordinateList& places, CLLocationCoordinate2D southWest, CLLocationCoordinate2D northEast) {
    places.push_back(southWest);
    places.push_back(northEast);
    places.push_back(
        {(southWest.latitude + northEast.latitude) / 2, (southWest.longitude + northEast.longitude) / 2});
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

void addFeature(CoordinateList& places, const GeoJsonFeature& feature, const SceneGeoJson& entry) {
    const double radius =
        layered(styleByRules(feature.style, feature.properties.get(), entry.rules), entry.style)
            .radius.value_or(0);
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
            addFeature(places, feature, scene.geojson[i]);
        }
    }
    return places;
}

/// Of a scene that is too large to be seen at once the middle may be empty: then the place nearest to it.
CLLocationCoordinate2D targetWithin(const CoordinateList& places, const TrelmixMapEngineCamera& camera,
                                    CGSize viewSize) {
    const CLLocationCoordinate2D middle = camera.target();
    const double shrink = std::cos(middle.latitude * std::numbers::pi / 180);
    const auto distance = [&](CLLocationCoordinate2D place) {
        return std::hypot(place.latitude - middle.latitude, (place.longitude - middle.longitude) * shrink);
    };
    const auto nearest = *std::min_element(places.begin(), places.end(),
                                           [&](auto a, auto b) { return distance(a) < distance(b); });
    const CLLocationCoordinate2D opposite{2 * middle.latitude - nearest.latitude,
                                          2 * middle.longitude - nearest.longitude};
    const auto around = cameraShowing(std::array{nearest, opposite}, viewSize);
    return around && around->zoom() > camera.zoom() ? middle : nearest;
}

/// Where a scene that holds nothing but tiles begins to show some; 0 for other scenes.
double lowestZoomOfTiles(const SceneFile& scene, const SceneContent& content) {
    const bool hasOthers = !scene.levelPlans.empty() || !scene.markers.empty() || !scene.circles.empty() ||
                           !scene.polygons.empty() || !scene.polylines.empty() || !scene.geojson.empty();
    double lowest = std::numeric_limits<double>::infinity();
    for (const auto& source : content.tiles) {
        // The camera's zoom is one more than that of the tiles that it asks for.
        lowest = source ? std::min(lowest, static_cast<double>(source->store().lowestZoom()) + 1) : 0;
    }
    return hasOthers || !std::isfinite(lowest) ? 0 : lowest;
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
    const double zoom = std::max(static_cast<double>(camera->zoom()), lowestZoomOfTiles(scene, content));
    return SceneCamera{targetWithin(places, *camera, viewSize), zoom, camera->rotation(),
                       camera->viewingAngle()};
}

} // namespace trelmix::apps
