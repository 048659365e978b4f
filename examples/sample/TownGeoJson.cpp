#include "TownGeoJson.h"

#include "Json.h"
#include "TownStreets.h"

#include <string_view>

namespace trelmix::sample {

namespace {

std::string position(Pt ground) {
    const LatLon place = latLonOf(ground);
    return "[" + jsonNumber(place.lon) + ", " + jsonNumber(place.lat) + "]";
}

std::string positions(const Path& path) {
    std::vector<std::string> items;
    for (const Pt p : path) {
        items.push_back(position(p));
    }
    return jsonArray(items);
}

/// A closed ring, counterclockwise on the map when `isOuter`, clockwise otherwise.
std::string ring(Path outline, bool isOuter) {
    double area = 0;
    for (std::size_t i = 0; i < outline.size(); ++i) {
        const Pt a = outline[i];
        const Pt b = outline[(i + 1) % outline.size()];
        area += a.x * b.y - b.x * a.y;
    }
    // y points south here, so that a positive area runs clockwise on the map.
    if ((area > 0) == isOuter) {
        std::reverse(outline.begin(), outline.end());
    }
    outline.push_back(outline.front());
    return positions(outline);
}

using Members = std::vector<std::pair<std::string, std::string>>;

std::string feature(const std::string& type, const std::string& coordinates, const Members& properties) {
    return jsonObject({{"type", jsonText("Feature")},
                       {"properties", jsonObject(properties)},
                       {"geometry", jsonObject({{"type", jsonText(type)}, {"coordinates", coordinates}})}});
}

const Area* largest(const TownModel& model, AreaKind kind, const Box& within) {
    const Area* best = nullptr;
    const auto size = [](const Area& area) {
        return (area.box.right - area.box.left) * (area.box.bottom - area.box.top);
    };
    for (const Area& area : model.areas) {
        if (area.kind == kind && area.box.touches(within) && (best == nullptr || size(area) > size(*best))) {
            best = &area;
        }
    }
    return best;
}

void addPark(std::vector<std::string>& features, const TownModel& model) {
    const SpecialBlock& block = specialBlocks().front();
    const Box middle = Box::of(townRectangle(block.u0 + 70, block.v0 + 50, block.u1 - 70, block.v1 - 50));
    const Area* park = largest(model, AreaKind::Park, middle);
    const Area* pond = largest(model, AreaKind::Pond, middle);
    if (park == nullptr || pond == nullptr) {
        return;
    }
    // The pond is a hole in the park.
    features.push_back(feature("Polygon", jsonArray({ring(park->outline, true), ring(pond->outline, false)}),
                               {{"name", jsonText("Anchor Park")},
                                {"fill", jsonText("#3f9b5a")},
                                {"fill-opacity", "0.35"},
                                {"stroke", jsonText("#2f7d46")},
                                {"stroke-width", "2"}}));
}

void addStreets(std::vector<std::string>& features, const TownModel& model) {
    constexpr std::string_view kNames[] = {"Station Avenue", "Church Street", "Customs Quay"};
    for (const Street& street : model.streets) {
        for (const std::string_view name : kNames) {
            if (street.name == name) {
                features.push_back(feature("LineString", positions(street.line),
                                           {{"name", jsonText(street.name)},
                                            {"stroke", jsonText("#8a5cc0")},
                                            {"stroke-opacity", "0.8"},
                                            {"stroke-width", "4"}}));
            }
        }
    }
}

void addPiers(std::vector<std::string>& features, const TownModel& model) {
    std::vector<std::string> lines;
    for (const Line& pier : model.piers) {
        if (pier.width > 2) {
            lines.push_back(positions(pier.line));
        }
    }
    features.push_back(feature(
        "MultiLineString", jsonArray(lines),
        {{"name", jsonText("Marina piers")}, {"stroke", jsonText("#c07a2c")}, {"stroke-width", "3"}}));
}

void addPlaces(std::vector<std::string>& features, const TownModel& model) {
    for (const Place& place : model.places) {
        if (place.kind != PlaceKind::Landmark && place.kind != PlaceKind::Food) {
            continue;
        }
        std::string name = place.text;
        std::replace(name.begin(), name.end(), '\n', ' ');
        const bool isFood = place.kind == PlaceKind::Food;
        features.push_back(feature("Point", position(place.place),
                                   {{"name", jsonText(name)},
                                    {"kind", jsonText(isFood ? "food" : "landmark")},
                                    {"marker-color", jsonText(isFood ? "#d07a2c" : "#7a5ba6")}}));
    }
}

} // namespace

std::string townGeoJson(const TownModel& model) {
    std::vector<std::string> features;
    addPark(features, model);
    addStreets(features, model);
    addPiers(features, model);
    addPlaces(features, model);
    return jsonObject({{"type", jsonText("FeatureCollection")}, {"features", jsonArray(features)}});
}

} // namespace trelmix::sample
