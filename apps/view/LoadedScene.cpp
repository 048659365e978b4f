#include "view/LoadedScene.h"

#include "common/scene/SceneImage.h"

namespace trelmix::apps {

Result<LoadedScene> loadScene(const ViewOptions& options, FileWatch& watch) {
    auto file = readScene(options);
    if (!file) {
        return Result<LoadedScene>::failure(file.reason());
    }
    std::vector<std::string> files = filesNamedBy(*file);
    files.push_back(options.sceneFile);
    watch.watch(files);
    auto content = loadSceneContent(*file, options.sceneFile);
    if (!content) {
        return Result<LoadedScene>::failure(content.reason());
    }
    LoadedScene scene{options.sceneFile, std::move(*file), std::move(*content), std::nullopt};
    if (scene.file.sideView) {
        const auto picture = loadSceneImage(scene.file.sideView->image);
        if (!picture) {
            return Result<LoadedScene>::failure(options.sceneFile + ": sideView.image: " + picture.reason());
        }
        scene.sidePicture = (*picture)->size();
    }
    return scene;
}

} // namespace trelmix::apps
