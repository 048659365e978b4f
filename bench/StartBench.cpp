// From nothing to the first complete picture of 800 x 600 at zoom 16, each time in a new process: in a window
// with one sample, after the map is created and after the process is started; and the whole of
// `trelmix render`, with four samples and a PNG file. What the driver takes for itself stands beside the
// first: the tiles of one view drawn by plain calls, from the first shader on.

#include "BarePicture.h"
#include "common/scene/MapScene.h"
#include "Report.h"
#include "Town.h"
#include "Window.h"

#include <Trelmix/Platform/NetworkSettings.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string_view>

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

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

/// In the child: the map in a window, from its creation to the picture with every tile. Milliseconds.
double showInWindow(const apps::SceneTiles& tiles) {
    NetworkSettings settings = networkSettings();
    settings.cacheFolder = "";
    setNetworkSettings(settings);
    Window window(kSize);
    const double start = seconds();
    const apps::MapScene map = makeTown(tiles, kSize, kZoom);
    window.show(map.engine);
    for (;;) {
        while (window.host().pump()) {
        }
        const auto drawing = window.host().drawFrame();
        if (drawing == ViewHost::Drawing::failed) {
            std::_Exit(3);
        }
        const auto count = apps::countOf(map);
        if (drawing == ViewHost::Drawing::unchanged) {
            if (count.wanted > 0 && count.answered == count.wanted) {
                break;
            }
            window.host().waitForWork(1);
        }
    }
    glFinish();
    return (seconds() - start) * 1000;
}

/// In the child: as many tiles as a window shows, by plain OpenGL ES calls, from the first shader on.
double drawBare() {
    auto context = GLContext::makeOffscreen();
    if (!context) {
        std::_Exit(3);
    }
    const Scene scene = makeScene({});
    DrawCamera camera;
    camera.position = {0, 0, kSize.height * 0.7 * 0.5 / std::tan(camera.fieldOfView * 0.5)};
    const double start = seconds();
    const FrameTarget bitmap =
        makeBitmap(**context, static_cast<int>(kSize.width), static_cast<int>(kSize.height));
    BarePicture bare(**context, scene, areaOf(bitmap), 1);
    bare.draw(camera.clipFromScene({}, kSize.width / kSize.height));
    glFinish();
    return (seconds() - start) * 1000;
}

/// What the child told, and how long after its start it did.
struct Start {
    double picture = 0;
    double process = 0;
};

/// This program once more, with these arguments.
Start inNewProcess(std::vector<std::string> words) {
    words.insert(words.begin(), fs::read_symlink("/proc/self/exe"));
    std::vector<char*> arguments;
    for (std::string& word : words) {
        arguments.push_back(word.data());
    }
    arguments.push_back(nullptr);
    int ends[2];
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    Start start;
    pid_t process = 0;
    const double before = seconds();
    const bool isRunning =
        ::pipe(ends) == 0 && ::posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO) == 0 &&
        ::posix_spawn(&process, arguments[0], &actions, nullptr, arguments.data(), environ) == 0;
    ::close(ends[1]);
    const bool isTold =
        isRunning && ::read(ends[0], &start.picture, sizeof start.picture) == sizeof start.picture;
    start.process = (seconds() - before) * 1000;
    ::close(ends[0]);
    ::posix_spawn_file_actions_destroy(&actions);
    if (!isTold || ::waitpid(process, nullptr, 0) < 0) {
        std::fputs("a measurement's own process failed\n", stderr);
        std::exit(1);
    }
    return start;
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

/// Medians, with the driver's cache of compiled shaders as the run before left it, or in an empty folder each
/// time.
template <class Job>
Start medianOfRuns(bool shadersAreCached, Job job) {
    const Folder kept;
    std::vector<double> pictures;
    std::vector<double> processes;
    for (int run = shadersAreCached ? -2 : 0; run < kRuns; ++run) {
        const Folder fresh;
        ::setenv("MESA_SHADER_CACHE_DIR", (shadersAreCached ? kept : fresh).path.c_str(), 1);
        const Start start = job();
        if (run >= 0) {
            pictures.push_back(start.picture);
            processes.push_back(start.process);
        }
    }
    return {median(pictures), median(processes)};
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

struct Goals {
    double fromServer;
    double fromArchive;
    double process;
};

void compare(const std::string& archive, const std::string& server, bool isCached) {
    const std::string state = isCached ? "" : ", empty shader cache";
    const Goals goals = isCached ? Goals{100, 60, 300} : Goals{150, 100, 450};
    const auto child = [isCached](const char* what, const std::string& where) {
        return medianOfRuns(isCached, [&] { return inNewProcess({what, where}); });
    };
    const auto tell = [&](const std::string& name, double value, double limit,
                          std::optional<double> bare = {}) {
        report({name + state, value, "ms", bare, Goal{Goal::Kind::atMost, limit}});
    };
    const Start bare = child("--bare", archive);
    const Start fromServer = child("--server", server);
    const Start fromArchive = child("--archive", archive);
    tell("map created, tiles from a server", fromServer.picture, goals.fromServer, bare.picture);
    tell("map created, tiles from an archive", fromArchive.picture, goals.fromArchive, bare.picture);
    tell("process started, tiles from a server", fromServer.process, goals.process);
    tell("process started, tiles from an archive", fromArchive.process, goals.process);
    const Folder folder;
    const fs::path scene =
        writeScene(folder, "archive.json", R"("mbtiles": ")" + fs::absolute(archive).string() + '"');
    const Start render = medianOfRuns(isCached, [&] {
        return Start{0, wholeProcess(scene, folder.path / "picture.png")};
    });
    tell("all of trelmix render, tiles from an archive", render.process, goals.process);
}

void run(const std::string& archive) {
    startTable("first complete picture, 800x600, zoom 16");
    const ServerProcess server(archive);
    compare(archive, server.address(), true);
    compare(archive, server.address(), false);
}

/// What this program does when it is its own child: tells one figure, without the destructors of what the
/// driver and the library keep for the process.
[[noreturn]] void tellParent(double milliseconds) {
    std::_Exit(::write(STDOUT_FILENO, &milliseconds, sizeof milliseconds) == sizeof milliseconds ? 0 : 1);
}

} // namespace
} // namespace trelmix::bench

int main(int argc, char** argv) {
    using namespace trelmix::bench;
    const std::string_view what = argc > 2 ? argv[1] : "";
    if (what == "--bare") {
        tellParent(drawBare());
    } else if (what == "--server") {
        tellParent(showInWindow(tilesOfServer(argv[2])));
    } else if (what == "--archive") {
        tellParent(showInWindow(tilesOfArchive(argv[2])));
    }
    run(archiveArgument(argc, argv));
}
