#include "SceneWriter.h"

#include "Json.h"
#include "ShipModel.h"
#include "ShipRooms.h"
#include "TownGeoJson.h"

#include <filesystem>

namespace trelmix::sample {

namespace {

using Members = std::vector<std::pair<std::string, std::string>>;

/// The deck that the ship's scene shows first.
constexpr int kShownDeck = 3;

std::string at(Pt ground) {
    return jsonCoordinate(latLonOf(ground));
}

std::pair<std::string, std::string> view() {
    return {
        "view",
        jsonObject({{"width", "1280"}, {"height", "800"}, {"scale", "1"}, {"background", R"("#f6f3ec")"}})};
}

std::pair<std::string, std::string> camera(Pt target, double zoom, double rotation, double tilt) {
    return {"camera", jsonObject({{"target", at(target)},
                                  {"zoom", jsonNumber(zoom)},
                                  {"rotation", jsonNumber(rotation)},
                                  {"viewingAngle", jsonNumber(tilt)}})};
}

std::pair<std::string, std::string> tiles() {
    return {"tiles", jsonArray({jsonObject({{"mbtiles", R"("harbour.mbtiles")"}})})};
}

// A plan lies unrotated, bow to the east, around the ship's centre, and is then turned counterclockwise.
std::string deckPlan(const Deck& deck, bool isVisible) {
    const Pt centre = shipPoint(0, 0);
    const Pt half{kDeckPlanLength / 2, -kDeckPlanBeam / 2};
    return jsonObject({{"id", jsonText("deck" + std::to_string(deck.level))},
                       {"image", jsonText("decks/deck" + std::to_string(deck.level) + ".png")},
                       {"southWest", at(centre - half)},
                       {"northEast", at(centre + half)},
                       {"rotation", jsonNumber(90 - kShipHeading)},
                       {"level", std::to_string(deck.level)},
                       {"visible", isVisible ? "true" : "false"}});
}

std::string icon(const char* name) {
    return jsonText(std::string("icons/") + name + "@2x.png");
}

std::string pin(const char* id, const char* name, Pt ground) {
    return jsonObject({{"id", jsonText(id)},
                       {"coordinate", at(ground)},
                       {"icon", icon(name)},
                       {"groundAnchor", "[0.5, 1]"}});
}

std::string placeNamed(const TownModel& model, const std::string& text) {
    for (const Place& place : model.places) {
        if (place.text == text) {
            return at(place.place);
        }
    }
    return at({0, 0});
}

std::string markers(const TownModel& model) {
    const auto named = [&](const char* id, const char* name, const char* place) {
        return jsonObject({{"id", jsonText(id)},
                           {"coordinate", placeNamed(model, place)},
                           {"icon", icon(name)},
                           {"groundAnchor", "[0.5, 1]"}});
    };
    return jsonArray({
        named("museum", "museum", "Maritime\nMuseum"),
        named("cafe", "cafe", "Cafe Lantern"),
        named("station", "pin", "Trelhaven Station"),
        pin("ferry", "ferry", quayPoint(486, 14)),
        jsonObject({{"id", jsonText("guest")},
                    {"coordinate", at(quayPoint(64, 44))},
                    {"icon", icon("position")},
                    {"groundAnchor", "[0.5, 0.5]"},
                    {"draggable", "true"}}),
        jsonObject({{"id", jsonText("sailing")},
                    {"coordinate", at(quayPoint(-60, 170))},
                    {"icon", icon("arrow")},
                    {"groundAnchor", "[0.5, 0.5]"},
                    {"flat", "true"},
                    {"rotation", "70"}}),
    });
}

std::string coordinates(const Path& path) {
    std::vector<std::string> items;
    for (const Pt p : path) {
        items.push_back(at(p));
    }
    return jsonArray(items);
}

std::string circles(const TownModel& model) {
    return jsonArray({jsonObject({{"id", R"("light")"},
                                  {"coordinate", at(model.lighthouse)},
                                  {"radius", "70"},
                                  {"color", R"("#e0593f40")"}}),
                      jsonObject({{"id", R"("east-light")"},
                                  {"coordinate", at(model.eastLight)},
                                  {"radius", "45"},
                                  {"color", R"("#2f9b6a50")"}})});
}

std::string polygons() {
    const Path regatta{quayPoint(-110, 130), quayPoint(40, 130), quayPoint(130, 175), quayPoint(60, 225),
                       quayPoint(-90, 215)};
    return jsonArray({jsonObject(
        {{"id", jsonText("regatta")}, {"corners", coordinates(regatta)}, {"color", jsonText("#3366ff38")}})});
}

std::string polylines() {
    Path ferry;
    for (double t = 0; t <= 1.0001; t += 0.05) {
        ferry.push_back(quayPoint(502 - 330 * smoothStep(0, 1, t) - 60 * t,
                                  104 + 130 * smoothStep(0.2, 0.9, t) + 190 * t * t));
    }
    Path walk = townLine(255, -255, 255, -75);
    for (const Pt corner : {quayPoint(270, -75), quayPoint(270, 24), quayPoint(131, 24), quayPoint(131, -40),
                            quayPoint(48, -40), quayPoint(48, 44), quayPoint(-60, 44)}) {
        walk.push_back(corner);
    }
    return jsonArray({jsonObject({{"id", R"("ferry-route")"},
                                  {"vertices", coordinates(ferry)},
                                  {"color", R"("#2f6fb0c0")"},
                                  {"width", "4"}}),
                      jsonObject({{"id", R"("walk")"},
                                  {"vertices", coordinates(walk)},
                                  {"color", R"("#e0593f")"},
                                  {"width", "6"}})});
}

/// {"lat", "lon", ... further members}
std::string onBoard(double forward, double starboard, int level, Members more = {}) {
    const LatLon place = shipCoordinate(forward, starboard);
    Members members = std::move(more);
    members.emplace_back("lat", jsonNumber(place.lat));
    members.emplace_back("lon", jsonNumber(place.lon));
    members.emplace_back("level", std::to_string(level));
    return jsonObject(members);
}

// From a cabin on deck 2 up the middle stairs to the restaurant, and on to the pool.
std::string walkOnBoard() {
    const double stairs = kStairs[1] + 3;
    const double aftStairs = kStairs[0] + 3;
    return jsonArray({onBoard(54, 6, 2), onBoard(54, 4.2, 2), onBoard(stairs, 4.2, 2), onBoard(stairs, 0, 2),
                      onBoard(stairs, 0, 3), onBoard(stairs, -12, 3), onBoard(aftStairs, -12, 3),
                      onBoard(aftStairs, 0, 3), onBoard(aftStairs, 0, 4), onBoard(aftStairs, 0, 5),
                      onBoard(-24, 0, 5)});
}

std::string sideView() {
    return jsonObject({
        {"image", jsonText("side/ship.png")},
        {"levels", jsonText("side/levels.json")},
        {"displayedLevel", std::to_string(kShownDeck)},
        {"userPosition", onBoard(54, 6, 2, {{"icon", icon("position")}})},
        {"markers",
         jsonArray(
             {onBoard(-69, 0, 3, {{"identifier", jsonText("restaurant")}, {"icon", icon("restaurant")}}),
              onBoard(21, 8, 4, {{"identifier", jsonText("cabin")}, {"icon", icon("cabin")}}),
              onBoard(-24, 0, 5, {{"identifier", jsonText("pool")}, {"icon", icon("pool")}})})},
        {"path", jsonObject({{"color", jsonText("#e0593f")}, {"width", "4"}, {"points", walkOnBoard()}})},
    });
}

std::string shipScene() {
    std::vector<std::string> plans;
    for (const Deck& deck : kDecks) {
        plans.push_back(deckPlan(deck, deck.level == kShownDeck));
    }
    // With the bearing across the ship at the top, the ship lies level in the picture.
    return jsonObject({view(),
                       camera(shipPoint(-10, 0), 18.6, kShipHeading - 90, 0),
                       tiles(),
                       {"levelPlans", jsonArray(plans)},
                       {"sideView", sideView()}});
}

std::string overlayScene(const TownModel& model) {
    return jsonObject({view(),
                       camera(quayPoint(80, 30), 16.55, 0, 0),
                       tiles(),
                       {"levelPlans", jsonArray({deckPlan(kDecks[4], true)})},
                       {"markers", markers(model)},
                       {"circles", circles(model)},
                       {"polygons", polygons()},
                       {"polylines", polylines()},
                       {"geojson", jsonArray({jsonObject({{"file", jsonText("town.geojson")}})})}});
}

} // namespace

std::string shipLevels() {
    std::vector<std::string> levels;
    for (const Deck& deck : kDecks) {
        const std::string bounds = jsonObject(
            {{"relativeheight", jsonNumber(deck.floor)}, {"ceilingheight", jsonNumber(deck.ceiling)}});
        levels.push_back(
            jsonObject({{"levelNumber", std::to_string(deck.level)}, {"levelbounds", jsonArray({bounds})}}));
    }
    // The box has the ship's middle line as its diagonal, so that the elevation's axis runs from stern to
    // bow.
    const LatLon stern = shipCoordinate(-kShipLength / 2, 0);
    const LatLon bow = shipCoordinate(kShipLength / 2, 0);
    return jsonObject({{"bearing", jsonNumber(kShipHeading)},
                       {"bowPosition", jsonText("right")},
                       {"southLatitude", jsonNumber(bow.lat)},
                       {"northLatitude", jsonNumber(stern.lat)},
                       {"westLongitude", jsonNumber(stern.lon)},
                       {"eastLongitude", jsonNumber(bow.lon)},
                       {"bottomOffset", jsonNumber(kSideBottomOffset)},
                       {"topOffset", jsonNumber(kSideTopOffset)},
                       {"leftOffset", jsonNumber(kSideLeftOffset)},
                       {"rightOffset", jsonNumber(kSideRightOffset)},
                       {"levels", jsonArray(levels)}});
}

std::string writeScenes(const std::string& folder, const TownModel& model) {
    std::error_code error;
    std::filesystem::create_directories(folder + "/side", error);
    const std::pair<const char*, std::string> files[] = {
        {"harbour.json", jsonObject({view(), camera(quayPoint(80, 30), 16.55, 0, 0), tiles()})},
        {"harbour-tilted.json", jsonObject({view(), camera(quayPoint(120, 20), 16.9, 332, 45), tiles()})},
        {"overlays.json", overlayScene(model)},
        {"ship.json", shipScene()},
        {"town.geojson", townGeoJson(model)},
        {"side/levels.json", shipLevels()},
    };
    std::string problem;
    for (const auto& [name, text] : files) {
        if (problem.empty()) {
            problem = writeText(folder + "/" + name, text);
        }
    }
    return problem;
}

} // namespace trelmix::sample
