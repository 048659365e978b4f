#include "TownBlocks.h"

#include "TownStreets.h"

namespace trelmix::sample {

namespace {

/// Half a street and its pavement.
constexpr double kStreetMargin = 7.5;

bool isSpecial(double u, double v) {
    for (const SpecialBlock& block : specialBlocks()) {
        if (block.contains(u, v)) {
            return true;
        }
    }
    return false;
}

void addTownBuilding(TownModel& model, BuildingKind kind, double u0, double v0, double u1, double v1,
                     double height, int tint) {
    model.addBuilding(kind, {townPoint(u0, v0), townPoint(u1, v0), townPoint(u1, v1), townPoint(u0, v1)},
                      height, tint);
}

void addTree(TownModel& model, double u, double v, Dice& dice, double size = 1) {
    model.trees.push_back({townPoint(u, v), size * dice.between(2.2, 4.2), dice.below(3)});
}

/// One row of joined houses from u0 to u1 (or v0 to v1), of differing depth on the courtyard's side.
void addTerraces(TownModel& model, double u0, double v0, double u1, double v1, Dice& dice) {
    const double depth = 11.5;
    for (const bool north : {true, false}) {
        for (double u = u0; u < u1 - 1;) {
            double next = u + dice.between(9, 17);
            if (next > u1 - 8) {
                next = u1;
            }
            const double d = depth + dice.between(-1.5, 2);
            if (!dice.chance(0.05)) {
                addTownBuilding(model, BuildingKind::Terrace, u, north ? v0 : v1 - d, next,
                                north ? v0 + d : v1, dice.between(8, 13), dice.below(4));
            }
            u = next;
        }
    }
    for (const bool west : {true, false}) {
        for (double v = v0 + depth + 2.5; v < v1 - depth - 8;) {
            double next = v + dice.between(8, 14);
            if (next > v1 - depth - 10) {
                next = v1 - depth - 2.5;
            }
            const double d = depth + dice.between(-2, 1);
            if (!dice.chance(0.22)) {
                addTownBuilding(model, BuildingKind::Terrace, west ? u0 : u1 - d, v, west ? u0 + d : u1, next,
                                dice.between(8, 12), dice.below(4));
            }
            v = next;
        }
    }
    for (int i = 0; i < 5; ++i) {
        addTree(model, dice.between(u0 + 18, u1 - 18), dice.between(v0 + 17, v1 - 17), dice);
    }
}

/// Detached houses along the two longer sides, gardens and trees behind.
void addVillas(TownModel& model, double u0, double v0, double u1, double v1, Dice& dice) {
    for (const bool north : {true, false}) {
        for (double u = u0 + 1; u < u1 - 8;) {
            const double width = dice.between(9, 14);
            const double depth = dice.between(8, 11);
            const double setback = dice.between(3, 6);
            if (u + width > u1) {
                break;
            }
            const double near = north ? v0 + setback : v1 - setback;
            const double far = north ? near + depth : near - depth;
            if (!dice.chance(0.06)) {
                addTownBuilding(model, BuildingKind::House, u, std::min(near, far), u + width,
                                std::max(near, far), dice.between(5, 8), dice.below(4));
                if (dice.chance(0.4)) {
                    const double shed = north ? far + 7 : far - 10;
                    addTownBuilding(model, BuildingKind::House, u + 1, shed, u + 5, shed + 3.5, 2.5, 1);
                }
            }
            if (dice.chance(0.7)) {
                addTree(model, u + width + 2.5, far + dice.between(-2, 2), dice, 0.9);
            }
            u += width + dice.between(5, 9);
        }
    }
    for (int i = 0; i < 5; ++i) {
        addTree(model, dice.between(u0 + 4, u1 - 4), (v0 + v1) / 2 + dice.between(-6, 6), dice);
    }
}

void addIndustry(TownModel& model, double u0, double v0, double u1, double v1, Dice& dice) {
    const double middle = u0 + (u1 - u0) * dice.between(0.4, 0.6);
    addTownBuilding(model, BuildingKind::Industrial, u0 + 2, v0 + 2, middle - 3, v1 - dice.between(4, 14),
                    dice.between(8, 12), dice.below(3));
    addTownBuilding(model, BuildingKind::Industrial, middle + 3, v0 + dice.between(3, 12), u1 - 2, v1 - 3,
                    dice.between(8, 12), dice.below(3));
}

void addBlock(TownModel& model, double u0, double v0, double u1, double v1) {
    const double u = (u0 + u1) / 2;
    const double v = (v0 + v1) / 2;
    if (isSpecial(u, v)) {
        return;
    }
    Dice dice(static_cast<std::uint64_t>(static_cast<std::int64_t>(u * 31 + v * 1009)));
    double bottom = v1 - kStreetMargin;
    double top = v0 + kStreetMargin;
    if (v0 < kRailwayV && v1 > kRailwayV) {
        // Only the halves beside the tracks can be built on; gardens and trees on the railway's side.
        for (double t = u0 + 10; t < u1 - 6; t += 11) {
            addTree(model, t, kRailwayV + (dice.chance(0.5) ? -18 : 18), dice, 0.8);
        }
        addVillas(model, u0 + kStreetMargin, top, u1 - kStreetMargin, kRailwayV - 2, dice);
        return;
    }
    u0 += kStreetMargin;
    u1 -= kStreetMargin;
    if (u1 - u0 < 25) {
        return;
    }
    const bool isOldTown = u > -430 && u < 440 && v > -260;
    if (isOldTown) {
        addTerraces(model, u0, top, u1, bottom, dice);
    } else if (u > 520 && v > -200) {
        addIndustry(model, u0, top, u1, bottom, dice);
    } else if (u > -520 && u < 520 && v > -530 && dice.chance(0.55)) {
        addTerraces(model, u0, top, u1, bottom, dice);
    } else {
        addVillas(model, u0, top, u1, bottom, dice);
    }
}

void addStreetTrees(TownModel& model) {
    Dice dice(5);
    const double avenues[][3] = {{-255, -690, 800}, {-590, -690, 800}};
    for (const auto& avenue : avenues) {
        for (double u = avenue[1] + 12; u < avenue[2]; u += 16) {
            for (const double side : {-6.6, 6.6}) {
                if (!isSpecial(u, avenue[0] + side * 2) && dice.chance(0.8)) {
                    addTree(model, u, avenue[0] + side, dice, 0.75);
                }
            }
        }
    }
    for (double v = -250; v < -80; v += 14) {
        for (const double side : {-7.2, 7.2}) {
            if (std::abs(v + 255) > 14 && std::abs(v + 195) > 14 && std::abs(v + 135) > 14) {
                addTree(model, 165 + side, v, dice, 0.75);
            }
        }
    }
    for (double u = -425; u < -200; u += 13) {
        addTree(model, u, -62, dice, 0.8);
    }
    for (double u = -1500; u < -570; u += 15) {
        model.trees.push_back({quayPoint(u + dice.between(-4, 4), coastV(u) - dice.between(46, 62)),
                               dice.between(2.5, 4.5), dice.below(3)});
    }
}

} // namespace

void addBlocks(TownModel& model) {
    const std::vector<double>& us = crossStreets();
    const std::vector<double>& vs = longStreets();
    for (std::size_t i = 0; i + 1 < us.size(); ++i) {
        for (std::size_t j = 0; j + 1 < vs.size(); ++j) {
            addBlock(model, us[i], vs[j], us[i + 1], vs[j + 1]);
        }
    }
    addStreetTrees(model);
}

} // namespace trelmix::sample
