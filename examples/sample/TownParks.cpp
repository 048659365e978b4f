#include "TownParks.h"

#include "TownStreets.h"

namespace trelmix::sample {

namespace {

/// A path through places of the town's axes, rounded by Catmull-Rom.
Path curve(const std::vector<Pt>& knots, bool closed = false) {
    Path line;
    const auto count = static_cast<int>(knots.size());
    const auto at = [&](int i) {
        return closed ? knots[static_cast<std::size_t>((i + count) % count)]
                      : knots[static_cast<std::size_t>(std::clamp(i, 0, count - 1))];
    };
    for (int i = 0; i < (closed ? count : count - 1); ++i) {
        const Pt a = at(i - 1);
        const Pt b = at(i);
        const Pt c = at(i + 1);
        const Pt d = at(i + 2);
        for (int k = 0; k < 8; ++k) {
            const double t = k / 8.0;
            const Pt p = (b * 2 + (c - a) * t + (a * 2 - b * 5 + c * 4 - d) * (t * t) +
                          (b * 3 - a - c * 3 + d) * (t * t * t)) *
                         0.5;
            line.push_back(townPoint(p.x, p.y));
        }
    }
    if (!closed) {
        line.push_back(townPoint(knots.back().x, knots.back().y));
    }
    return line;
}

void addPath(TownModel& model, const std::vector<Pt>& knots, const char* name = "") {
    model.addStreet(StreetKind::Footpath, name, curve(knots), 2.6);
}

/// Trees strewn over a rectangle, kept off the places where `isFree` says no.
template <class IsFree>
void strewTrees(TownModel& model, const SpecialBlock& block, int count, std::uint64_t seed, IsFree isFree) {
    Dice dice(seed);
    for (int i = 0; i < count; ++i) {
        const double u = dice.between(block.u0 + 10, block.u1 - 10);
        const double v = dice.between(block.v0 + 10, block.v1 - 10);
        const double radius = dice.between(2.4, 5.2);
        if (isFree(u, v)) {
            model.trees.push_back({townPoint(u, v), radius, dice.below(3)});
        }
    }
}

void addAnchorPark(TownModel& model) {
    const SpecialBlock block = specialBlocks()[0];
    model.addArea(AreaKind::Park, townRectangle(block.u0 + 6, block.v0 + 7, block.u1 - 6, block.v1 - 6));
    const double pondU = -352;
    const double pondV = -202;
    Path pond;
    for (int i = 0; i < 40; ++i) {
        const double angle = 2 * std::numbers::pi * i / 40;
        const double r = 1 + 0.15 * std::sin(2 * angle + 1) + 0.08 * std::sin(3 * angle);
        pond.push_back(townPoint(pondU + 30 * r * std::cos(angle), pondV + 17 * r * std::sin(angle)));
    }
    model.addArea(AreaKind::Pond, pond);
    for (int i = 0; i < 6; ++i) {
        const double angle = i * std::numbers::pi / 3;
        const Pt middle = townPoint(-285 + 13 * std::cos(angle), -200 + 13 * std::sin(angle));
        model.addArea(AreaKind::FlowerBed, blob(middle, 2.6, static_cast<std::uint64_t>(i)));
    }
    addPath(model, {{-414, -249}, {-392, -228}, {-340, -228}, {-300, -215}, {-256, -195}});
    addPath(model, {{-414, -141}, {-396, -170}, {-350, -176}, {-310, -190}, {-285, -222}, {-256, -249}});
    addPath(model, {{-396, -228}, {-402, -200}, {-396, -172}});
    addPath(model, {{-300, -215}, {-285, -222}, {-266, -200}, {-285, -178}, {-306, -192}});
    addPath(model, {{-285, -178}, {-256, -141}});
    strewTrees(model, block, 130, 31, [=](double u, double v) {
        return std::hypot((u - pondU) / 42, (v - pondV) / 30) > 1 && std::hypot(u + 285, v + 200) > 28;
    });
    model.places.push_back({townPoint(-335, -158), PlaceKind::Park, "Anchor Park", 16});
}

void addMarketAndChurch(TownModel& model) {
    model.addArea(AreaKind::Square, townRectangle(4, -190, 81, -139));
    for (double u = 14; u < 80; u += 13) {
        for (const double v : {-184.0, -145.0}) {
            model.trees.push_back({townPoint(u, v), 3, 1});
        }
    }
    model.addBuilding(BuildingKind::Public,
                      {townPoint(54, -178), townPoint(76, -178), townPoint(76, -151), townPoint(54, -151)},
                      18, 0);
    model.addArea(AreaKind::Pond, blob(townPoint(27, -165), 4.2, 3));
    model.places.push_back({townPoint(28, -152), PlaceKind::District, "Market\nSquare", 17});
    model.places.push_back({townPoint(65, -164), PlaceKind::Landmark, "Town Hall", 18});

    const SpecialBlock yard = specialBlocks()[2];
    model.addArea(AreaKind::Park, townRectangle(yard.u0 + 6, yard.v0 + 7, yard.u1 - 7, yard.v1 - 6));
    const auto at = [](double u, double v) { return townPoint(-122 + u, -225 + v); };
    model.addBuilding(BuildingKind::Public,
                      {at(-24, -7), at(2, -7), at(2, -15), at(13, -15), at(13, -7), at(20, -7), at(26, -3),
                       at(26, 3), at(20, 7), at(13, 7), at(13, 15), at(2, 15), at(2, 7), at(-24, 7)},
                      20, 1);
    model.addBuilding(BuildingKind::Public, {at(-33, -6), at(-22, -6), at(-22, 6), at(-33, 6)}, 34, 2);
    strewTrees(model, yard, 34, 32,
               [](double u, double v) { return std::abs(u + 125) > 33 || std::abs(v + 225) > 17; });
    model.places.push_back({townPoint(-122, -203.5), PlaceKind::Landmark, "St Brendan", 18});
}

void addStation(TownModel& model) {
    model.addArea(AreaKind::Industrial, townRectangle(171, -350, 429, -296));
    for (const double v : {-315.0, -301.0}) {
        const Path platform = townLine(190, v, 400, v);
        model.addArea(AreaKind::Paved, townRectangle(190, v - 2, 400, v + 2));
    }
    model.addArea(AreaKind::Square, townRectangle(173, -292, 290, -262));
    model.addArea(AreaKind::Parking, townRectangle(305, -290, 425, -264));
    model.addBuilding(BuildingKind::Public,
                      {townPoint(190, -294), townPoint(282, -294), townPoint(282, -280), townPoint(250, -280),
                       townPoint(250, -274), townPoint(222, -274), townPoint(222, -280),
                       townPoint(190, -280)},
                      14, 0);
    for (double u = 180; u < 290; u += 12) {
        model.trees.push_back({townPoint(u, -265), 2.8, 0});
    }
    model.places.push_back({townPoint(236, -285), PlaceKind::Transport, "Trelhaven Station", 16});
}

void addSportsGround(TownModel& model) {
    const SpecialBlock block = specialBlocks()[3];
    model.addArea(AreaKind::Park, townRectangle(block.u0 + 6, block.v0 + 6, block.u1 - 6, block.v1 - 6));
    model.addArea(AreaKind::Pitch, townRectangle(545, -570, 645, -506));
    model.addArea(AreaKind::Pitch, townRectangle(660, -572, 690, -540));
    model.addArea(AreaKind::Pitch, townRectangle(660, -530, 690, -498));
    model.addBuilding(
        BuildingKind::Public,
        {townPoint(555, -496), townPoint(635, -496), townPoint(635, -482), townPoint(555, -482)}, 9, 1);
    strewTrees(model, block, 90, 33,
               [](double u, double v) { return v > -480 || u > 698 || (u > 645 && u < 657); });
    model.places.push_back({townPoint(600, -538), PlaceKind::Park, "Sports Ground", 17});
}

void addHillPark(TownModel& model) {
    const SpecialBlock block = specialBlocks()[4];
    model.addArea(AreaKind::Forest, townRectangle(block.u0 + 6, block.v0 + 6, block.u1 - 6, block.v1 - 7));
    addPath(model, {{-325, -596}, {-290, -640}, {-240, -650}, {-190, -630}, {-140, -650}, {-86, -600}});
    addPath(model, {{-240, -650}, {-225, -690}, {-160, -700}, {-140, -650}});
    addPath(model, {{-190, -630}, {-170, -596}});
    strewTrees(model, block, 330, 34,
               [](double u, double v) { return std::hypot(u + 205, (v + 672) * 1.3) > 26; });
    model.addArea(AreaKind::Park, blob(townPoint(-205, -672), 22, 51));
    model.places.push_back({townPoint(-205, -664), PlaceKind::Park, "Lookout Hill", 16});
}

void addSchoolAndCemetery(TownModel& model) {
    const SpecialBlock school = specialBlocks()[6];
    model.addArea(AreaKind::Park, townRectangle(school.u0 + 6, school.v0 + 7, school.u1 - 6, school.v1 - 6));
    const auto at = [](double u, double v) { return townPoint(-645 + u, -205 + v); };
    model.addBuilding(BuildingKind::Public,
                      {at(-28, -32), at(30, -32), at(30, -18), at(-14, -18), at(-14, 12), at(-28, 12)}, 11,
                      0);
    model.addArea(AreaKind::Pitch, townRectangle(-650, -205, -615, -150));
    strewTrees(model, school, 24, 35, [](double u, double v) { return v > -185 && u < -655; });
    model.places.push_back({townPoint(-648, -228), PlaceKind::Landmark, "Dune School", 17});
    const SpecialBlock yard = specialBlocks()[7];
    model.addArea(AreaKind::Cemetery, townRectangle(yard.u0 + 5, yard.v0 + 5, yard.u1 - 5, yard.v1 - 6));
    addPath(model, {{390, -722}, {390, -660}, {390, -594}});
    addPath(model, {{350, -660}, {390, -660}, {430, -660}});
    strewTrees(model, yard, 46, 36,
               [](double u, double v) { return std::abs(u - 390) > 6 && std::abs(v + 660) > 6; });
    model.places.push_back({townPoint(390, -630), PlaceKind::Park, "Cemetery", 17});
}

void addShorePark(TownModel& model) {
    Path green;
    for (double u = -1000; u <= -570; u += 12) {
        green.push_back(quayPoint(u, coastV(u) - 38));
    }
    for (double u = -570; u >= -1000; u -= 12) {
        green.push_back(quayPoint(u, coastV(u) - 72 - 20 * smoothStep(-570, -700, u)));
    }
    model.addArea(AreaKind::Park, green);
    model.addArea(AreaKind::Park, quayRectangle(-548, -64, -452, 44));
    Dice dice(91);
    for (int i = 0; i < 38; ++i) {
        model.trees.push_back({quayPoint(dice.between(-542, -458), dice.between(-58, 38)),
                               dice.between(2.4, 4.6), dice.below(3)});
    }
    addPath(model, {{-542, 40}, {-505, 5}, {-510, -30}, {-456, -60}});
    addPath(model, {{-456, 40}, {-488, -5}, {-546, -55}});
    model.places.push_back({quayPoint(-500, -16), PlaceKind::Park, "Marina Gardens", 17});
    model.places.push_back(
        {quayPoint(-760, coastV(-760) - 14), PlaceKind::Park, "Long Beach", 16, 19, quayAngle()});
}

} // namespace

void addParks(TownModel& model) {
    addAnchorPark(model);
    addMarketAndChurch(model);
    addStation(model);
    addSportsGround(model);
    addHillPark(model);
    addSchoolAndCemetery(model);
    addShorePark(model);
}

} // namespace trelmix::sample
