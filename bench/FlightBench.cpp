// A flight of 600 frames over the sample's town as a window on a software driver shows it, 800 x 600: how
// much longer the slow frames take than the usual ones. A frame is what is pumped, updated, drawn and
// finished. Once with every tile in memory, once with all of them coming from a server while the camera
// moves, each after one pass to warm up.

#include "Report.h"
#include "Town.h"
#include "Window.h"

#include "Platform/Foundation/Clock.h"

#include <Trelmix/Platform/NetworkSettings.h>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <string_view>
#include <thread>

namespace trelmix::bench {
namespace {

constexpr int kFrames = 600;
constexpr double kFrameSeconds = 1.0 / 60;
constexpr CGSize kSize{800, 600};

/// Along a curve through the town, turning, tilting, and from zoom 16 to 17.8 and back.
std::shared_ptr<TrelmixMapEngineCamera> cameraAt(int frame) {
    const double t = static_cast<double>(frame) / kFrames;
    const double turn = 2 * 3.14159265358979 * t;
    return std::make_shared<TrelmixMapEngineCamera>(
        CLLocationCoordinate2D{kTownMiddle.latitude + 0.004 * std::sin(turn),
                               kTownMiddle.longitude + 0.009 * std::sin(2 * turn)},
        90 * std::sin(turn), 22.5 * (1 - std::cos(turn)), static_cast<float>(16.9 - 0.9 * std::cos(turn)));
}

/// Milliseconds of each frame. In real time the next frame waits for its sixtieth of a second, as with a
/// display.
std::vector<double> fly(const apps::MapScene& map, Window& window, bool inRealTime) {
    std::vector<double> times;
    for (int frame = 0; frame < kFrames; ++frame) {
        const double start = seconds();
        map.engine->setCamera(cameraAt(frame), false);
        Clock::set(Clock::now() + kFrameSeconds);
        while (window.host().pump()) {
        }
        if (window.host().drawFrame(true) != ViewHost::Drawing::drawn) {
            std::fprintf(stderr, "%s\n", window.host().failure().c_str());
            std::exit(1);
        }
        glFinish();
        const double elapsed = seconds() - start;
        times.push_back(elapsed * 1000);
        if (inRealTime && elapsed < kFrameSeconds) {
            window.host().waitForWork(0);
            std::this_thread::sleep_for(std::chrono::duration<double>(kFrameSeconds - elapsed));
        }
    }
    return times;
}

void tell(const std::string& name, const std::vector<double>& times, double goal) {
    const double usual = median(times);
    report({name + ": median", usual});
    report({name + ": 99th percentile, in medians",
            percentile(times, 0.99) / usual,
            "",
            {},
            Goal{Goal::Kind::atMost, goal}});
    report({name + ": longest", percentile(times, 1)});
}

/// Every tile of the flight, decoded and in the layer.
void bringAll(const apps::MapScene& map, Window& window) {
    for (int frame = 0; frame < kFrames; frame += 3) {
        map.engine->setCamera(cameraAt(frame), false);
        Clock::set(Clock::now() + 1);
        do {
            window.host().drawFrame(false);
            while (window.host().pump()) {
            }
            window.host().waitForWork(0.001);
        } while (map.layers[0]->tileCounts().answered < map.layers[0]->tileCounts().wanted);
    }
}

void flyWithTilesInMemory(const std::string& archive) {
    const apps::MapScene map = makeTown(tilesOfArchive(archive), kSize, 16);
    map.layers[0]->setImageCacheLimit(std::nullopt);
    Window window(kSize);
    window.show(map.engine);
    bringAll(map, window);
    fly(map, window, false);
    tell("tiles in memory", fly(map, window, false), 2);
}

void flyWhileTilesStream(const std::string& address) {
    const apps::MapScene map = makeTown(tilesOfServer(address), kSize, 16);
    Window window(kSize);
    window.show(map.engine);
    fly(map, window, true);
    // Off the map and on again: the layer forgets its images.
    map.layers[0]->setMap(nullptr);
    map.layers[0]->setMap(map.engine);
    tell("tiles streaming", fly(map, window, true), 3);
    shutDownNetwork();
}

void run(const std::string& archive) {
    startTable("flight of 600 frames, 800x600, 1 sample");
    const ServerProcess server(archive);
    NetworkSettings settings = networkSettings();
    settings.cacheFolder = "";
    settings.memoryCacheLimit = 0;
    setNetworkSettings(settings);
    flyWithTilesInMemory(archive);
    flyWhileTilesStream(server.address());
}

} // namespace
} // namespace trelmix::bench

int main(int argc, char** argv) {
    trelmix::bench::run(trelmix::bench::archiveArgument(argc, argv));
}
