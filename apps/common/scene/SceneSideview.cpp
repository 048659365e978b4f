#include "common/scene/SceneSideview.h"

#include "common/JsonCursor.h"
#include "common/scene/SceneImage.h"

namespace trelmix::apps {

namespace {

constexpr UIColor kPathColor = UIColor::redColor();
constexpr double kPathWidth = 4;

/// Throws `JsonError` with the place in the scene.
std::shared_ptr<const UIImage> imageAt(const std::string& place, const std::string& path) {
    auto image = loadSceneImage(path);
    if (!image) {
        throw JsonError("sideView." + place + ": " + image.reason());
    }
    return std::move(*image);
}

void addMarkers(TMXSideviewScrollView& sideview, const std::vector<SceneSideMarker>& markers) {
    for (std::size_t i = 0; i < markers.size(); ++i) {
        const SceneSideMarker& marker = markers[i];
        sideview.updateSideviewMarkerWithIdentifier(
            marker.identifier, imageAt("markers[" + std::to_string(i) + "].icon", marker.icon));
        sideview.updateSideviewMarkerWithIdentifier(marker.identifier, marker.position.coordinate,
                                                    marker.position.level);
    }
}

void addPath(TMXSideviewScrollView& sideview, const SceneSidePath& path) {
    std::vector<CLLocation> locations;
    for (const ScenePosition& point : path.points) {
        locations.emplace_back(point.coordinate, static_cast<double>(point.level));
    }
    sideview.drawNavigationPath(locations, path.color.value_or(kPathColor), path.width.value_or(kPathWidth));
}

std::shared_ptr<TMXSideviewScrollView> make(const SceneSideview& scene, CGSize viewSize,
                                            std::shared_ptr<TrelmixMapEngine> engine) {
    auto sideview = TMXSideviewScrollView::make({{0, 0}, viewSize}, scene.behaviour);
    sideview->setupSideviewWith(imageAt("image", scene.image), scene.levels);
    if (const std::string fault = sideview->setupFailure(); !fault.empty()) {
        throw JsonError("sideView.levels: " + fault);
    }
    const auto levels = sideview->levelNumbers();
    const std::int64_t first = levels.empty() ? TMXSideviewScrollView::kInitialLevel : levels.front();
    sideview->setDisplayedLevel(scene.displayedLevel.value_or(first), std::move(engine));
    if (scene.userPosition) {
        sideview->setUserPositionIcon(imageAt("userPosition.icon", scene.userIcon));
        sideview->updateUserPosition(scene.userPosition->coordinate, scene.userPosition->level);
    }
    addMarkers(*sideview, scene.markers);
    if (scene.path) {
        addPath(*sideview, *scene.path);
    }
    return sideview;
}

} // namespace

Result<std::shared_ptr<TMXSideviewScrollView>> makeSceneSideview(const SceneSideview& scene,
                                                                 const std::string& scenePath,
                                                                 CGSize viewSize,
                                                                 std::shared_ptr<TrelmixMapEngine> engine) {
    try {
        return make(scene, viewSize, std::move(engine));
    } catch (const JsonError& error) {
        return Result<std::shared_ptr<TMXSideviewScrollView>>::failure(scenePath + ": " + error.what());
    }
}

} // namespace trelmix::apps
