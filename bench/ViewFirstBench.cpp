// The first complete picture from a server 100 ms away, 800 x 600: beside the same map that asks for the
// tiles in view alone. A server that is far away answers six requests at a time, so what the margin takes is
// time that the view waits, unless the view comes first.
#include "Report.h"
#include "support/TileServer.h"
#include "Window.h"

#include <Trelmix/Platform/NetworkSettings.h>
#include <Trelmix/TileIndex.h>
#include <Trelmix/TrelmixMapEngineFactory.h>
#include <Trelmix/TrelmixMapTileLayer.h>

#include <cmath>
#include <set>
#include <string>
#include <thread>

namespace trelmix::bench {
namespace {

constexpr CGSize kSize{800, 600};
constexpr CLLocationCoordinate2D kMiddle{53.5, 10};
constexpr int kZoom = 16;
constexpr UIColor kBackground{1, 0, 1, 1};

/// The tile under a coordinate.
TileIndex tileAt(CLLocationCoordinate2D place) {
    const double count = std::exp2(kZoom);
    const double latitude = place.latitude * M_PI / 180;
    return {static_cast<std::int64_t>(std::floor((place.longitude + 180) / 360 * count)),
            static_cast<std::int64_t>(std::floor((1 - std::asinh(std::tan(latitude)) / M_PI) / 2 * count)),
            kZoom};
}

/// What an application finds by asking for the coordinates under the points of its view.
std::set<TileIndex> tilesUnder(const TrelmixMapEngine& map) {
    std::set<TileIndex> tiles;
    const auto projection = map.projection();
    for (int x = 0; x <= static_cast<int>(kSize.width); x += 4) {
        for (int y = 0; y <= static_cast<int>(kSize.height); y += 4) {
            tiles.insert(tileAt(projection->worldCoordinateFor({1.0 * x, 1.0 * y})));
        }
    }
    return tiles;
}

/// Whether any ground is still without a tile.
bool hasHoles() {
    std::vector<std::uint8_t> pixels(static_cast<std::size_t>(kSize.width * kSize.height) * 4);
    glReadPixels(0, 0, static_cast<int>(kSize.width), static_cast<int>(kSize.height), GL_RGBA,
                 GL_UNSIGNED_BYTE, pixels.data());
    for (std::size_t i = 0; i < pixels.size(); i += 4) {
        if (pixels[i + 1] < 100) {
            return true;
        }
    }
    return false;
}

/// Milliseconds from the layer to the first frame without a hole.
double firstCompletePicture(double tilt, bool inViewOnly) {
    NetworkSettings settings = networkSettings();
    settings.cacheFolder = "";
    settings.memoryCacheLimit = 0;
    setNetworkSettings(settings);
    const auto white =
        UIImage::withPixels(256, 256, std::vector<std::uint8_t>(256 * 256 * 4, 255))->pngData();
    const std::string body(reinterpret_cast<const char*>(white.data()), white.size());
    TileServer server([&](const TileRequest&) {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        return TileReply::ok(body);
    });
    Window window(kSize);
    const auto map = TrelmixMapEngineFactory::createMap();
    map->setBackgroundColor(kBackground);
    map->initialiseWithTarget(kMiddle, kZoom);
    map->setCameraWithRotation(20, tilt, kZoom, false);
    window.show(map);
    window.host().pump();
    window.host().drawFrame();
    const std::set<TileIndex> inView = tilesUnder(*map);
    const auto layer = TrelmixMapEngineFactory::createMapTilesNode();
    layer->setImageUrlLayer(true);
    layer->setImageUrlConstructor([&](std::uint64_t x, std::uint64_t y, std::uint64_t zoom) {
        const TileIndex tile{static_cast<std::int64_t>(x), static_cast<std::int64_t>(y),
                             static_cast<std::int64_t>(zoom)};
        return !inViewOnly || inView.contains(tile)
                   ? URL::fromString(server.address() + "/" + std::to_string(zoom) + "/" + std::to_string(x) +
                                     "/" + std::to_string(y) + ".png")
                   : std::nullopt;
    });
    layer->setMap(map);
    const double start = seconds();
    do {
        window.host().pump();
        window.host().drawFrame();
        window.host().waitForWork(0.002);
    } while (hasHoles() && seconds() < start + 30);
    const double time = (seconds() - start) * 1000;
    layer->setMap(nullptr);
    shutDownNetwork();
    return time;
}

void run() {
    startTable("first complete picture, server 100 ms away, 800x600; bare: only the tiles in view");
    for (const double tilt : {0.0, 40.0}) {
        const auto measured = [tilt](bool inViewOnly) {
            return inOwnProcess([=] {
                std::vector<double> times;
                for (int i = 0; i < 5; ++i) {
                    times.push_back(firstCompletePicture(tilt, inViewOnly));
                }
                return median(times);
            });
        };
        const double bare = measured(true);
        report({"tilt " + std::to_string(static_cast<int>(tilt)), measured(false), "ms", bare,
                Goal{Goal::Kind::ratioAtMost, 1.1}});
    }
}

} // namespace
} // namespace trelmix::bench

int main() {
    trelmix::bench::run();
}
