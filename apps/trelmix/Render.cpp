#include "common/picture/Drawing.h"
#include "common/picture/PictureFile.h"
#include "common/scene/SceneRunner.h"
#include "trelmix/Commands.h"

#include <iostream>
#include <unistd.h>

namespace trelmix::apps {

namespace {

/// "tiles 12/40" on one line that is written over and over; nothing at all unless standard error is a
/// terminal.
class ProgressLine {
public:
    ~ProgressLine() {
        if (isShown) {
            std::cerr << "\r\033[K" << std::flush;
        }
    }
    void show(TileCount count) {
        if (isTerminal && count.wanted > 0) {
            std::cerr << "\rtiles " << count.answered << "/" << count.wanted << "\033[K" << std::flush;
            isShown = true;
        }
    }

private:
    bool isTerminal = ::isatty(STDERR_FILENO) == 1;
    bool isShown = false;
};

TileCount drawAll(OffscreenHost& host, const MapScene& map, double timeoutSeconds) {
    ProgressLine progress;
    return runUntilTilesAreDrawn(host, map, std::chrono::duration<double>(timeoutSeconds),
                                 [&](TileCount count) { progress.show(count); });
}

// Damaged tiles are gaps, not failures, but somebody who sees the gap wants to know.
void mentionDamagedTiles(const SceneContent& content) {
    for (const auto& source : content.tiles) {
        if (const std::size_t count = source ? source->faultCount() : 0; count > 0) {
            complain(source->store().name() + ": " + source->firstFault() +
                         (count > 1 ? " (and " + std::to_string(count - 1) + " more)" : ""),
                     ExitCode::done);
        }
    }
}

ExitCode writePicture(OffscreenHost& host, const std::string& attribution, const RenderOptions& options) {
    auto picture = host.image();
    if (!picture) {
        return complain("no picture can be drawn: " + picture.reason(), ExitCode::badInput);
    }
    if (!options.noAttribution && !attribution.empty()) {
        const double scale = (*picture)->scale();
        *picture =
            withAttribution(*picture, attributionImage(attribution, scale, (*picture)->size().width - 8));
    }
    const std::string fault = savePictureFile(**picture, options.output);
    return fault.empty() ? ExitCode::done : complain(fault, ExitCode::badInput);
}

} // namespace

ExitCode render(const RenderOptions& options) {
    if (const std::string fault = faultOfPictureName(options.output, options.view.sceneFile);
        !fault.empty()) {
        return complain(fault, ExitCode::badInput);
    }
    if (const std::string fault = applyNetworkOptions(options.network); !fault.empty()) {
        return complain(fault, ExitCode::badInput);
    }
    const auto scene = readScene(options.view);
    if (!scene) {
        return complain(scene.reason(), ExitCode::badInput);
    }
    const auto content = loadSceneContent(*scene, options.view.sceneFile);
    if (!content) {
        return complain(content.reason(), ExitCode::badInput);
    }
    const CGSize size{scene->view.width, scene->view.height};
    const auto camera = cameraOfScene(*scene, *content, size);
    if (!camera) {
        return complain(options.view.sceneFile + ": " + camera.reason(), ExitCode::badInput);
    }
    const MapScene map = buildMapScene(*scene, *content, *camera, size, std::make_shared<TileServer>());
    OffscreenHost::Options hostOptions;
    hostOptions.width = size.width;
    hostOptions.height = size.height;
    hostOptions.scale = scene->view.scale;
    const auto host = OffscreenHost::make(map.engine, hostOptions);
    if (!host) {
        return OffscreenHost::isDriverMissing(host.reason())
                   ? complain(host.reason(), ExitCode::noDriver)
                   : complain("no picture can be drawn: " + host.reason(), ExitCode::badInput);
    }
    const TileCount count = drawAll(**host, map, options.timeoutSeconds);
    mentionDamagedTiles(*content);
    if (const ExitCode code = writePicture(**host, content->attribution, options); code != ExitCode::done) {
        return code;
    }
    if (count.answered < count.wanted && !options.allowMissingTiles) {
        return complain(std::to_string(count.wanted - count.answered) + " of " +
                            std::to_string(count.wanted) + " tiles were not answered in time",
                        ExitCode::tilesUnanswered);
    }
    return ExitCode::done;
}

} // namespace trelmix::apps
