#include "TownModel.h"

#include "TownBlocks.h"
#include "TownHarbour.h"
#include "TownHarbourBuildings.h"
#include "TownParks.h"
#include "TownStreets.h"
#include "TownSurroundings.h"

namespace trelmix::sample {

namespace {

/// Moves the quays up in the picture, so that moles and hills share the middle.
constexpr Pt kAxesOrigin{-10, -75};

} // namespace

double quayAngle() {
    return (kQuayBearing - 90) * std::numbers::pi / 180;
}

Pt quayPoint(double u, double v) {
    static const double c = std::cos(quayAngle());
    static const double s = std::sin(quayAngle());
    return kAxesOrigin + Pt{u * c - v * s, u * s + v * c};
}

Pt townPoint(double u, double v) {
    const double swing = smoothStep(-60, -240, v);
    return quayPoint(u + swing * 16 * std::sin(v / 150 + 0.6),
                     v + swing * (17 * std::sin(u / 240 + 0.4) + 5 * std::sin(u / 95)));
}

Path townLine(double u0, double v0, double u1, double v1) {
    const int steps = std::max(1, static_cast<int>(std::hypot(u1 - u0, v1 - v0) / 8));
    Path line;
    for (int i = 0; i <= steps; ++i) {
        const double t = static_cast<double>(i) / steps;
        line.push_back(townPoint(u0 + (u1 - u0) * t, v0 + (v1 - v0) * t));
    }
    return line;
}

Path quayRectangle(double u0, double v0, double u1, double v1) {
    return {quayPoint(u0, v0), quayPoint(u1, v0), quayPoint(u1, v1), quayPoint(u0, v1)};
}

Path townRectangle(double u0, double v0, double u1, double v1) {
    Path outline;
    const double corners[5][2] = {{u0, v0}, {u1, v0}, {u1, v1}, {u0, v1}, {u0, v0}};
    for (int i = 0; i < 4; ++i) {
        const Path side = townLine(corners[i][0], corners[i][1], corners[i + 1][0], corners[i + 1][1]);
        outline.insert(outline.end(), side.begin(), side.end() - 1);
    }
    return outline;
}

double coastV(double u) {
    const double outside = u < 0 ? -560 - u : u - 790;
    const double free = smoothStep(0, 420, outside);
    if (u < 0) {
        return 70 + free * (34 * std::sin(outside / 190) + 120 * std::sin(outside / 720 + 0.2) +
                            190 * std::sin(outside / 1900) + 12 * std::sin(outside / 61));
    }
    return 60 + free * (28 * std::sin(outside / 160) - 110 * std::sin(outside / 640) +
                        230 * std::sin(outside / 2300 + 0.1) + 10 * std::sin(outside / 57));
}

Path blob(Pt centre, double radius, std::uint64_t seed) {
    Dice dice(seed);
    const double a = dice.between(0, 6);
    const double b = dice.between(0, 6);
    const double stretch = dice.between(0.7, 1.3);
    Path outline;
    constexpr int kCorners = 56;
    for (int i = 0; i < kCorners; ++i) {
        const double angle = 2 * std::numbers::pi * i / kCorners;
        const double r = radius * (1 + 0.16 * std::sin(3 * angle + a) + 0.09 * std::sin(5 * angle + b) +
                                   dice.between(-0.02, 0.02));
        outline.push_back(centre + Pt{r * stretch * std::cos(angle), r / stretch * std::sin(angle)});
    }
    return outline;
}

void TownModel::addArea(AreaKind kind, Path outline) {
    const Box box = Box::of(outline);
    areas.push_back({kind, std::move(outline), box});
}

void TownModel::addStreet(StreetKind kind, std::string name, Path line, double width) {
    const Box box = Box::of(line).grownBy(width);
    streets.push_back({kind, std::move(name), std::move(line), width, box});
}

void TownModel::addBuilding(BuildingKind kind, Path outline, double height, int tint) {
    const Box box = Box::of(outline).grownBy(height);
    buildings.push_back({kind, std::move(outline), height, tint, box});
}

TownModel TownModel::build() {
    TownModel model;
    addSurroundings(model);
    addHarbour(model);
    addStreets(model);
    addBlocks(model);
    addParks(model);
    addHarbourBuildings(model);
    return model;
}

} // namespace trelmix::sample
