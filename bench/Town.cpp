#include "Town.h"

#include "common/tiles/MbtilesArchive.h"
#include "support/TileServer.h"

#include <Trelmix/TrelmixMapEngineFactory.h>
#include <Trelmix/TrelmixMapMarker.h>
#include <Trelmix/TrelmixMapPolygon.h>
#include <Trelmix/TrelmixMapPolyline.h>

#include <cstdio>
#include <cstdlib>
#include <random>

#include <csignal>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace trelmix::bench {
namespace {

[[noreturn]] void giveUp(const std::string& reason) {
    std::fprintf(stderr, "%s\n", reason.c_str());
    std::exit(2);
}

/// "/16/35319/20755.png" of the archive, or "not found".
TileReply answer(const apps::MbtilesArchive& archive, const std::string& path) {
    TileIndex index;
    if (std::sscanf(path.c_str(), "/%ld/%ld/%ld.png", &index.zoom, &index.x, &index.y) == 3) {
        if (const auto tile = archive.tile(index); tile && *tile) {
            return TileReply::ok(
                std::string(reinterpret_cast<const char*>((*tile)->data()), (*tile)->size()));
        }
    }
    return TileReply::of("404 Not Found", "");
}

/// In the child: serves until it is killed, by its parent's end if by nothing else.
[[noreturn]] void serve(const std::string& path, int port) {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    auto archive = apps::MbtilesArchive::open(path);
    if (!archive) {
        giveUp(archive.reason());
    }
    const TileServer server([&](const TileRequest& request) { return answer(**archive, request.path); });
    const std::string address = server.address();
    if (::write(port, address.data(), address.size()) < 0) {
        giveUp("the server's address cannot be told");
    }
    ::close(port);
    for (;;) {
        ::pause();
    }
}

} // namespace

std::string archiveArgument(int argc, char** argv) {
    if (argc < 2) {
        giveUp(std::string("usage: ") + argv[0] + " TILES.mbtiles");
    }
    return argv[1];
}

apps::SceneTiles tilesOfArchive(const std::string& path) {
    apps::SceneTiles tiles;
    tiles.mbtiles = path;
    return tiles;
}

apps::SceneTiles tilesOfServer(const std::string& address) {
    apps::SceneTiles tiles;
    tiles.url = address + "/{z}/{x}/{y}.png";
    return tiles;
}

apps::MapScene makeTown(const apps::SceneTiles& tiles, CGSize size, double zoom) {
    apps::SceneFile scene;
    scene.tiles = {tiles};
    const auto content = apps::loadSceneContent(scene, "scene");
    if (!content) {
        giveUp(content.reason());
    }
    return apps::buildMapScene(scene, *content, {kTownMiddle, zoom}, size,
                               std::make_shared<apps::TileServer>());
}

void addOverlays(apps::MapScene& map, const Overlays& counts) {
    std::mt19937 random(7);
    const auto scattered = [&](CLLocationCoordinate2D around, double reach) {
        std::uniform_real_distribution<double> offset(-reach, reach);
        return CLLocationCoordinate2D{around.latitude + offset(random),
                                      around.longitude + 2 * offset(random)};
    };
    const auto corners = [&](int count) {
        const CLLocationCoordinate2D middle = scattered(kTownMiddle, 0.004);
        std::vector<CLLocation> places;
        for (int i = 0; i < count; ++i) {
            places.emplace_back(scattered(middle, 0.0005));
        }
        return places;
    };
    const auto icon = UIImage::withPixels(16, 16, std::vector<std::uint8_t>(std::size_t{16} * 16 * 4, 255));
    for (int i = 0; i < counts.polygons; ++i) {
        map.overlays.push_back(TrelmixMapEngineFactory::createMapPolygonWithCorners(corners(12)));
    }
    for (int i = 0; i < counts.lines; ++i) {
        map.overlays.push_back(TrelmixMapEngineFactory::createMapPolylineWithVertices(corners(20)));
    }
    for (int i = 0; i < counts.markers; ++i) {
        map.overlays.push_back(
            TrelmixMapEngineFactory::createMapMarkerWith(icon, scattered(kTownMiddle, 0.004)));
    }
    for (const auto& overlay : map.overlays) {
        overlay->setMap(map.engine);
    }
}

ServerProcess::ServerProcess(const std::string& archive) {
    int ends[2];
    if (::pipe(ends) != 0 || (_process = ::fork()) < 0) {
        giveUp("no process for the tile server");
    }
    if (_process == 0) {
        ::close(ends[0]);
        serve(archive, ends[1]);
    }
    ::close(ends[1]);
    char text[64];
    const ssize_t length = ::read(ends[0], text, sizeof text);
    ::close(ends[0]);
    if (length <= 0) {
        giveUp("the tile server did not start");
    }
    _address.assign(text, static_cast<std::size_t>(length));
}

ServerProcess::~ServerProcess() {
    ::kill(_process, SIGKILL);
    ::waitpid(_process, nullptr, 0);
}

} // namespace trelmix::bench
