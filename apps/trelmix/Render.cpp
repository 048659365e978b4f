#include "trelmix/Render.h"

#include "common/picture/Drawing.h"
#include "common/picture/PictureFile.h"
#include "common/scene/MapScene.h"
#include "common/scene/SceneFraming.h"

#include <Trelmix/Host/OffscreenHost.h>

#include <iostream>
#include <unistd.h>

namespace trelmix::apps {

namespace {

/// "tiles 12/40" on one line that is written over and over; nothing at all unless standard error is a
/// terminal.
class ProgressLine {
public:
    ~ProgressLine() {
        if (_isShown) {
            std::cerr << "\r\033[K" << std::flush;
        }
    }
    void show(const TileCounts& count) {
        if (_isTerminal && count.wanted > 0) {
            std::cerr << "\rtiles " << count.answered << "/" << count.wanted << "\033[K" << std::flush;
            _isShown = true;
        }
    }

private:
    bool _isTerminal = ::isatty(STDERR_FILENO) == 1;
    bool _isShown = false;
};

TileCounts drawAll(OffscreenHost& host, const MapScene& map, double timeoutSeconds) {
    ProgressLine progress;
    const TileCounts counts = host.settle(timeoutSeconds, [&](const TileCounts& now) {
        map.tileServer->rethrowFault();
        progress.show(now);
        return true;
    });
    map.tileServer->rethrowFault();
    return counts;
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

/// What is missing in the picture, one line each.
std::vector<std::string> missingTiles(const MapScene& map, const TileCounts& count) {
    std::vector<std::string> lines = tileFailures(map);
    if (count.answered < count.wanted) {
        lines.push_back(std::to_string(count.wanted - count.answered) + " of " +
                        std::to_string(count.wanted) + " tiles were not answered in time");
    }
    return lines;
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
    const TileCounts count = drawAll(**host, map, options.timeoutSeconds);
    mentionDamagedTiles(*content);
    if (const ExitCode code = writePicture(**host, content->attribution, options); code != ExitCode::done) {
        return code;
    }
    ExitCode code = ExitCode::done;
    for (const std::string& line : missingTiles(map, count)) {
        complain(line, ExitCode::tilesUnanswered);
        code = options.allowMissingTiles ? ExitCode::done : ExitCode::tilesUnanswered;
    }
    return code;
}

} // namespace trelmix::apps
