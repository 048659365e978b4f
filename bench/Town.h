#pragma once

#include "common/scene/MapScene.h"

#include <string>

#include <sys/types.h>

namespace trelmix::bench {

/// The middle of the sample's town.
inline constexpr CLLocationCoordinate2D kTownMiddle{54.93, 14.0212};

/// The sample's archive of tiles: the first argument. Ends the program when it is missing.
std::string archiveArgument(int argc, char** argv);
apps::SceneTiles tilesOfArchive(const std::string& path);
apps::SceneTiles tilesOfServer(const std::string& address);

/// A map of nothing but these tiles. Ends the program when they cannot be opened.
apps::MapScene makeTown(const apps::SceneTiles& tiles, CGSize size, double zoom);
struct Overlays {
    int markers = 0;
    int polygons = 0;
    int lines = 0;
};
/// Scattered around the town's middle.
void addOverlays(apps::MapScene& map, const Overlays& counts);

/// A server on the loopback for an archive's tiles, in a process of its own so that neither its memory nor
/// its work counts as ours. Start it while no other thread runs.
class ServerProcess {
public:
    explicit ServerProcess(const std::string& archive);
    ~ServerProcess();
    ServerProcess(const ServerProcess&) = delete;
    ServerProcess& operator=(const ServerProcess&) = delete;

    /// "http://127.0.0.1:12345".
    const std::string& address() const { return _address; }

private:
    pid_t _process;
    std::string _address;
};

} // namespace trelmix::bench
