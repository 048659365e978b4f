#include "common/scene/SceneFileSideview.h"

#include "common/scene/SceneFileReading.h"

namespace trelmix::apps {

namespace {

constexpr std::array<std::string_view, 3> kPositionKeys = {"lat", "lon", "level"};

ScenePosition readPosition(const JsonCursor& at) {
    return {{at.required("lat").number(-90, 90), at.required("lon").number(-180, 180)},
            at.required("level").integer()};
}

SceneSideMarker readMarker(const JsonCursor& at, const std::string& folder) {
    at.expectObject({"identifier", "icon"}, kPositionKeys);
    return {at.required("identifier").text(), readPath(at.required("icon"), folder), readPosition(at)};
}

SceneSidePath readSidePath(const JsonCursor& at) {
    at.expectObject({"color", "width", "points"});
    SceneSidePath path;
    path.color = optionalColor(at);
    path.width = optionalWidth(at);
    at.required("points");
    forEachItem(at, "points", [&](const JsonCursor& point) {
        point.expectObject({}, kPositionKeys);
        path.points.push_back(readPosition(point));
    });
    return path;
}

} // namespace

SceneSideview readSideview(const JsonCursor& at, const std::string& folder) {
    at.expectObject({"image", "levels", "displayedLevel", "userPosition", "markers", "path", "behaviour"});
    SceneSideview view;
    view.image = readPath(at.required("image"), folder);
    view.levels = readPath(at.required("levels"), folder);
    if (const auto behaviour = at.member("behaviour")) {
        view.behaviour = isNatural(*behaviour) ? SideviewBehaviour::natural() : SideviewBehaviour::classic();
    }
    if (const auto level = at.member("displayedLevel")) {
        view.displayedLevel = level->integer();
    }
    if (const auto user = at.member("userPosition")) {
        user->expectObject({"icon"}, kPositionKeys);
        view.userPosition = readPosition(*user);
        view.userIcon = readPath(user->required("icon"), folder);
    }
    forEachItem(at, "markers",
                [&](const JsonCursor& marker) { view.markers.push_back(readMarker(marker, folder)); });
    if (const auto path = at.member("path")) {
        view.path = readSidePath(*path);
    }
    return view;
}

} // namespace trelmix::apps
