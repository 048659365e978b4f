// A random walk over the sample's town with tiles from a server and every cache bounded: whether the memory
// of the process stays flat; fails when it does not. The second argument is its length in seconds, 60 when
// there is none.

#include "Report.h"
#include "Town.h"
#include "Window.h"

#include "Platform/Foundation/Clock.h"

#include <Trelmix/Platform/NetworkSettings.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <span>

#include <malloc.h>
#include <unistd.h>

namespace trelmix::bench {
namespace {

constexpr double kMiB = 1 << 20;
constexpr CGSize kSize{800, 600};

/// What the process has allocated and not given back. Flat from the start when nothing leaks, while resident
/// memory grows for minutes until the allocator's holes have come to rest.
double allocatedMiB() {
    const auto info = ::mallinfo2();
    return static_cast<double>(info.uordblks + info.hblkhd) / kMiB;
}

/// Of the whole process, now, without the holes that the allocator keeps: they grow for minutes, and would
/// hide what does not come back.
double residentMiB() {
    ::malloc_trim(0);
    std::ifstream file("/proc/self/statm");
    double pages = 0;
    file >> pages >> pages;
    return pages * static_cast<double>(::sysconf(_SC_PAGESIZE)) / kMiB;
}

/// Steps of up to a third of the view and half a zoom; now and then a jump.
class Walker {
public:
    std::shared_ptr<TrelmixMapEngineCamera> next() {
        const bool jumps = _random() % 40 == 0;
        const double reach = jumps ? 0.008 : 0.0008;
        _north = std::clamp(_north + number(-reach, reach), -0.008, 0.008);
        _east = std::clamp(_east + number(-2 * reach, 2 * reach), -0.016, 0.016);
        _zoom = std::clamp(_zoom + number(-0.5, 0.5), 16.0, 19.0);
        _rotation += number(-20, 20);
        return std::make_shared<TrelmixMapEngineCamera>(
            CLLocationCoordinate2D{kTownMiddle.latitude + _north, kTownMiddle.longitude + _east}, _rotation,
            number(0, 45), static_cast<float>(_zoom));
    }

private:
    double number(double low, double high) { return std::uniform_real_distribution(low, high)(_random); }
    std::mt19937 _random{11};
    double _north = 0;
    double _east = 0;
    double _zoom = 17;
    double _rotation = 0;
};

/// What is there each time the walk has come home.
struct Walk {
    std::vector<double> allocated; ///< MiB
    std::vector<double> resident;  ///< MiB
    int frames = 0;
};

/// True when nothing happened.
bool step(Window& window) {
    Clock::set(Clock::now() + 0.1);
    const bool ranAny = window.host().pump();
    const auto drawing = window.host().drawFrame(false);
    window.present();
    window.host().waitForWork(0.002);
    return !ranAny && drawing == ViewHost::Drawing::unchanged;
}

/// Until nothing has moved for a while; five seconds are long enough for every tile in view.
int rest(Window& window) {
    constexpr int kQuiet = 30;
    const double start = seconds();
    int frames = 0;
    for (int quiet = 0; quiet < kQuiet && seconds() - start < 5; ++frames) {
        quiet = step(window) ? quiet + 1 : 0;
    }
    return frames;
}

/// Views differ in what they need by far more than a leak adds in a minute, so the memory is read at one
/// place, at rest, with the caches full of whatever was seen on the way.
Walk walk(const apps::MapScene& map, Window& window, double length) {
    constexpr int kStepsOut = 40;
    constexpr int kFramesAStep = 6;
    Walk result;
    Walker walker;
    const auto home = std::make_shared<TrelmixMapEngineCamera>(kTownMiddle, 0, 0, 17.F);
    const double start = seconds();
    while (result.allocated.size() < 3 || seconds() - start < length) {
        for (int count = 0; count < kStepsOut; ++count) {
            map.engine->setCamera(walker.next(), false);
            for (int frame = 0; frame < kFramesAStep; ++frame) {
                step(window);
            }
        }
        map.engine->setCamera(home, false);
        result.frames += kStepsOut * kFramesAStep + rest(window);
        result.allocated.push_back(allocatedMiB());
        result.resident.push_back(residentMiB());
    }
    return result;
}

double least(std::span<const double> readings) {
    return readings.empty() ? 0 : *std::ranges::min_element(readings);
}

/// Whether its least grows by no more than the limit after the first third of the time, which fills the
/// caches. What is in flight comes and goes by tens of MiB; a leak raises the least reading too.
bool tell(const std::string& kind, std::span<const double> readings, double limit) {
    const std::size_t third = readings.size() / 3;
    const std::span<const double> thirds[] = {readings.first(third), readings.subspan(third, third),
                                              readings.subspan(2 * third)};
    for (std::size_t part = 0; part < 3; ++part) {
        report({kind + " memory, least of third " + std::to_string(part + 1), least(thirds[part]), "MiB"});
    }
    const double growth = least(thirds[2]) - least(thirds[1]);
    report({kind + " memory, growth of the least from the second third to the last",
            growth,
            "MiB",
            {},
            Goal{Goal::Kind::atMost, limit}});
    return growth <= limit;
}

/// Whether what is allocated stayed flat.
bool run(const std::string& archive, double length) {
    startTable("random walk of " + std::to_string(static_cast<int>(length)) +
               " s, caches of 32, 4 and 8 MiB");
    const ServerProcess server(archive);
    std::string folder = (std::filesystem::temp_directory_path() / "trelmix-walk-XXXXXX").string();
    NetworkSettings settings = networkSettings();
    settings.cacheFolder = ::mkdtemp(folder.data());
    settings.memoryCacheLimit = 4U << 20U;
    settings.diskCacheLimit = 8U << 20U;
    setNetworkSettings(settings);
    bool isFlat = false;
    {
        const apps::MapScene map = makeTown(tilesOfServer(server.address()), kSize, 17);
        map.layers[0]->setImageCacheLimit(std::size_t{32} << 20U);
        Window window(kSize);
        window.show(map.engine);
        const Walk walked = walk(map, window, length);
        report({"frames", static_cast<double>(walked.frames), ""});
        isFlat = tell("allocated", walked.allocated, 4);
        tell("resident", walked.resident, 16); // holes of the allocator come to rest late
    }
    shutDownNetwork();
    std::filesystem::remove_all(folder);
    return isFlat;
}

} // namespace
} // namespace trelmix::bench

int main(int argc, char** argv) {
    using namespace trelmix::bench;
    return run(archiveArgument(argc, argv), argc > 2 ? std::atof(argv[2]) : 60) ? 0 : 1;
}
