#include "TownSurroundings.h"

#include "TownStreets.h"

namespace trelmix::sample {

namespace {

constexpr double kReach = 7200;

void addFields(TownModel& model) {
    constexpr double kFieldLength = 340;
    constexpr double kFieldDepth = 240;
    // Skewed and bent, so that the fields follow the land instead of a chessboard.
    const auto corner = [](double u, double v) {
        return quayPoint(u + 0.18 * v + 60 * std::sin(v / 700), v + 50 * std::sin(u / 800) + 0.06 * u);
    };
    for (double v = -kReach; v < 900; v += kFieldDepth) {
        for (double u = -kReach; u < kReach; u += kFieldLength) {
            Dice dice(static_cast<std::uint64_t>(static_cast<std::int64_t>(u * 7919 + v * 104729)));
            const double split = dice.between(0.3, 0.7);
            for (int half = 0; half < 2; ++half) {
                const double from = half == 0 ? 0 : split;
                const double to = half == 0 ? split : 1;
                const double kind = dice.between(0, 1);
                if (kind > 0.72) {
                    continue;
                }
                const double gap = 7;
                const double u0 = u + from * kFieldLength + gap;
                const double u1 = u + to * kFieldLength - gap;
                model.addArea(kind < 0.45 ? AreaKind::Farmland : AreaKind::Meadow,
                              {corner(u0, v + gap), corner(u1, v + gap), corner(u1, v + kFieldDepth - gap),
                               corner(u0, v + kFieldDepth - gap)});
            }
        }
    }
}

void addForests(TownModel& model) {
    const double forests[][3] = {
        {-1250, -620, 260}, {-1650, -900, 330},  {1500, -500, 270},   {350, -1650, 420},
        {-700, -1900, 350}, {1900, -1500, 430},  {-2600, -1500, 480}, {2900, -900, 350},
        {900, -2700, 520},  {-1200, -3100, 600}, {-3600, -800, 400},  {3600, -2400, 560},
        {2200, -3600, 600}, {-3100, -3300, 500}, {-100, -4600, 700},  {-4600, -2200, 520}};
    std::uint64_t seed = 40;
    for (const auto& forest : forests) {
        model.addArea(AreaKind::Forest, blob(quayPoint(forest[0], forest[1]), forest[2], ++seed));
    }
}

void addVillage(TownModel& model, double u, double v, const char* name, std::uint64_t seed) {
    Dice dice(seed);
    const Pt centre = quayPoint(u, v);
    const double radius = dice.between(190, 260);
    model.addArea(AreaKind::Residential, blob(centre, radius, seed));
    const double turn = dice.between(0, 3);
    for (int i = 0; i < 3; ++i) {
        const double angle = turn + i * std::numbers::pi / 3;
        const Pt along{std::cos(angle), std::sin(angle)};
        const Pt across{-along.y, along.x};
        model.addStreet(i == 0 ? StreetKind::Secondary : StreetKind::Minor, "",
                        {centre - along * (radius * (i == 0 ? 2.2 : 0.8)), centre + across * 14,
                         centre + along * (radius * (i == 0 ? 2.2 : 0.8))},
                        i == 0 ? 8 : 6);
        for (double d = -radius * 0.8; d < radius * 0.8; d += dice.between(22, 34)) {
            if (std::abs(d) < 34) {
                continue;
            }
            const double side = dice.chance(0.5) ? 22 : -20;
            const Pt middle = centre + along * d + across * (side + 14 * (1 - std::abs(d) / radius));
            const Pt a = along * dice.between(5, 8);
            const Pt b = across * dice.between(4, 6);
            model.addBuilding(BuildingKind::House,
                              {middle - a - b, middle + a - b, middle + a + b, middle - a + b}, 6,
                              dice.below(4));
        }
    }
    model.places.push_back({centre, PlaceKind::Village, name, 15});
}

Path seaOutline() {
    Path outline{quayPoint(-kReach, 2 * kReach), quayPoint(-kReach, coastV(-kReach))};
    for (double u = -kReach; u < -560; u += 12) {
        outline.push_back(quayPoint(u, coastV(u)));
    }
    const double quays[][2] = {{-560, 70}, {-430, 70}, {-430, -40}, {-200, -40}, {-200, 60},
                               {-90, 60},  {-90, 92},  {60, 92},    {60, -30},   {122, -30},
                               {122, 45},  {402, 45},  {402, 118},  {438, 118},  {438, 18},
                               {566, 18},  {566, 128}, {704, 128},  {704, 60},   {790, 60}};
    for (const auto& corner : quays) {
        outline.push_back(quayPoint(corner[0], corner[1]));
    }
    for (double u = 802; u < kReach; u += 12) {
        outline.push_back(quayPoint(u, coastV(u)));
    }
    outline.push_back(quayPoint(kReach, 2 * kReach));
    return outline;
}

void addBeach(TownModel& model) {
    Path beach;
    for (double u = -1750; u <= -552; u += 12) {
        beach.push_back(quayPoint(u, coastV(std::min(u, -560.0)) + 1));
    }
    for (double u = -552; u >= -1750; u -= 12) {
        const double width = 34 * smoothStep(-1750, -1600, u) * (1 - 0.4 * smoothStep(-640, -556, u));
        beach.push_back(quayPoint(u, coastV(std::min(u, -560.0)) - width));
    }
    model.addArea(AreaKind::Beach, beach);
}

void addIsland(TownModel& model, Pt centre, double radius, const char* name, std::uint64_t seed) {
    model.addArea(AreaKind::Beach, blob(centre, radius, seed));
    model.addArea(AreaKind::Meadow, blob(centre, radius * 0.9, seed));
    model.addArea(AreaKind::Forest, blob(centre + Pt{radius * 0.1, -radius * 0.1}, radius * 0.5, seed + 1));
    model.places.push_back({centre, PlaceKind::Village, name, 15});
}

void addCountryRoads(TownModel& model) {
    Path west;
    for (double u = -690; u > -kReach; u -= 25) {
        const double away = smoothStep(0, 500, -690 - u);
        west.push_back(quayPoint(u, -75 * (1 - away) + away * (coastV(u) - 150)));
    }
    model.addStreet(StreetKind::Primary, "Coast Road", west, 11);
    Path east;
    for (double u = 860; u < kReach; u += 25) {
        const double away = smoothStep(0, 500, u - 860);
        east.push_back(quayPoint(u, -75 * (1 - away) + away * (coastV(u) - 160)));
    }
    model.addStreet(StreetKind::Primary, "Cape Road", east, 11);
    Path north;
    for (double v = -725; v > -kReach; v -= 25) {
        north.push_back(townPoint(165 + 260 * std::sin((v + 725) / 1300) * smoothStep(-725, -1300, v), v));
    }
    model.addStreet(StreetKind::Primary, "Mill Hill Road", north, 10);
    Path ring;
    for (double t = 0; t <= 1.0001; t += 0.02) {
        const double angle = std::numbers::pi * (0.02 + 0.96 * t);
        ring.push_back(quayPoint(80 - 2300 * std::cos(angle), -160 - 1450 * std::sin(angle)));
    }
    model.addStreet(StreetKind::Secondary, "Outer Ring", ring, 9);
}

} // namespace

void addSurroundings(TownModel& model) {
    addFields(model);
    addForests(model);
    model.addArea(AreaKind::Residential, townRectangle(-735, -760, 850, 90));
    addVillage(model, -2350, -620, "Ostermoor", 11);
    addVillage(model, 2450, -430, "Klint", 12);
    addVillage(model, 1250, -1850, "Hollerup", 13);
    addVillage(model, -1500, -2250, "Birkmark", 14);
    addVillage(model, 3300, -3400, "Steenwick", 15);
    addVillage(model, -3700, -2900, "Fenby", 16);
    addCountryRoads(model);
    model.addArea(AreaKind::Sea, seaOutline());
    addBeach(model);
    addIsland(model, quayPoint(-1450, 1350), 330, "Gull Island", 21);
    addIsland(model, quayPoint(1500, 1900), 230, "The Calf", 23);
    addIsland(model, quayPoint(250, 3100), 420, "Outer Skerry", 25);
    model.places.push_back({quayPoint(-250, 900), PlaceKind::Water, "Trelhaven Roads", 15, 17});
    model.places.push_back({quayPoint(1500, 900), PlaceKind::Water, "Amber Bight", 15, 17});
    model.places.push_back({quayPoint(-1900, 600), PlaceKind::Water, "West Bay", 15, 17});
    Path railway;
    for (double u = -kReach; u <= kReach; u += 20) {
        railway.push_back(townPoint(u, kRailwayV - 260 * smoothStep(1000, 4000, std::abs(u))));
    }
    model.railways.push_back({railway, 3, Box::of(railway)});
}

} // namespace trelmix::sample
