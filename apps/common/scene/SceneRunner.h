#pragma once

#include "common/scene/MapScene.h"

#include <Trelmix/Host/OffscreenHost.h>

#include <chrono>
#include <cstddef>
#include <functional>

namespace trelmix::apps {

/// How many tiles of the view are known to be there, or known to be missing, of how many.
struct TileCount {
    std::size_t answered = 0;
    std::size_t wanted = 0;
};

TileCount countOf(const MapScene& map);

/// Steps the host until every tile in view is answered and drawn, or until the time is up; the last frame
/// then shows what there is. Time is real time, also while the map's own clock stands.
/// @param progress called after every change of the counts; may be empty.
/// @returns the counts at the end: equal ones mean that nothing is missing.
TileCount runUntilTilesAreDrawn(OffscreenHost& host, const MapScene& map,
                                std::chrono::duration<double> timeout,
                                const std::function<void(TileCount)>& progress);

} // namespace trelmix::apps
