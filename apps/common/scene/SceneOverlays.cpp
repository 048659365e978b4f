#include "common/picture/Drawing.h"
#include "common/scene/MapScene.h"

#include <Trelmix/TrelmixLevelPlanNode.h>
#include <Trelmix/TrelmixMapCircle.h>
#include <Trelmix/TrelmixMapEngineFactory.h>
#include <Trelmix/TrelmixMapMarker.h>
#include <Trelmix/TrelmixMapPolygon.h>
#include <Trelmix/TrelmixMapPolyline.h>

#include <array>
#include <map>

namespace trelmix::apps {

namespace {

constexpr UIColor kAreaColor{0.2, 0.4, 1.0, 0.5};
// What the simple style prescribes for features that say nothing.
constexpr UIColor kStyleStroke{1.0 / 3, 1.0 / 3, 1.0 / 3, 1};
constexpr UIColor kStyleFill{1.0 / 3, 1.0 / 3, 1.0 / 3, 0.6};
constexpr UIColor kStyleMarker{0x7e / 255.0, 0x7e / 255.0, 0x7e / 255.0, 1};
constexpr double kStyleWidth = 2;

std::vector<CLLocation> locations(const CoordinateList& coordinates) {
    std::vector<CLLocation> list;
    list.reserve(coordinates.size());
    for (const auto& coordinate : coordinates) {
        list.emplace_back(coordinate);
    }
    return list;
}

/// The feature's own colour, else that of the scene's entry, else the style's; then the feature's own
/// opacity.
UIColor styledColor(std::optional<UIColor> feature, std::optional<UIColor> entry, UIColor otherwise,
                    std::optional<double> opacity) {
    UIColor color = feature ? *feature : entry.value_or(otherwise);
    if (feature && !opacity) {
        color.alpha = entry ? entry->alpha : otherwise.alpha;
    }
    return opacity ? color.colorWithAlphaComponent(*opacity) : color;
}

class OverlayBuilder {
public:
    explicit OverlayBuilder(std::shared_ptr<TrelmixMapEngine> map) : engine(std::move(map)) {}

    std::vector<std::shared_ptr<TrelmixMapOverlay>> overlays;

    void add(const SceneLevelPlan& plan, const std::shared_ptr<const UIImage>& image) {
        auto node =
            TrelmixMapEngineFactory::createLevelPlanNodeWith(image, plan.box.southWest, plan.box.northEast);
        node->setLevelPlanRotation(plan.rotation);
        place(plan.overlay, std::move(node));
    }

    void add(const SceneMarker& marker, const std::shared_ptr<const UIImage>& icon) {
        auto node =
            TrelmixMapEngineFactory::createMapMarkerWith(icon ? icon : pin(kStyleMarker), marker.coordinate);
        // A pin stands on its tip.
        node->setGroundAnchor({marker.anchorX.value_or(0.5), marker.anchorY.value_or(icon ? 0.5 : 1)});
        node->setIsFlat(marker.flat);
        node->setMarkerRotation(marker.rotation);
        node->setIsDraggable(marker.draggable);
        place(marker.overlay, std::move(node));
    }

    void add(const SceneCircle& circle) {
        addCircle(circle.overlay, circle.coordinate, circle.radius, circle.color.value_or(kAreaColor));
    }

    void add(const ScenePolygon& polygon) {
        addPolygon(polygon.overlay, polygon.corners, polygon.color.value_or(kAreaColor));
    }

    void add(const ScenePolyline& line) { addLine(line.overlay, line.vertices, line.color, line.width); }

    void add(const SceneGeoJson& entry, const GeoJsonFeature& feature,
             const std::shared_ptr<const UIImage>& icon) {
        const std::size_t first = overlays.size();
        const GeoJsonStyle& style = feature.style;
        const UIColor stroke = styledColor(style.stroke, entry.color, kStyleStroke, style.strokeOpacity);
        const double width = style.strokeWidth.value_or(entry.width.value_or(kStyleWidth));
        for (const auto& area : feature.areas) {
            addPolygon(entry.overlay, outlineWithHoles(area.rings),
                       styledColor(style.fill, entry.color, kStyleFill, style.fillOpacity));
            // Areas get an outline only where the file asks for one.
            if (style.stroke || style.strokeWidth) {
                for (const auto& ring : area.rings) {
                    CoordinateList closed = ring;
                    closed.push_back(ring.front());
                    addLine(entry.overlay, closed, stroke, width);
                }
            }
        }
        for (const auto& line : feature.lines) {
            addLine(entry.overlay, line, stroke, width);
        }
        for (const auto& point : feature.points) {
            addPoint(entry, style, point, icon);
        }
        for (std::size_t i = first; i < overlays.size(); ++i) {
            overlays[i]->setUserInfo(SceneTag{entry.overlay.id, feature.properties});
        }
    }

private:
    void place(const SceneOverlay& keys, std::shared_ptr<TrelmixMapOverlay> overlay) {
        applyOverlayKeys(keys, *overlay);
        overlay->setMap(engine);
        overlays.push_back(std::move(overlay));
    }

    void addCircle(const SceneOverlay& keys, CLLocationCoordinate2D centre, double radius, UIColor color) {
        auto node = TrelmixMapEngineFactory::createMapCircleWithCoordinate(centre, radius);
        node->setColor(color);
        place(keys, std::move(node));
    }

    void addPolygon(const SceneOverlay& keys, const CoordinateList& corners, UIColor color) {
        auto node = TrelmixMapEngineFactory::createMapPolygonWithCorners(locations(corners));
        node->setColor(color);
        place(keys, std::move(node));
    }

    void addLine(const SceneOverlay& keys, const CoordinateList& vertices, std::optional<UIColor> color,
                 std::optional<double> width) {
        auto node = TrelmixMapEngineFactory::createMapPolylineWithVertices(locations(vertices));
        if (color) {
            node->setColor(*color);
        }
        if (width) {
            node->setWidth(static_cast<float>(*width));
        }
        place(keys, std::move(node));
    }

    void addPoint(const SceneGeoJson& entry, const GeoJsonStyle& style, CLLocationCoordinate2D point,
                  const std::shared_ptr<const UIImage>& icon) {
        const UIColor color = styledColor(style.markerColor, entry.color, kStyleMarker, std::nullopt);
        if (entry.radius) {
            addCircle(entry.overlay, point, *entry.radius, color);
            return;
        }
        auto node = TrelmixMapEngineFactory::createMapMarkerWith(icon ? icon : pin(color), point);
        node->setGroundAnchor({0.5, icon ? 0.5 : 1});
        place(entry.overlay, std::move(node));
    }

    // Pins of one colour share their image, and with it their texture.
    std::shared_ptr<const UIImage> pin(UIColor color) {
        auto& known = pins[{color.red, color.green, color.blue, color.alpha}];
        if (!known) {
            known = pinImage(color);
        }
        return known;
    }

    std::shared_ptr<TrelmixMapEngine> engine;
    std::map<std::array<double, 4>, std::shared_ptr<const UIImage>> pins;
};

} // namespace

std::vector<std::shared_ptr<TrelmixMapOverlay>>
addSceneOverlays(const std::shared_ptr<TrelmixMapEngine>& engine, const SceneFile& scene,
                 const SceneContent& content) {
    OverlayBuilder builder(engine);
    for (std::size_t i = 0; i < scene.levelPlans.size(); ++i) {
        builder.add(scene.levelPlans[i], content.levelPlans[i]);
    }
    for (std::size_t i = 0; i < scene.markers.size(); ++i) {
        builder.add(scene.markers[i], content.markerIcons[i]);
    }
    for (const auto& circle : scene.circles) {
        builder.add(circle);
    }
    for (const auto& polygon : scene.polygons) {
        builder.add(polygon);
    }
    for (const auto& line : scene.polylines) {
        builder.add(line);
    }
    for (std::size_t i = 0; i < scene.geojson.size(); ++i) {
        for (const auto& feature : content.geojson[i].file.features) {
            builder.add(scene.geojson[i], feature, content.geojson[i].icon);
        }
    }
    return std::move(builder.overlays);
}

} // namespace trelmix::apps
