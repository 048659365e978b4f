// Whole frames of the renderer against the same picture drawn by plain OpenGL ES calls in the same run: the
// same textures, filter, blending, samples, clear and resolve; quads out of view left out; markers, polygons
// and lines one buffer and one call a kind; ended by glFinish, nothing read back. Both sides get a new camera
// every frame, and frames alternate, so that what else the machine does hits both.

#include "BarePicture.h"
#include "Platform/Render/GLContext.h"
#include "Platform/Render/Renderer.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <string_view>
#include <vector>

namespace trelmix::bench {
namespace {

double seconds() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

/// Of the calling thread: the renderer's own work and that of the driver up to the hand-over to its
/// rasterisers.
double threadSeconds() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

double median(std::vector<double> values) {
    std::ranges::nth_element(values, values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2));
    return values[values.size() / 2];
}

struct Case {
    const char* name;
    SceneSize scene;
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

void measure(GLContext& context, const Case& c, const View& view, int frames) {
    Renderer renderer(context.capabilities(), context.graveyard(), {view.samples, 0, 1e9});
    Scene scene = makeScene(c.scene);
    BarePicture bare(context, scene, view.width, view.height, view.samples);
    std::vector<double> ours;
    std::vector<double> theirs;
    std::vector<double> ourThread;
    std::vector<double> theirThread;
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
        const double threadStart = threadSeconds();
        const double start = seconds();
        const auto report = renderer.draw(drawn, view.width, view.height);
        glFinish();
        const double middle = seconds();
        const double threadMiddle = threadSeconds();
        if (c.movesMarkers) {
            bare.writeMarkers(scene);
        }
        bare.draw(drawn.camera.clipFromScene({}, aspect));
        glFinish();
        const double end = seconds();
        if (!report) {
            std::printf("%s: %s\n", c.name, report.reason().c_str());
            return;
        }
        drawCalls = report->drawCalls;
        if (frame >= 0) {
            ours.push_back(middle - start);
            theirs.push_back(end - middle);
            ourThread.push_back(threadMiddle - threadStart);
            theirThread.push_back(threadSeconds() - threadMiddle);
        }
    }
    const double mine = median(ours) * 1000;
    const double plain = median(theirs) * 1000;
    std::printf("%-34s %4dx%-4d %3.0f %2d %9.2f %9.2f %7.2f %9.2f %9.2f %7d\n", c.name, view.width,
                view.height, view.tilt * 180 / 3.14159265358979, view.samples, mine, plain, mine / plain,
                median(ourThread) * 1000, median(theirThread) * 1000, drawCalls);
    std::fflush(stdout);
}

int run(int frames) {
    auto context = GLContext::makeOffscreen();
    if (!context) {
        std::fprintf(stderr, "%s\n", context.reason().c_str());
        return 3;
    }
    std::printf("driver: %s, medians of %d frames in ms\n", (*context)->capabilities().renderer.c_str(),
                frames);
    std::printf("%-34s %9s %3s %2s %9s %9s %7s %9s %9s %7s\n", "scene", "size", "deg", "sa", "renderer",
                "bare", "ratio", "CPU", "bare CPU", "calls");
    const Case cases[] = {{"tiles", {}},
                          {"tiles, 1,000 markers", {.markers = 1000}},
                          {"tiles, 10,000 markers", {.markers = 10000}},
                          {"tiles, 1,000 moving markers", {.markers = 1000}, true},
                          {"tiles, 500 polygons, 500 lines", {.polygons = 500, .lines = 500}},
                          {"tiles, 500 circles", {.circles = 500}}};
    for (const int samples : {1, 4}) {
        for (const auto& [width, height] : {std::pair{800, 600}, {1280, 720}}) {
            for (const double tilt : {0.0, 0.7853981633974483}) {
                for (const Case& c : cases) {
                    measure(**context, c, {width, height, tilt, samples}, frames);
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
    return trelmix::bench::run(isQuick ? 15 : 60);
}
