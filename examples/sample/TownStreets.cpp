#include "TownStreets.h"

#include <string_view>

namespace trelmix::sample {

namespace {

struct GridStreet {
    double at;
    std::string_view name;
    StreetKind kind;
    double width;
    double from;
    double to;
};

/// Streets along the coast: v, and the range of u.
const std::vector<GridStreet> kAlong{
    {-75, "Harbour Street", StreetKind::Primary, 12, -690, 860},
    {-135, "Sailmaker Street", StreetKind::Minor, 7.5, -690, 800},
    {-195, "Church Street", StreetKind::Minor, 8, -690, 800},
    {-255, "Lantern Street", StreetKind::Secondary, 9, -690, 800},
    {-385, "Station Road", StreetKind::Secondary, 9.5, -690, 800},
    {-450, "Orchard Street", StreetKind::Minor, 7.5, -690, 800},
    {-520, "Linden Street", StreetKind::Minor, 7.5, -690, 800},
    {-590, "Hillside Avenue", StreetKind::Secondary, 9, -690, 800},
    {-660, "Meadow Lane", StreetKind::Minor, 7, -690, 800},
    {-725, "Windmill Road", StreetKind::Minor, 7, -690, 800},
};

/// Streets from the hills to the water: u, and the range of v.
const std::vector<GridStreet> kAcross{
    {-690, "Dune Road", StreetKind::Secondary, 9, -725, -75},
    {-600, "Heron Lane", StreetKind::Minor, 7, -725, -75},
    {-510, "Beach Avenue", StreetKind::Secondary, 9, -725, -75},
    {-420, "Pilot Street", StreetKind::Minor, 7.5, -725, -75},
    {-330, "Anchor Street", StreetKind::Minor, 7.5, -725, -75},
    {-250, "Ropewalk", StreetKind::Minor, 7.5, -725, -75},
    {-165, "Chandler Street", StreetKind::Minor, 7, -725, -75},
    {-80, "Mill Street", StreetKind::Secondary, 9, -725, -75},
    {0, "Market Street", StreetKind::Minor, 7.5, -725, -75},
    {85, "Cooper Row", StreetKind::Minor, 7, -725, -75},
    {165, "King Olav Street", StreetKind::Primary, 11, -725, -75},
    {255, "Station Avenue", StreetKind::Secondary, 10, -725, -75},
    {345, "Herring Lane", StreetKind::Minor, 7, -725, -75},
    {435, "Ferry Road", StreetKind::Secondary, 9, -725, -75},
    {525, "Foundry Street", StreetKind::Minor, 7.5, -725, -75},
    {615, "Timber Street", StreetKind::Minor, 7.5, -725, -75},
    {710, "Sluice Road", StreetKind::Minor, 7, -725, -75},
    {800, "Cape Street", StreetKind::Secondary, 9, -725, -75},
};

bool crossesRailway(double u) {
    for (const double crossing : {-690.0, -510.0, -250.0, -80.0, 165.0, 435.0, 615.0, 800.0}) {
        if (u == crossing) {
            return true;
        }
    }
    return false;
}

bool insideSpecialBlock(double u, double v) {
    for (const SpecialBlock& block : specialBlocks()) {
        if (block.contains(u, v)) {
            return true;
        }
    }
    return false;
}

/// Adds the runs of a grid street that no special block and no railway interrupts.
void addGridStreet(TownModel& model, const GridStreet& street, bool along) {
    const std::vector<double>& stops = along ? crossStreets() : longStreets();
    double runFrom = 0;
    double runTo = 0;
    bool running = false;
    const auto finish = [&] {
        if (!running) {
            return;
        }
        model.addStreet(street.kind, std::string(street.name),
                        along ? townLine(runFrom, street.at, runTo, street.at)
                              : townLine(street.at, runFrom, street.at, runTo),
                        street.width);
        running = false;
    };
    for (std::size_t i = 0; i + 1 < stops.size(); ++i) {
        const double from = stops[i];
        const double to = stops[i + 1];
        const double middle = (from + to) / 2;
        const bool inRange = from >= street.from && to <= street.to;
        const bool onRailway = !along && from < kRailwayV && to > kRailwayV && !crossesRailway(street.at);
        const bool blocked =
            along ? insideSpecialBlock(middle, street.at) : insideSpecialBlock(street.at, middle);
        if (!inRange || onRailway || blocked) {
            finish();
            continue;
        }
        if (!running) {
            runFrom = from;
        }
        runTo = to;
        running = true;
    }
    finish();
}

void addQuayStreets(TownModel& model) {
    const auto straight = [&](StreetKind kind, const char* name, double width,
                              std::initializer_list<Pt> corners) {
        Path line;
        for (const Pt corner : corners) {
            line.push_back(quayPoint(corner.x, corner.y));
        }
        model.addStreet(kind, name, line, width);
    };
    straight(StreetKind::Minor, "Customs Quay", 7, {{-165, -75}, {-172, 44}, {48, 44}, {48, -75}});
    straight(StreetKind::Pedestrian, "Fishmarket", 7, {{-60, -75}, {-60, 44}});
    straight(StreetKind::Minor, "Cruise Quay", 7.5, {{131, -75}, {131, 24}, {420, 24}, {420, 108}});
    straight(StreetKind::Service, "", 5.5, {{270, -75}, {270, 24}});
    straight(StreetKind::Secondary, "Ferry Road", 9, {{435, -75}, {435, 4}, {500, 4}});
    straight(StreetKind::Service, "", 5.5, {{500, 4}, {574, 4}, {574, 118}, {690, 118}});
    straight(StreetKind::Service, "Granary Wharf", 6, {{710, -75}, {710, 50}, {780, 50}});
    straight(StreetKind::Minor, "Marina Drive", 6.5,
             {{-420, -75}, {-439, -48}, {-439, 52}, {-540, 52}, {-600, 8}, {-690, -75}});
    straight(StreetKind::Footpath, "Marina Walk", 4, {{-436, -48}, {-194, -48}, {-194, 50}});
    Path promenade;
    for (double u = -552; u > -1700; u -= 12) {
        promenade.push_back(quayPoint(u, coastV(std::min(u, -560.0)) - 36));
    }
    model.addStreet(StreetKind::Footpath, "Beach Promenade", promenade, 3.5);
}

void addSidings(TownModel& model) {
    for (const double offset : {-9.0, 9.0, 16.0}) {
        Path track;
        for (double t = 0; t <= 1.0001; t += 0.02) {
            const double u = 60 + 400 * t;
            const double spread = smoothStep(0, 0.16, t) * smoothStep(1, 0.84, t);
            track.push_back(townPoint(u, kRailwayV + offset * spread));
        }
        model.sidings.push_back({track, 2.4, Box::of(track)});
    }
    // Leaves the main line east of the town and follows the coast back to the quays.
    Path harbourBranch;
    for (double t = 0; t <= 1.0001; t += 0.02) {
        harbourBranch.push_back(between(townPoint(1250 - 480 * t, kRailwayV), quayPoint(1250 - 480 * t, -20),
                                        smoothStep(0, 0.9, t)));
    }
    for (double u = 760; u >= 470; u -= 10) {
        harbourBranch.push_back(quayPoint(u, -20));
    }
    model.sidings.push_back({harbourBranch, 2.4, Box::of(harbourBranch)});
}

} // namespace

const std::vector<double>& crossStreets() {
    static const std::vector<double> lines = [] {
        std::vector<double> all;
        for (const GridStreet& street : kAcross) {
            all.push_back(street.at);
        }
        all.push_back(860);
        return all;
    }();
    return lines;
}

const std::vector<double>& longStreets() {
    static const std::vector<double> lines = [] {
        std::vector<double> all;
        for (const GridStreet& street : kAlong) {
            all.insert(all.begin(), street.at);
        }
        return all;
    }();
    return lines;
}

const std::vector<SpecialBlock>& specialBlocks() {
    static const std::vector<SpecialBlock> blocks{
        {-420, -255, -250, -135}, // Anchor Park
        {0, -195, 85, -135},      // Market Square
        {-165, -255, -80, -195},  // churchyard
        {525, -590, 710, -450},   // sports ground
        {-330, -725, -80, -590},  // hill park
        {165, -385, 435, -255},   // station
        {-690, -255, -600, -135}, // school
        {345, -725, 435, -590},   // cemetery
    };
    return blocks;
}

void addStreets(TownModel& model) {
    for (const GridStreet& street : kAcross) {
        addGridStreet(model, street, false);
    }
    for (const GridStreet& street : kAlong) {
        addGridStreet(model, street, true);
    }
    addQuayStreets(model);
    addSidings(model);
}

} // namespace trelmix::sample
