#pragma once

#include "Engine/TrelmixMapEngineSceneView.h"

#include <Trelmix/Host/OffscreenHost.h>

#include <chrono>
#include <functional>
#include <memory>

namespace trelmix {

/// What `OffscreenHost::settle` does. One call of `settle`; main thread.
class TileWait {
public:
    using Progress = std::function<bool(const TileCounts&)>;

    /// @param life expires when the application destroys the host, and with it the engine, while it is
    /// called.
    /// @param seconds of real time; negative and NaN count as 0.
    TileWait(OffscreenHost& host, std::weak_ptr<const bool> life, const TrelmixMapEngineSceneView& engine,
             double seconds, const Progress& progress);

    TileCounts settle();

private:
    using Clock = std::chrono::steady_clock;

    TileCounts counts() const;
    void pumpAll();
    TileCounts waitForAnswers();
    void step(double seconds);
    bool isOver() const { return _isEnded || _life.expired() || Clock::now() >= _end; }

    OffscreenHost& _host;
    const std::weak_ptr<const bool> _life;
    const TrelmixMapEngineSceneView& _engine;
    const Progress& _progress;
    const Clock::time_point _end;
    bool _isEnded = false;
};

} // namespace trelmix
