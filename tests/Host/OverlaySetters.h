// Every overlay, and every setter of it that changes the picture, with a value that does.
#pragma once

#include "support/Pixels.h"

#include <Trelmix/TrelmixMapEngineFactory.h>

#include <functional>
#include <string>
#include <vector>

namespace trelmix {

struct OverlaySetter {
    using Set = std::function<void(TrelmixMapOverlay&)>;

    std::string name;
    Set set;
    /// What gives the same picture to an overlay that is not on a map yet; empty for the setter itself.
    Set before = {};
};

struct OverlayKind {
    std::string name;
    std::function<std::shared_ptr<TrelmixMapOverlay>()> make;
    std::vector<OverlaySetter> setters;
};

inline constexpr CLLocationCoordinate2D kHere{53.5, 10};
// Of one latitude: the scale of an overlay is that of its first one.
inline constexpr CLLocationCoordinate2D kEast{53.5, 10.0004}, kNorthEast{53.5002, 10.0003};
inline constexpr CLLocationCoordinate2D kNearNorthEast{53.5001, 10.0001};
inline const std::vector<CLLocation> kPlaces{{53.5001, 9.9996}, {53.5, 10.0001}, {53.4998, 9.9996}};
inline const std::vector<CLLocation> kOthers{{53.5001, 10.0004}, {53.5, 10.0001}, {53.4997, 10.0003}};
inline constexpr UIColor kPaleGreen{0, 1, 0, 0.5}, kPaleOrange{1, 0.5, 0, 0.8};
inline constexpr CGPoint kCorner{1, 0.2};

inline std::shared_ptr<const UIImage> twoColours(int width, int height) {
    return painted(width, height, [width](int x, int) {
        return std::array{0, x < width / 3 ? 200 : 0, 255};
    });
}

template <class Kind, class F>
OverlaySetter::Set callOn(F set) {
    return [set](TrelmixMapOverlay& overlay) { set(dynamic_cast<Kind&>(overlay)); };
}

inline OverlayKind markers() {
    const auto on = [](auto set) { return callOn<TrelmixMapMarker>(set); };
    const auto place = on([](auto& m) { m.setCoordinate(kEast); });
    const auto turn = on([](auto& m) { m.setIsFlat(true), m.setMarkerRotation(50); });
    return {"marker",
            [] { return TrelmixMapEngineFactory::createMapMarkerWith(twoColours(20, 30), kHere); },
            {{"coordinate", place},
             {"coordinate at once", on([](auto& m) { m.setCoordinate(kEast, false, 0); }), place},
             {"coordinate slowly", on([](auto& m) { m.setCoordinate(kEast, true, 0.3); }), place},
             {"markerIcon", on([](auto& m) { m.setMarkerIcon(twoColours(30, 10)); })},
             {"no markerIcon", on([](auto& m) { m.setMarkerIcon(nullptr); })},
             {"tint", on([](auto& m) { m.setTint(kPaleGreen); })},
             {"another tint", on([](auto& m) { m.setTint(kPaleOrange); })},
             {"groundAnchor", on([](auto& m) { m.setGroundAnchor(kCorner); })},
             {"markerRotation", turn},
             {"rotation", on([](auto& m) { m.setIsFlat(true), m.setRotation(50, false, 0); }), turn}}};
}

inline OverlayKind circles() {
    const auto on = [](auto set) { return callOn<TrelmixMapCircle>(set); };
    return {"circle",
            [] {
                auto circle = TrelmixMapEngineFactory::createMapCircleWithCoordinate(kHere, 15);
                circle->setColor(UIColor::blueColor());
                return circle;
            },
            {{"coordinate", on([](auto& c) { c.setCoordinate(kEast); })},
             {"radius", on([](auto& c) { c.setRadius(9); })},
             {"color", on([](auto& c) { c.setColor(kPaleGreen); })},
             {"no color", on([](auto& c) { c.setColor(std::nullopt); })},
             {"both", on([](auto& c) { c.updateCircleWithCoordinate(kEast, 9, false, 0); }),
              on([](auto& c) { c.setCoordinate(kEast), c.setRadius(9); })}}};
}

inline OverlayKind polygons() {
    const auto on = [](auto set) { return callOn<TrelmixMapPolygon>(set); };
    return {"polygon",
            [] {
                auto polygon = TrelmixMapEngineFactory::createMapPolygonWithCorners(kPlaces);
                polygon->setColor(UIColor::blueColor());
                return polygon;
            },
            {{"color", on([](auto& p) { p.setColor(kPaleGreen); })},
             {"no color", on([](auto& p) { p.setColor(std::nullopt); })},
             {"polygonCorners", on([](auto& p) { p.setPolygonCorners(kOthers); })},
             {"no polygonCorners", on([](auto& p) { p.setPolygonCorners({}); })}}};
}

inline OverlayKind polylines() {
    const auto on = [](auto set) { return callOn<TrelmixMapPolyline>(set); };
    return {"line",
            [] { return TrelmixMapEngineFactory::createMapPolylineWithVertices(kPlaces); },
            {{"color", on([](auto& l) { l.setColor(kPaleGreen); })},
             {"width", on([](auto& l) { l.setWidth(12); })},
             {"no width", on([](auto& l) { l.setWidth(0); })},
             {"polylineVertices", on([](auto& l) { l.setPolylineVertices(kOthers); })}}};
}

inline OverlayKind levelPlans() {
    const auto on = [](auto set) { return callOn<TrelmixLevelPlanNode>(set); };
    return {"plan",
            [] {
                return TrelmixMapEngineFactory::createLevelPlanNodeWith(twoColours(40, 40),
                                                                        kPlaces[2].coordinate(), kNorthEast);
            },
            {{"southWest", on([](auto& n) { n.setSouthWest(kHere); })},
             {"northEast", on([](auto& n) { n.setNorthEast(kNearNorthEast); })},
             {"levelPlanImage", on([](auto& n) { n.setLevelPlanImage(plainImage(8, 8)); })},
             {"no levelPlanImage", on([](auto& n) { n.setLevelPlanImage(nullptr); })},
             {"levelPlanRotation", on([](auto& n) { n.setLevelPlanRotation(35); })}}};
}

inline OverlayKind tileLayers() {
    return {"layer",
            [] {
                auto layer = TrelmixMapEngineFactory::createMapTilesNode();
                layer->setSynchronousLayer(true);
                return layer;
            },
            {}};
}

/// In the order in which markers, circles, polygons, lines, plans and layers are named.
inline std::vector<OverlayKind> overlayKinds() {
    std::vector<OverlayKind> kinds{markers(), circles(), polygons(), polylines(), levelPlans(), tileLayers()};
    for (OverlayKind& kind : kinds) {
        // The index of a layer counts only beside other layers: tiles are ordered by zoom.
        if (kind.name != "layer") {
            // Plans lie below an area, the others above it.
            const std::int64_t index = kind.name == "plan" ? 30 : 20;
            kind.setters.push_back({"zIndex", [index](auto& o) { o.setZIndex(index); }});
        }
        kind.setters.push_back({"visible", [](auto& o) { o.setVisible(false); }});
        kind.setters.push_back({"opacity", [](auto& o) { o.setOpacity(0.4); }});
    }
    return kinds;
}

} // namespace trelmix
