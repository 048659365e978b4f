#include "TownHarbourBuildings.h"

namespace trelmix::sample {

namespace {

void addQuayBuilding(TownModel& model, BuildingKind kind, double u0, double v0, double u1, double v1,
                     double height, int tint = 0) {
    model.addBuilding(kind, quayRectangle(u0, v0, u1, v1), height, tint);
}

/// A row of narrow gabled houses with the front to the water.
void addQuayHouses(TownModel& model, double u0, double u1, double v0, double v1, std::uint64_t seed) {
    Dice dice(seed);
    for (double u = u0; u < u1 - 6;) {
        const double next = std::min(u1, u + dice.between(8, 13));
        addQuayBuilding(model, BuildingKind::Terrace, u, v0 + dice.between(0, 2), next, v1,
                        dice.between(10, 15), dice.below(4));
        u = next;
    }
}

void addOldTownFront(TownModel& model) {
    addQuayHouses(model, -156, -70, -66, -52, 61);
    addQuayHouses(model, -150, -70, -34, -16, 62);
    addQuayHouses(model, -52, 36, -66, -50, 63);
    addQuayHouses(model, -52, 36, -38, -22, 64);
    addQuayHouses(model, -52, 36, -10, 8, 65);
    addQuayHouses(model, -52, 20, 18, 33, 66);
    addQuayBuilding(model, BuildingKind::Public, -148, 2, -116, 26, 16, 1);
    addQuayBuilding(model, BuildingKind::Public, -70, 66, 30, 82, 12, 2);
    addQuayBuilding(model, BuildingKind::Industrial, 66, -66, 112, -52, 8, 0);
    for (double u = -108; u < -66; u += 10) {
        model.trees.push_back({quayPoint(u, 14), 3, 1});
    }
    model.places.push_back({quayPoint(-132, 14), PlaceKind::Landmark, "Maritime\nMuseum", 17});
    model.places.push_back({quayPoint(-20, 74), PlaceKind::Landmark, "Customs House", 17});
    model.places.push_back({quayPoint(89, -59), PlaceKind::Food, "Fish Hall", 18});
    model.places.push_back({quayPoint(-92, 24), PlaceKind::Food, "Cafe Lantern", 18});
    model.places.push_back({townPoint(-20, -102), PlaceKind::District, "OLD TOWN", 16});
}

void addCruiseTerminal(TownModel& model) {
    model.addBuilding(BuildingKind::Terminal,
                      {quayPoint(280, -16), quayPoint(372, -16), quayPoint(384, -8), quayPoint(384, 10),
                       quayPoint(280, 10)},
                      14, 0);
    addQuayBuilding(model, BuildingKind::Terminal, 178, -10, 250, 8, 10, 1);
    for (double u = 284; u < 404; u += 10) {
        model.trees.push_back({quayPoint(u, -64), 2.8, 0});
    }
    for (double u = 286; u < 404; u += 14) {
        model.trees.push_back({quayPoint(u, -28), 2.6, 2});
    }
    model.places.push_back({quayPoint(332, -3), PlaceKind::Transport, "Cruise Terminal", 16});
    model.places.push_back({quayPoint(454, 50), PlaceKind::Transport, "Ferry", 17, 17});
}

void addCommercialHarbour(TownModel& model) {
    addQuayBuilding(model, BuildingKind::Industrial, 462, -58, 518, -34, 11, 0);
    addQuayBuilding(model, BuildingKind::Industrial, 528, -58, 590, -34, 11, 1);
    addQuayBuilding(model, BuildingKind::Industrial, 600, -60, 690, -36, 12, 0);
    addQuayBuilding(model, BuildingKind::Industrial, 724, -56, 776, -28, 10, 2);
    addQuayBuilding(model, BuildingKind::Industrial, 590, 22, 650, 56, 13, 1);
    addQuayBuilding(model, BuildingKind::Industrial, 590, 66, 640, 98, 12, 2);
    for (int i = 0; i < 6; ++i) {
        Path silo;
        const Pt centre = quayPoint(664 + (i % 2) * 17, 34 + (i / 2) * 17);
        for (int k = 0; k < 20; ++k) {
            silo.push_back(centre + Pt{7.4 * std::cos(k * std::numbers::pi / 10),
                                       7.4 * std::sin(k * std::numbers::pi / 10)});
        }
        model.addBuilding(BuildingKind::Industrial, silo, 22, 1);
    }
    Dice dice(8);
    for (int i = 0; i < 36; ++i) {
        const double u = 584 + (i % 12) * 8.4;
        const double v = 102 + (i / 12) * 3.2;
        if (!dice.chance(0.25)) {
            addQuayBuilding(model, BuildingKind::House, u, v, u + 7, v + 2.5, 2.5, dice.below(4));
        }
    }
    model.places.push_back({quayPoint(672, 14), PlaceKind::Landmark, "Granary", 18});
    model.places.push_back({quayPoint(610, -14), PlaceKind::District, "EAST HARBOUR", 16});
}

void addDistrictNames(TownModel& model) {
    model.places.push_back({quayPoint(40, -40), PlaceKind::Town, "Trelhaven", 15, 15});
    model.places.push_back({townPoint(-455, -105), PlaceKind::District, "MARINA QUARTER", 17, 18});
    model.places.push_back({townPoint(-30, -485), PlaceKind::District, "ORCHARD HILL", 16, 18});
    model.places.push_back({townPoint(-560, -480), PlaceKind::District, "DUNE END", 16, 18});
    model.places.push_back({townPoint(570, -225), PlaceKind::District, "FOUNDRY", 16, 18});
}

} // namespace

void addHarbourBuildings(TownModel& model) {
    addOldTownFront(model);
    addCruiseTerminal(model);
    addCommercialHarbour(model);
    // A club house at the marina, and the lighthouse keeper's cottage.
    addQuayBuilding(model, BuildingKind::Public, -484, 54 - 42, -456, 30, 7, 1);
    addQuayBuilding(model, BuildingKind::Terminal, -300, -64 + 2, -262, -52, 6, 1);
    model.places.push_back({quayPoint(-281, -57), PlaceKind::Food, "Yacht Club", 18});
    addDistrictNames(model);
}

} // namespace trelmix::sample
