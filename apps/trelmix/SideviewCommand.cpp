#include "trelmix/SideviewCommand.h"

#include "common/picture/PictureFile.h"
#include "common/scene/MapScene.h"
#include "common/scene/SceneFraming.h"
#include "common/scene/SceneSideview.h"

#include <Trelmix/Host/SideviewHost.h>

#include <algorithm>
#include <cmath>

namespace trelmix::apps {

namespace {

/// An engine with the scene's camera, which the footprint comes from, but without anything on the map.
Result<std::shared_ptr<TrelmixMapEngine>> engineOfScene(const SceneFile& scene, const std::string& scenePath,
                                                        CGSize mapSize) {
    using Made = Result<std::shared_ptr<TrelmixMapEngine>>;
    SceneContent content;
    if (!scene.camera) {
        auto loaded = loadSceneContent(scene, scenePath);
        if (!loaded) {
            return Made::failure(loaded.reason());
        }
        content = std::move(*loaded);
    }
    const auto camera = cameraOfScene(scene, content, mapSize);
    return camera ? Made(makeEngine(scene, *camera, mapSize))
                  : Made::failure(scenePath + ": " + camera.reason());
}

/// Of the whole picture at the zoom at which the view shows it.
double fittedHeight(TMXSideviewScrollView& sideview, double width) {
    const CGSize picture = sideview.sideviewCameraRectangle()->superview()->frame().size;
    return std::max(1.0, std::round(picture.height * std::min(1.0, width / picture.width)));
}

} // namespace

ExitCode renderSideview(const SideviewOptions& options) {
    const std::string& path = options.view.sceneFile;
    if (const std::string fault = faultOfPictureName(options.output, path); !fault.empty()) {
        return complain(fault, ExitCode::badInput);
    }
    // The map keeps the size that the scene gives it; the option is about the side view.
    const auto original = readSceneFile(path);
    if (!original) {
        return complain(original.reason(), ExitCode::badInput);
    }
    const auto sized = readScene(options.view);
    if (!sized) {
        return complain(sized.reason(), ExitCode::badInput);
    }
    if (!sized->sideView) {
        return complain(path + ": sideView: is missing", ExitCode::badInput);
    }
    const auto engine = engineOfScene(*sized, path, {original->view.width, original->view.height});
    if (!engine) {
        return complain(engine.reason(), ExitCode::badInput);
    }
    CGSize size{sized->view.width, sized->view.height};
    const auto sideview = makeSceneSideview(*sized->sideView, path, size, *engine);
    if (!sideview) {
        return complain(sideview.reason(), ExitCode::badInput);
    }
    if (options.view.size.empty()) {
        size.height = fittedHeight(**sideview, size.width);
    }
    const auto host = SideviewHost::make(*sideview, size.width, size.height, sized->view.scale);
    if (!host) {
        return complain("no picture can be drawn: " + host.reason(), ExitCode::badInput);
    }
    const auto picture = (*host)->image();
    if (!picture) {
        return complain("no picture can be drawn: " + picture.reason(), ExitCode::badInput);
    }
    const std::string fault = savePictureFile(**picture, options.output);
    return fault.empty() ? ExitCode::done : complain(fault, ExitCode::badInput);
}

} // namespace trelmix::apps
