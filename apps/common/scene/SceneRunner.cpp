#include "common/scene/SceneRunner.h"

namespace trelmix::apps {

namespace {

using Clock = std::chrono::steady_clock;

// The layers look for tiles at most once in a second of the map's clock.
constexpr double kBetweenTileChecks = 1.0;
/// Seconds.
constexpr double kPatience = 0.05;
constexpr std::chrono::milliseconds kQuiet{500};
// Where a check finds new tiles every time, the picture is not going to settle.
constexpr int kMaximumChecks = 20;

void pumpAll(OffscreenHost& host, Clock::time_point end) {
    while (host.pump() && Clock::now() < end) {
    }
}

TileCount waitForAnswers(OffscreenHost& host, const MapScene& map, Clock::time_point end,
                         const std::function<void(TileCount)>& progress) {
    TileCount count;
    auto quietSince = Clock::now();
    while (true) {
        pumpAll(host, end);
        count = countOf(map);
        if (progress) {
            progress(count);
        }
        if (count.answered >= count.wanted || Clock::now() >= end) {
            return count;
        }
        const bool isOwed = !map.tileServer->waitUntilAnswered(std::chrono::milliseconds(0));
        host.wait(kPatience);
        pumpAll(host, end);
        const auto now = Clock::now();
        if (isOwed || countOf(map).answered != count.answered) {
            quietSince = now;
        } else if (now - quietSince > kQuiet) {
            // Perhaps a layer is going to ask again; what is on its way over a network comes all the same.
            host.step(kBetweenTileChecks);
            quietSince = now;
        }
    }
}

} // namespace

TileCount countOf(const MapScene& map) {
    TileCount count;
    for (const auto& layer : map.layers) {
        count.answered += layer->answeredTileCount();
        count.wanted += layer->wantedTileCount();
    }
    return count;
}

TileCount runUntilTilesAreDrawn(OffscreenHost& host, const MapScene& map,
                                std::chrono::duration<double> timeout,
                                const std::function<void(TileCount)>& progress) {
    const auto end = Clock::now() + std::chrono::duration_cast<Clock::duration>(timeout);
    TileCount count;
    std::size_t drawn = 0;
    host.step(0);
    for (int check = 0; check < kMaximumChecks; ++check) {
        count = waitForAnswers(host, map, end, progress);
        const bool isSettled = check > 0 && count.answered == drawn;
        if (isSettled || Clock::now() >= end) {
            break;
        }
        drawn = count.answered;
        host.step(kBetweenTileChecks);
    }
    host.step(0);
    return count;
}

} // namespace trelmix::apps
