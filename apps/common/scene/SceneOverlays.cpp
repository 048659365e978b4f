#include "common/scene/SceneOverlays.h"

#include "common/picture/Drawing.h"
#include "common/scene/GeoJsonHoles.h"

#include <Trelmix/TrelmixLevelPlanNode.h>
#include <Trelmix/TrelmixMapCircle.h>
#include <Trelmix/TrelmixMapEngineFactory.h>
#include <Trelmix/TrelmixMapMarker.h>
#include <Trelmix/TrelmixMapPolygon.h>
#include <Trelmix/TrelmixMapPolyline.h>

#include <vector>

namespace trelmix::apps {

namespace {

constexpr UIColor kAreaColor{0.2, 0.4, 1.0, 0.5};

std::vector<CLLocation> locations(const CoordinateList& coordinates) {
    std::vector<CLLocation> list;
    list.reserve(coordinates.size());
    for (const auto& coordinate : coordinates) {
        list.emplace_back(coordinate);
    }
    return list;
}

class OverlayBuilder {
public:
    explicit OverlayBuilder(std::shared_ptr<TrelmixMapEngine> map) : _engine(std::move(map)) {}

    std::vector<std::shared_ptr<TrelmixMapOverlay>> overlays;

    void add(const SceneLevelPlan& plan, const std::shared_ptr<const UIImage>& image) {
        auto node =
            TrelmixMapEngineFactory::createLevelPlanNodeWith(image, plan.box.southWest, plan.box.northEast);
        node->setLevelPlanRotation(plan.rotation);
        place(plan.overlay, std::move(node));
    }

    void add(const SceneMarker& marker, const std::shared_ptr<const UIImage>& icon) {
        auto node = markerAt(marker.coordinate, icon, simpleStyle().pinColor());
        if (marker.anchor) {
            node->setGroundAnchor(*marker.anchor);
        }
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

    void add(const SceneGeoJson& entry, const GeoJsonFeature& feature, const SceneGeoJsonContent& content) {
        const std::size_t first = overlays.size();
        const GeoJsonStyle own = styleByRules(feature.style, feature.properties.get(), entry.rules);
        const GeoJsonStyle style = layered(layered(own, entry.style), simpleStyle());
        SceneOverlay keys = entry.overlay;
        keys.visible = style.visible ? style.visible : keys.visible;
        keys.zIndex = style.zIndex ? style.zIndex : keys.zIndex;
        for (const auto& area : feature.areas) {
            addPolygon(keys, outlineWithHoles(area.rings), style.fillColor());
            // Areas get an outline only where the file or a rule asks for one.
            if (own.stroke || own.strokeWidth) {
                for (const auto& ring : area.rings) {
                    CoordinateList closed = ring;
                    closed.push_back(ring.front());
                    addLine(keys, closed, style.strokeColor(), style.strokeWidth);
                }
            }
        }
        for (const auto& line : feature.lines) {
            addLine(keys, line, style.strokeColor(), style.strokeWidth);
        }
        const auto icon = style.icon ? content.icons.at(*style.icon) : nullptr;
        for (const auto& point : feature.points) {
            addPoint(keys, style, point, icon);
        }
        for (std::size_t i = first; i < overlays.size(); ++i) {
            overlays[i]->setUserInfo(SceneTag{entry.overlay.id, feature.properties});
        }
    }

private:
    void place(const SceneOverlay& keys, std::shared_ptr<TrelmixMapOverlay> overlay) {
        applyOverlayKeys(keys, *overlay);
        overlay->setMap(_engine);
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

    void addPoint(const SceneOverlay& keys, const GeoJsonStyle& style, CLLocationCoordinate2D point,
                  const std::shared_ptr<const UIImage>& icon) {
        if (style.radius) {
            addCircle(keys, point, *style.radius, style.pinColor());
        } else {
            place(keys, markerAt(point, icon, style.pinColor()));
        }
    }

    /// Without an icon, a pin in that colour that stands on its tip.
    std::shared_ptr<TrelmixMapMarker> markerAt(CLLocationCoordinate2D place,
                                               const std::shared_ptr<const UIImage>& icon, UIColor pinColor) {
        if (!icon && !_pin) {
            _pin = pinImage();
        }
        auto node = TrelmixMapEngineFactory::createMapMarkerWith(icon ? icon : _pin, place);
        if (!icon) {
            node->setTint(pinColor);
            node->setGroundAnchor({0.5, 1});
        }
        return node;
    }

    std::shared_ptr<TrelmixMapEngine> _engine;
    /// One for all: a hundred thousand colours are tints of it.
    std::shared_ptr<const UIImage> _pin;
};

} // namespace

void applyOverlayKeys(const SceneOverlay& keys, TrelmixMapOverlay& overlay) {
    if (keys.zIndex) {
        overlay.setZIndex(*keys.zIndex);
    }
    if (keys.visible) {
        overlay.setVisible(*keys.visible);
    }
    if (keys.opacity) {
        overlay.setOpacity(*keys.opacity);
    }
    if (keys.tappable) {
        overlay.setTappable(*keys.tappable);
    }
    overlay.setUserInfo(SceneTag{keys.id, nullptr});
}

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
            builder.add(scene.geojson[i], feature, content.geojson[i]);
        }
    }
    return std::move(builder.overlays);
}

} // namespace trelmix::apps
