// What a frame costs besides OpenGL ES: actions, overlay updates, tile checks, the draw list and the
// renderer's own work, with OpenGL ES calls that do nothing. Processor time of the one thread that does it
// all.

#include "Report.h"
#include "Town.h"

#include "Engine/TrelmixMapEngineSceneView.h"
#include "Platform/Foundation/Clock.h"
#include "Platform/Foundation/RunLoop.h"
#include "Render/Renderer.h"

#include <cstdio>
#include <cstdlib>

namespace trelmix::bench {
namespace {

constexpr int kFrames = 600;

struct Case {
    const char* name;
    CGSize size;
    Overlays overlays;
    double goal = 0;
};

GLCapabilities capabilities() {
    GLCapabilities all;
    all.maximumTextureSize = 8192;
    all.maximumTargetSize = 8192;
    all.has32BitIndices = true;
    all.hasLevelsOfAnySize = true;
    return all;
}

class Frames {
public:
    Frames(const std::string& archive, const Case& c)
        : _size(c.size), _map(makeTown(tilesOfArchive(archive), c.size, 17)) {
        addOverlays(_map, c.overlays);
        // Back and forth once, so that every tile on the way is there.
        for (int frame = 0; frame < kFrames; frame += 20) {
            draw(frame, 17);
            Clock::set(Clock::now() + 1);
            draw(frame, 17);
            _map.tileServer->waitUntilAnswered(std::chrono::seconds(30));
        }
    }

    /// Milliseconds of each frame while the map moves on, and its zoom with it or not.
    std::vector<double> times(bool zooms) {
        std::vector<double> all;
        for (int frame = 0; frame < kFrames; ++frame) {
            const int there = frame < kFrames / 2 ? frame : kFrames - frame;
            const float zoom = zooms ? 17 + 0.001F * static_cast<float>(there) : 17;
            all.push_back(draw(frame, zoom));
            if (_drawCalls == 0) {
                std::fputs("an empty frame\n", stderr);
                std::exit(1);
            }
        }
        return all;
    }

private:
    double draw(int frame, float zoom) {
        while (RunLoop::main().pump()) {
        }
        Clock::set(Clock::now() + 1.0 / 60);
        const double start = threadSeconds();
        auto change = _engine->currentCamera();
        change.target.x += frame < kFrames / 2 ? 30 : -30;
        change.zoom = zoom;
        change.fromGesture = true;
        _engine->internalSetCamera(change);
        const auto drawing = _renderer.draw(_engine->sceneView()->nextFrame(Clock::now()),
                                            static_cast<int>(_size.width), static_cast<int>(_size.height));
        _drawCalls = drawing ? drawing->drawCalls : 0;
        return (threadSeconds() - start) * 1000;
    }

    CGSize _size;
    apps::MapScene _map;
    std::shared_ptr<TrelmixMapEngineSceneView> _engine =
        std::dynamic_pointer_cast<TrelmixMapEngineSceneView>(_map.engine);
    std::shared_ptr<GLGraveyard> _graveyard = std::make_shared<GLGraveyard>();
    Renderer _renderer{capabilities(), _graveyard, {.samples = 1, .uploadSecondsPerFrame = 0.004}};
    int _drawCalls = 0;
};

void run(const std::string& archive) {
    startTable("processor time of a frame outside OpenGL ES");
    const CGSize small{800, 600};
    const Case cases[] = {{"tiles, 800x600", small, {}},
                          {"tiles, 1280x720", {1280, 720}, {}},
                          {"tiles, 500 markers, 20 lines", small, {.markers = 500, .lines = 20}, 1},
                          {"tiles, 1,000 markers", small, {.markers = 1000}},
                          {"tiles, 10,000 markers", small, {.markers = 10000}},
                          {"tiles, 500 polygons, 500 lines", small, {.polygons = 500, .lines = 500}}};
    for (const Case& c : cases) {
        const auto goal = c.goal > 0 ? std::optional(Goal{Goal::Kind::atMost, c.goal}) : std::nullopt;
        Frames frames(archive, c);
        const auto panning = frames.times(false);
        const auto zooming = frames.times(true);
        report({std::string(c.name) + ", panning", median(panning), "ms", {}, goal});
        report({std::string(c.name) + ", zooming", median(zooming), "ms", {}, goal});
        report({std::string(c.name) + ", zooming: 99th percentile", percentile(zooming, 0.99)});
    }
}

} // namespace
} // namespace trelmix::bench

int main(int argc, char** argv) {
    trelmix::bench::run(trelmix::bench::archiveArgument(argc, argv));
}
