#include "Host/TileWait.h"

#include "Engine/SceneUpdate.h"

#include <algorithm>
#include <utility>

namespace trelmix {

namespace {

// The layers look for tiles at most once in a second of the map's clock.
constexpr double kBetweenTileChecks = 1.0;
/// Seconds.
constexpr double kPatience = 0.05;
constexpr std::chrono::milliseconds kQuiet{500};
// Where a check finds new tiles every time, the picture is not going to settle.
constexpr int kMaximumChecks = 20;
/// Seconds; more than a year is for ever, and a clock must not run over.
constexpr double kLongest = 3e7;

} // namespace

TileWait::TileWait(OffscreenHost& host, std::weak_ptr<const bool> life,
                   const TrelmixMapEngineSceneView& engine, double seconds, const Progress& progress)
    : _host(host), _life(std::move(life)), _engine(engine), _progress(progress),
      _end(Clock::now() + std::chrono::duration_cast<Clock::duration>(
                              std::chrono::duration<double>(seconds > 0 ? std::min(seconds, kLongest) : 0))) {
}

TileCounts TileWait::settle() {
    TileCounts found;
    std::size_t drawn = 0;
    step(0);
    for (int check = 0; check < kMaximumChecks; ++check) {
        found = waitForAnswers();
        const bool isSettled = check > 0 && found.answered == drawn;
        if (isSettled || isOver()) {
            break;
        }
        drawn = found.answered;
        step(kBetweenTileChecks);
    }
    step(0);
    return found;
}

TileCounts TileWait::counts() const {
    return _life.expired() ? TileCounts() : tileCounts(*_engine.sceneView()->scene());
}

void TileWait::step(double seconds) {
    if (!_life.expired()) {
        _host.step(seconds);
    }
}

void TileWait::pumpAll() {
    while (!_life.expired() && _host.pump() && !isOver()) {
    }
}

TileCounts TileWait::waitForAnswers() {
    auto quietSince = Clock::now();
    while (true) {
        pumpAll();
        TileCounts found = counts();
        _isEnded = _isEnded || (_progress && !_progress(found));
        if (found.answered >= found.wanted || isOver()) {
            return found;
        }
        _host.wait(kPatience);
        pumpAll();
        const auto now = Clock::now();
        if (counts().answered != found.answered) {
            quietSince = now;
        } else if (now - quietSince > kQuiet) {
            // Perhaps a layer is going to ask again; what is on its way comes all the same.
            step(kBetweenTileChecks);
            quietSince = now;
        }
    }
}

} // namespace trelmix
