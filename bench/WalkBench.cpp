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

/// Of the whole process, now.
double residentMiB() {
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

struct Walk {
    /// The largest of each twelfth of the time, MiB.
    std::vector<double> allocated = std::vector<double>(12);
    std::vector<double> resident = std::vector<double>(12);
    int frames = 0;
};

Walk walk(const apps::MapScene& map, Window& window, double length) {
    Walk result;
    Walker walker;
    const double start = seconds();
    for (double passed = 0; passed < length; passed = seconds() - start) {
        if (result.frames % 6 == 0) {
            map.engine->setCamera(walker.next(), false);
        }
        Clock::set(Clock::now() + 0.1);
        window.host().pump();
        window.host().drawFrame(false);
        window.host().waitForWork(0.002);
        if (++result.frames % 10 == 0) {
            const auto twelfth = static_cast<std::size_t>(passed / length * 12);
            result.allocated[twelfth] = std::max(result.allocated[twelfth], allocatedMiB());
            result.resident[twelfth] = std::max(result.resident[twelfth], residentMiB());
        }
    }
    return result;
}

double largest(std::span<const double> peaks) {
    return *std::ranges::max_element(peaks);
}

/// Whether it grows by no more than the limit after the first third of the time, which fills the caches.
bool tell(const std::string& kind, std::span<const double> peaks, double limit) {
    for (std::size_t quarter = 0; quarter < 4; ++quarter) {
        report({kind + " memory, quarter " + std::to_string(quarter + 1),
                largest(peaks.subspan(quarter * 3, 3)), "MiB"});
    }
    const double growth = largest(peaks.subspan(8, 4)) - largest(peaks.subspan(4, 4));
    report({kind + " memory, growth from the second third to the last",
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
        // In a short walk the largest views of each third differ, and the allocator has not come to rest.
        const bool isShort = length < 300;
        isFlat = tell("allocated", walked.allocated, isShort ? 12 : 4);
        tell("resident", walked.resident, isShort ? 32 : 4);
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
