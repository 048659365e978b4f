// A random walk over the sample's town with tiles from a server and every cache bounded: whether the memory
// of the process stays flat. The second argument is its length in seconds, 60 when there is none.

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

#include <unistd.h>

namespace trelmix::bench {
namespace {

constexpr double kMiB = 1 << 20;
constexpr CGSize kSize{800, 600};

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
    /// Largest resident memory of each twelfth of the time.
    std::vector<double> peaks = std::vector<double>(12);
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
            double& peak = result.peaks[static_cast<std::size_t>(passed / length * 12)];
            peak = std::max(peak, residentMiB());
        }
    }
    return result;
}

void run(const std::string& archive, double length) {
    startTable("random walk of " + std::to_string(static_cast<int>(length)) +
               " s, caches of 32, 4 and 8 MiB");
    const ServerProcess server(archive);
    std::string folder = (std::filesystem::temp_directory_path() / "trelmix-walk-XXXXXX").string();
    NetworkSettings settings = networkSettings();
    settings.cacheFolder = ::mkdtemp(folder.data());
    settings.memoryCacheLimit = 4U << 20U;
    settings.diskCacheLimit = 8U << 20U;
    setNetworkSettings(settings);
    {
        const apps::MapScene map = makeTown(tilesOfServer(server.address()), kSize, 17);
        map.layers[0]->setImageCacheLimit(std::size_t{32} << 20U);
        Window window(kSize);
        window.show(map.engine);
        const Walk walked = walk(map, window, length);
        const auto& peaks = walked.peaks;
        report({"frames", static_cast<double>(walked.frames), ""});
        for (std::size_t i = 0; i < peaks.size(); i += 3) {
            report({"resident memory, quarter " + std::to_string(i / 3 + 1),
                    *std::max_element(peaks.begin() + static_cast<std::ptrdiff_t>(i),
                                      peaks.begin() + static_cast<std::ptrdiff_t>(i + 3)),
                    "MiB"});
        }
        // The first third fills the caches.
        const double growth = *std::max_element(peaks.begin() + 8, peaks.end()) -
                              *std::max_element(peaks.begin() + 4, peaks.begin() + 8);
        report({"growth from the second third to the last", growth, "MiB", {}, Goal{Goal::Kind::atMost, 4}});
    }
    shutDownNetwork();
    std::filesystem::remove_all(folder);
}

} // namespace
} // namespace trelmix::bench

int main(int argc, char** argv) {
    trelmix::bench::run(trelmix::bench::archiveArgument(argc, argv), argc > 2 ? std::atof(argv[2]) : 60);
}
