#pragma once

#include "common/scene/GeoJsonStyle.h"

#include <Trelmix/MapBehaviour.h>
#include <Trelmix/Platform/CGGeometry.h>
#include <Trelmix/Platform/CLLocation.h>
#include <Trelmix/Platform/Result.h>
#include <Trelmix/Platform/UIColor.h>
#include <Trelmix/SideviewBehaviour.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace trelmix::apps {

/// Sizes in points; the picture has size times scale pixels.
struct SceneView {
    double width = 800;
    double height = 600;
    double scale = 1;
    UIColor background = UIColor::whiteColor();
};

/// Degrees; rotation is the heading at the top of the picture, the viewing angle counts from straight down.
struct SceneCamera {
    CLLocationCoordinate2D target;
    double zoom = 0;
    double rotation = 0;
    double viewingAngle = 0;
};

struct SceneBox {
    CLLocationCoordinate2D southWest;
    CLLocationCoordinate2D northEast;
};

struct SceneLimits {
    std::optional<double> minZoom;
    std::optional<double> maxZoom;
    std::optional<SceneBox> target;
};

/// What every overlay takes; absent values stay at the overlay's own defaults.
struct SceneOverlay {
    std::optional<std::int64_t> zIndex;
    std::optional<bool> visible;
    std::optional<double> opacity;
    std::optional<bool> tappable;
    std::string id;
};

/// Exactly one of the three sources is given.
struct SceneTiles {
    SceneOverlay overlay;
    std::string mbtiles;
    /// A path with {z}, {x} and {y} in it.
    std::string directory;
    /// An http, https or file address with {z}, {x} and {y} in it.
    std::string url;
    /// Absent: what the archive says.
    std::optional<std::string> attribution;
};

struct SceneLevelPlan {
    SceneOverlay overlay;
    std::string image;
    SceneBox box;
    double rotation = 0;
    std::optional<std::int64_t> level;
    std::string attribution;
};

struct SceneMarker {
    SceneOverlay overlay;
    CLLocationCoordinate2D coordinate;
    /// Empty: the built-in pin.
    std::string icon;
    /// Absent: the middle of an icon, the tip of the pin.
    std::optional<CGPoint> anchor;
    bool flat = false;
    double rotation = 0;
    bool draggable = false;
};

struct SceneCircle {
    SceneOverlay overlay;
    CLLocationCoordinate2D coordinate;
    /// Metres.
    double radius = 0;
    std::optional<UIColor> color;
};

struct ScenePolygon {
    SceneOverlay overlay;
    std::vector<CLLocationCoordinate2D> corners;
    std::optional<UIColor> color;
};

struct ScenePolyline {
    SceneOverlay overlay;
    std::vector<CLLocationCoordinate2D> vertices;
    std::optional<UIColor> color;
    /// Points.
    std::optional<double> width;
};

struct SceneGeoJson {
    SceneOverlay overlay;
    std::string file;
    /// For every feature, below what the rules and the feature itself say.
    GeoJsonStyle style;
    std::vector<GeoJsonRule> rules;
    /// Absent: what the file says.
    std::optional<std::string> attribution;
};

/// A place on one level of the side view's structure.
struct ScenePosition {
    CLLocationCoordinate2D coordinate;
    std::int64_t level = 0;
};

struct SceneSideMarker {
    std::string identifier;
    std::string icon;
    ScenePosition position;
};

struct SceneSidePath {
    std::vector<ScenePosition> points;
    std::optional<UIColor> color;
    /// Points.
    std::optional<double> width;
};

struct SceneSideview {
    SideviewBehaviour behaviour;
    std::string image;
    std::string levels;
    std::optional<std::int64_t> displayedLevel;
    std::optional<ScenePosition> userPosition;
    /// Empty without a user position.
    std::string userIcon;
    std::vector<SceneSideMarker> markers;
    std::optional<SceneSidePath> path;
};

/// A scene as its file describes it; nothing that it names has been opened. Paths are joined with the file's
/// folder. Longer than others, as a scene has many sections; the overlays' are read in sources of their own.
struct SceneFile {
    MapBehaviour behaviour;
    SceneView view;
    std::optional<SceneCamera> camera;
    SceneLimits limits;
    std::vector<SceneTiles> tiles;
    std::vector<SceneLevelPlan> levelPlans;
    std::vector<SceneMarker> markers;
    std::vector<SceneCircle> circles;
    std::vector<ScenePolygon> polygons;
    std::vector<ScenePolyline> polylines;
    std::vector<SceneGeoJson> geojson;
    std::optional<SceneSideview> sideView;
};

/// Reads and checks a scene file; the reason begins with the path and names the place in the file. A tile
/// archive or a GeoJSON file, told by the name's ending, is a scene that holds it and nothing else; such a
/// file is not opened.
Result<SceneFile> readSceneFile(const std::string& path);
/// The same for a text whose paths are relative to `folder`; the reason begins with the place.
Result<SceneFile> parseSceneFile(std::string_view text, const std::string& folder);

/// Whether a name is one of a file that is a scene of its own.
bool isDataFile(const std::string& path);

/// Empty when a picture of that size can be made, else what is wrong with it.
std::string faultOfViewSize(double width, double height, double scale);
/// Empty when the camera's numbers make sense, else what is wrong with them.
std::string faultOfCamera(const SceneCamera& camera);

/// "#rgb", "#rrggbb" or "#rrggbbaa"; empty for anything else.
std::optional<UIColor> colorFromHex(std::string_view text);

} // namespace trelmix::apps
