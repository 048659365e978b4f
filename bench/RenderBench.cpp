// Whole frames of the renderer against the same picture drawn by plain OpenGL ES calls in the same run: the
// same textures, filter, blending, samples and clear; quads out of view left out; markers, polygons and lines
// one buffer and one call a kind; ended by glFinish, nothing read back. Both sides draw into one bitmap that
// stands for the window, so that no copy can hide. Both get a new camera every frame, and frames alternate,
// so that what else the machine does hits both.

#include "BarePicture.h"
#include "Render/GLContext.h"
#include "Render/Renderer.h"
#include "Report.h"
#include "Window.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace trelmix::bench {
namespace {

/// Several samples where the window has none: the picture is resolved beside it, then copied.
constexpr double kSampledGoal = 1.3;

struct Case {
    const char* name;
    SceneSize scene;
    /// The most that a frame of one sample may take, in bare frames.
    double goal;
    bool movesMarkers = false;
};

struct View {
    int width;
    int height;
    double tilt;
    int samples;
};

DrawCamera cameraOf(const View& view, int frame) {
    DrawCamera camera;
    // A screen pixel straight below the camera is 0.7 units: tiles of 256 units are 366 pixels wide.
    const double distance = view.height * 0.7 * 0.5 / std::tan(camera.fieldOfView * 0.5);
    camera.eulerAngles = {view.tilt, 0, 0.3 + frame * 0.0005};
    camera.position = Matrix4d::rotation(camera.eulerAngles).transformPoint({0, 0, distance}) +
                      Vector3d{frame * 0.01, 0, 0};
    return camera;
}

std::string nameOf(const Case& c, const View& view) {
    return std::string(c.name) + ", " + std::to_string(view.width) + "x" + std::to_string(view.height) +
           (view.tilt > 0 ? ", tilt 45" : ", tilt 0") + (view.samples > 1 ? ", 4 samples" : ", 1 sample");
}

/// How many draw calls a frame made.
int measure(GLContext& context, const Case& c, const View& view, int frames) {
    Renderer renderer(context.capabilities(), context.graveyard(), {.samples = view.samples});
    Scene scene = makeScene(c.scene);
    const FrameTarget bitmap = makeBitmap(context, view.width, view.height);
    const RenderArea window = areaOf(bitmap);
    BarePicture bare(context, scene, window, view.samples);
    std::vector<double> ours;
    std::vector<double> theirs;
    int drawCalls = 0;
    const double aspect = static_cast<double>(view.width) / view.height;
    for (int frame = -5; frame < frames; ++frame) {
        DrawFrame drawn;
        drawn.camera = cameraOf(view, frame);
        if (c.movesMarkers) {
            moveMarkers(scene, frame);
        }
        drawn.list = scene.list;
        glFinish();
        const double start = seconds();
        const auto drawing = renderer.drawInto(drawn, window);
        glFinish();
        const double middle = seconds();
        if (c.movesMarkers) {
            bare.writeMarkers(scene);
        }
        bare.draw(drawn.camera.clipFromScene({}, aspect));
        glFinish();
        const double end = seconds();
        if (!drawing) {
            std::fprintf(stderr, "%s: %s\n", c.name, drawing.reason().c_str());
            std::exit(1);
        }
        drawCalls = drawing->drawCalls;
        if (frame >= 0) {
            ours.push_back((middle - start) * 1000);
            theirs.push_back((end - middle) * 1000);
        }
    }
    report({nameOf(c, view), median(ours), "ms", median(theirs),
            Goal{Goal::Kind::ratioAtMost, view.samples > 1 ? kSampledGoal : c.goal}});
    return drawCalls;
}

int run(int frames) {
    auto context = GLContext::makeOffscreen();
    if (!context) {
        std::fprintf(stderr, "%s\n", context.reason().c_str());
        return 3;
    }
    startTable("whole frames, " + (*context)->capabilities().renderer);
    const Case cases[] = {{"tiles", {}, 1.1},
                          {"tiles, 1,000 markers", {.markers = 1000}, 1.1},
                          {"tiles, 10,000 markers", {.markers = 10000}, 1.1},
                          {"tiles, 1,000 moving markers", {.markers = 1000}, 1.1, true},
                          {"tiles, 500 polygons and lines", {.polygons = 500, .lines = 500}, 1.1},
                          {"tiles, 500 circles", {.circles = 500}, 1.1}};
    for (const int samples : {1, 4}) {
        for (const auto& [width, height] : {std::pair{800, 600}, {1280, 720}}) {
            for (const double tilt : {0.0, 0.7853981633974483}) {
                int tileCalls = 0;
                for (const Case& c : cases) {
                    const View view{width, height, tilt, samples};
                    const int calls = measure(**context, c, view, samples == 1 ? frames : frames / 4);
                    tileCalls = &c == cases ? calls : tileCalls;
                    if (c.scene.markers == 10000) {
                        report({nameOf(c, view) + ": calls beyond the tiles'",
                                static_cast<double>(calls - tileCalls),
                                "",
                                {},
                                Goal{Goal::Kind::atMost, 20}});
                    }
                }
            }
        }
    }
    return 0;
}

} // namespace
} // namespace trelmix::bench

int main(int argc, char** argv) {
    const bool isQuick = argc > 1 && std::string_view(argv[1]) == "--quick";
    return trelmix::bench::run(isQuick ? 16 : 60);
}
