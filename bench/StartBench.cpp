// From nothing to the first complete picture of 800 x 600 at zoom 16, each time in a new process: after the
// map is created, driver and all, and after `trelmix render` is started.

#include "common/SceneRunner.h"
#include "Report.h"
#include "Town.h"

#include <Trelmix/Platform/NetworkSettings.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <spawn.h>

#include <sys/wait.h>

namespace trelmix::bench {
namespace {

namespace fs = std::filesystem;

constexpr CGSize kSize{800, 600};
constexpr double kZoom = 16;
constexpr int kRuns = 15;

/// A folder that goes with this.
struct Folder {
    fs::path path;
    Folder() {
        std::string name = (fs::temp_directory_path() / "trelmix-bench-XXXXXX").string();
        path = ::mkdtemp(name.data());
    }
    ~Folder() { fs::remove_all(path); }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
};

/// Milliseconds from the creation of the map to the pixels of the complete picture.
double firstPicture(const apps::SceneTiles& tiles) {
    NetworkSettings settings = networkSettings();
    settings.cacheFolder = "";
    setNetworkSettings(settings);
    const double start = seconds();
    const apps::MapScene map = makeTown(tiles, kSize, kZoom);
    const auto host = OffscreenHost::make(map.engine, {});
    if (!host) {
        std::fprintf(stderr, "%s\n", host.reason().c_str());
        std::_Exit(3);
    }
    const auto count = apps::runUntilTilesAreDrawn(**host, map, std::chrono::seconds(30),
                                                   std::function<void(apps::TileCount)>());
    const auto image = (*host)->image();
    const double milliseconds = (seconds() - start) * 1000;
    if (!image || count.wanted == 0 || count.answered < count.wanted) {
        std::_Exit(4);
    }
    return milliseconds;
}

/// Milliseconds from the start of the program to its end.
double wholeProcess(const fs::path& scene, const fs::path& picture) {
    std::string words[] = {TRELMIX_PROGRAM,  "render",  scene.string(), "-o",
                           picture.string(), "--cache", "off"};
    std::vector<char*> arguments;
    for (std::string& word : words) {
        arguments.push_back(word.data());
    }
    arguments.push_back(nullptr);
    const double start = seconds();
    pid_t process = 0;
    int status = 1;
    if (::posix_spawn(&process, arguments[0], nullptr, nullptr, arguments.data(), environ) != 0 ||
        ::waitpid(process, &status, 0) < 0 || status != 0) {
        std::fputs("trelmix render failed\n", stderr);
        std::exit(1);
    }
    return (seconds() - start) * 1000;
}

/// With the driver's cache of compiled shaders as the run before left it, or in an empty folder each time.
template <class Job>
double medianOfRuns(bool shadersAreCached, Job job) {
    const Folder kept;
    std::vector<double> times;
    for (int run = shadersAreCached ? -2 : 0; run < kRuns; ++run) {
        const Folder fresh;
        ::setenv("MESA_SHADER_CACHE_DIR", (shadersAreCached ? kept : fresh).path.c_str(), 1);
        const double time = job();
        if (run >= 0) {
            times.push_back(time);
        }
    }
    return median(times);
}

fs::path writeScene(const Folder& folder, const char* name, const std::string& tiles) {
    const fs::path path = folder.path / name;
    char camera[120];
    std::snprintf(camera, sizeof camera, R"({"target": {"lat": %.4f, "lon": %.4f}, "zoom": %g})",
                  kTownMiddle.latitude, kTownMiddle.longitude, kZoom);
    std::ofstream(path) << R"({"view": {"width": 800, "height": 600}, "camera": )" << camera
                        << R"(, "tiles": [{)" << tiles << "}]}";
    return path;
}

void run(const std::string& archive) {
    startTable("first complete picture, 800x600, zoom 16");
    const ServerProcess server(archive);
    const Folder folder;
    const fs::path scenes[] = {
        writeScene(folder, "server.json", R"("url": ")" + tilesOfServer(server.address()).url + '"'),
        writeScene(folder, "archive.json", R"("mbtiles": ")" + fs::absolute(archive).string() + '"')};
    for (const bool isCached : {true, false}) {
        const std::string state = isCached ? "" : ", empty shader cache";
        const auto fromMap = [&](const apps::SceneTiles& tiles) {
            return medianOfRuns(isCached, [&] { return inOwnProcess([&] { return firstPicture(tiles); }); });
        };
        const auto fromProcess = [&](const fs::path& scene) {
            return medianOfRuns(isCached, [&] { return wholeProcess(scene, folder.path / "picture.png"); });
        };
        const auto limit = [&](double cached, double empty) {
            return Goal{Goal::Kind::atMost, isCached ? cached : empty};
        };
        report({"map created, tiles from a server" + state,
                fromMap(tilesOfServer(server.address())),
                "ms",
                {},
                limit(100, 150)});
        report({"map created, tiles from an archive" + state,
                fromMap(tilesOfArchive(archive)),
                "ms",
                {},
                limit(60, 100)});
        report({"whole process, tiles from a server" + state,
                fromProcess(scenes[0]),
                "ms",
                {},
                limit(300, 450)});
        report({"whole process, tiles from an archive" + state,
                fromProcess(scenes[1]),
                "ms",
                {},
                limit(300, 450)});
    }
}

} // namespace
} // namespace trelmix::bench

int main(int argc, char** argv) {
    trelmix::bench::run(trelmix::bench::archiveArgument(argc, argv));
}
