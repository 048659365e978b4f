/// @file
/// The geometry of the fictional harbour town Trelhaven, in metres: everything that is drawn, and nothing of
/// how.
#pragma once

#include "Shapes.h"

#include <string>
#include <vector>

namespace trelmix::sample {

enum class AreaKind {
    Farmland,
    Meadow,
    Forest,
    Residential,
    Industrial,
    Sea,
    Land,
    Beach,
    Paved,
    Square,
    Parking,
    Park,
    Pitch,
    Cemetery,
    Pond,
    FlowerBed,
};

struct Area {
    AreaKind kind;
    Path outline;
    Box box;
};

enum class StreetKind { Primary, Secondary, Minor, Service, Pedestrian, Footpath };

struct Street {
    StreetKind kind;
    std::string name;
    Path line;
    double width; ///< metres, kerb to kerb
    Box box;
};

enum class BuildingKind { House, Terrace, Public, Industrial, Terminal };

struct Building {
    BuildingKind kind;
    Path outline;
    double height; ///< metres; sets the length of the shadow
    int tint;      ///< one of a few shades
    Box box;
};

struct Tree {
    Pt place;
    double radius;
    int tint;
};

struct Boat {
    Pt centre;
    double length;
    double beam;
    double angle; ///< radians from east towards south, of the bow
    int tint;
};

struct Line {
    Path line;
    double width;
    Box box;
};

enum class PlaceKind { Town, Village, District, Water, Park, Landmark, Food, Transport };

struct Place {
    Pt place;
    PlaceKind kind;
    std::string text;
    int fromZoom;
    int toZoom = 19;
    double angle = 0; ///< radians from east towards south
};

/// Everything, in the order in which it is to be painted within each list.
struct TownModel {
    std::vector<Area> areas;
    std::vector<Line> quayEdges;
    std::vector<Line> piers;
    std::vector<Street> streets;
    std::vector<Line> railways;
    std::vector<Line> sidings;
    std::vector<Building> buildings;
    std::vector<Tree> trees;
    std::vector<Boat> boats;
    std::vector<Place> places;
    Pt lighthouse;
    Pt eastLight;

    static TownModel build();

    void addArea(AreaKind kind, Path outline);
    void addStreet(StreetKind kind, std::string name, Path line, double width);
    void addBuilding(BuildingKind kind, Path outline, double height, int tint = 0);
};

/// The town's own axes: u runs along the quays (bearing 118 degrees), v from the hills to the sea (bearing
/// 208).
inline constexpr double kQuayBearing = 118;
Pt quayPoint(double u, double v);
/// As quayPoint near the water; farther inland the streets swing gently.
Pt townPoint(double u, double v);
/// The axes' turn, radians from east towards south.
double quayAngle();
/// The line from one town place to another, following the swing, a point every few metres.
Path townLine(double u0, double v0, double u1, double v1);
/// Corners of a rectangle in the town's axes.
Path quayRectangle(double u0, double v0, double u1, double v1);
Path townRectangle(double u0, double v0, double u1, double v1);
/// Where the natural coast runs at u, west and east of the built quays.
double coastV(double u);
/// A round, irregular outline.
Path blob(Pt centre, double radius, std::uint64_t seed);

} // namespace trelmix::sample
