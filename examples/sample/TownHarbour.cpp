#include "TownHarbour.h"

namespace trelmix::sample {

namespace {

/// A wall of constant width along a line: moles and piers of stone.
Path ribbon(const Path& line, double width) {
    Path left;
    Path right;
    for (std::size_t i = 0; i < line.size(); ++i) {
        const Pt before = line[i == 0 ? 0 : i - 1];
        const Pt after = line[std::min(i + 1, line.size() - 1)];
        const Pt along = (after - before) * (1 / length(after - before));
        const Pt aside = Pt{-along.y, along.x} * (width / 2);
        left.push_back(line[i] + aside);
        right.push_back(line[i] - aside);
    }
    left.insert(left.end(), right.rbegin(), right.rend());
    return left;
}

Path mole(double u0, double v0, double u1, double v1, double u2, double v2, double u3, double v3) {
    Path line;
    for (int i = 0; i <= 24; ++i) {
        const double t = i / 24.0;
        const double s = 1 - t;
        const double a = s * s * s;
        const double b = 3 * s * s * t;
        const double c = 3 * s * t * t;
        const double d = t * t * t;
        line.push_back(quayPoint(a * u0 + b * u1 + c * u2 + d * u3, a * v0 + b * v1 + c * v2 + d * v3));
    }
    return line;
}

Path circle(Pt centre, double radius) {
    Path outline;
    for (int i = 0; i < 32; ++i) {
        const double angle = 2 * std::numbers::pi * i / 32;
        outline.push_back(centre + Pt{radius * std::cos(angle), radius * std::sin(angle)});
    }
    return outline;
}

void addMoles(TownModel& model) {
    const Path west = mole(-545, 66, -560, 170, -470, 225, -238, 205);
    const Path east = mole(760, 56, 765, 170, 690, 238, 478, 236);
    for (const Path& line : {west, east}) {
        model.addArea(AreaKind::Land, ribbon(line, 19));
        model.addArea(AreaKind::Paved, ribbon(line, 11));
        model.addArea(AreaKind::Paved, circle(line.back(), 13));
        model.addStreet(StreetKind::Footpath, "", line, 3);
    }
    model.lighthouse = west.back();
    model.eastLight = east.back();
    model.places.push_back({west[12], PlaceKind::Landmark, "West Mole", 17});
    model.places.push_back({east[13], PlaceKind::Landmark, "East Mole", 17});
    model.places.push_back({west.back() + Pt{0, 26}, PlaceKind::Landmark, "Trelhaven Light", 17});
}

void addQuays(TownModel& model) {
    const double paved[][4] = {{-190, -69, 60, 60},   {120, -69, 440, 45},   {-440, -58, -190, -40},
                               {-448, -58, -430, 70}, {-200, -40, -186, 60}, {-200, 34, 60, 60},
                               {-90, 58, 60, 92},     {36, -48, 60, 60},     {36, -48, 142, -30},
                               {122, -48, 140, 45},   {122, 8, 438, 45},     {402, 18, 438, 118},
                               {402, -6, 582, 18},    {566, 8, 704, 128},    {700, 22, 792, 60}};
    for (const auto& quay : paved) {
        model.addArea(AreaKind::Paved, quayRectangle(quay[0], quay[1], quay[2], quay[3]));
    }
    model.addArea(AreaKind::Industrial, quayRectangle(452, -64, 785, 6));
    model.addArea(AreaKind::Industrial, quayRectangle(580, 2, 696, 112));
    model.addArea(AreaKind::Square, quayRectangle(-186, -22, -60, 34));
    model.addArea(AreaKind::Parking, quayRectangle(150, -62, 262, -30));
    model.addArea(AreaKind::Parking, quayRectangle(412, -62, 446, -14));
    const double edges[][2] = {{-560, 70}, {-430, 70}, {-430, -40}, {-200, -40}, {-200, 60},
                               {-90, 60},  {-90, 92},  {60, 92},    {60, -30},   {122, -30},
                               {122, 45},  {402, 45},  {402, 118},  {438, 118},  {438, 18},
                               {566, 18},  {566, 128}, {704, 128},  {704, 60},   {790, 60}};
    Path edge;
    for (const auto& corner : edges) {
        edge.push_back(quayPoint(corner[0], corner[1]));
    }
    model.quayEdges.push_back({edge, 1.4, Box::of(edge)});
}

/// A floating pier with boats berthed on both sides.
void addMarinaPier(TownModel& model, double u, double v0, double v1, Dice& dice) {
    const Path line{quayPoint(u, v0), quayPoint(u, v1)};
    model.piers.push_back({line, 2.6, Box::of(line)});
    for (double v = v0 + 7; v < v1 - 2; v += 5.2) {
        for (const double side : {-1.0, 1.0}) {
            const double size = dice.between(8, 12.5);
            const Path finger{quayPoint(u, v + 2.6), quayPoint(u + side * 9, v + 2.6)};
            model.piers.push_back({finger, 0.7, Box::of(finger)});
            if (dice.chance(0.2)) {
                continue;
            }
            const double angle = quayAngle() + (side > 0 ? 0 : std::numbers::pi);
            model.boats.push_back(
                {quayPoint(u + side * (1.9 + size / 2), v), size, size * 0.3, angle, dice.below(4)});
        }
    }
}

void addMarina(TownModel& model) {
    Dice dice(77);
    for (const double u : {-398.0, -357.0, -316.0, -275.0}) {
        addMarinaPier(model, u, -40, u < -380 ? 52 : 62, dice);
    }
    const Path outer{quayPoint(-236, 40), quayPoint(-200, 40)};
    model.piers.push_back({outer, 3, Box::of(outer)});
    model.places.push_back({quayPoint(-330, 92), PlaceKind::Water, "Marina", 17, 19, quayAngle()});
    for (int i = 0; i < 9; ++i) {
        model.boats.push_back({quayPoint(66.5 + (i % 2) * 4.5, -22 + i * 10.5), dice.between(9, 15), 4.4,
                               quayAngle() + std::numbers::pi / 2, 4 + dice.below(3)});
    }
    for (int i = 0; i < 6; ++i) {
        model.boats.push_back({quayPoint(116.5, -18 + i * 13.0), dice.between(9, 13), 4,
                               quayAngle() + std::numbers::pi / 2, 4 + dice.below(3)});
    }
    const double sailing[][3] = {{-60, 170, 0.3}, {-330, 300, 2.1}, {120, 250, 3.3}, {-120, 330, 0.8},
                                 {330, 190, 5.9}, {-520, 320, 1.2}, {560, 290, 2.6}, {20, 430, 4.4}};
    for (const auto& boat : sailing) {
        model.boats.push_back({quayPoint(boat[0], boat[1]), 12, 3.8, boat[2], dice.below(4)});
    }
    // The ferry in its slip, and a freighter at the commercial quay.
    model.boats.push_back({quayPoint(502, 62), 76, 17, quayAngle() + std::numbers::pi / 2, 8});
    model.boats.push_back({quayPoint(636, 138), 108, 17, quayAngle() + std::numbers::pi, 9});
    model.places.push_back({quayPoint(91, 62), PlaceKind::Water, "Fishing\nHarbour", 18, 19});
    model.places.push_back({quayPoint(180, 150), PlaceKind::Water, "Inner Harbour", 16, 19, quayAngle()});
    model.places.push_back({quayPoint(110, 292), PlaceKind::Water, "Harbour Entrance", 17, 19});
    model.places.push_back({quayPoint(502, 112), PlaceKind::Water, "Ferry Dock", 18, 19, quayAngle()});
}

} // namespace

void addHarbour(TownModel& model) {
    addMoles(model);
    addQuays(model);
    addMarina(model);
}

} // namespace trelmix::sample
