#pragma once

#include "Engine/TrelmixMapEngineSceneView.h"

#include <Trelmix/Platform/Result.h>

#include <memory>

namespace trelmix {

/// An engine with the size that a host gives it. Keeps it alive. Main thread.
class HostedEngine {
public:
    /// Largest side of a view in pixels.
    static constexpr double kLargestSide = 16384;

    /// Fails when there is no engine, or one of a foreign kind, and on another thread than the main one.
    static Result<HostedEngine> adopt(std::shared_ptr<TrelmixMapEngine> engine);

    /// Points, and pixels per point. Empty when it went well, else why it did not: a size that is not finite,
    /// not positive or beyond the largest.
    std::string resize(double width, double height, double scale);

    TrelmixMapEngineSceneView& engine() const { return *_engine; }
    const std::shared_ptr<TrelmixMapEngineSceneView>& shared() const { return _engine; }
    /// Calls the application, which may destroy whoever holds this.
    DrawFrame nextFrame(double time) const { return _engine->sceneView()->nextFrame(time); }
    int pixelWidth() const { return _pixelWidth; }
    int pixelHeight() const { return _pixelHeight; }
    double scale() const { return _scale; }

private:
    explicit HostedEngine(std::shared_ptr<TrelmixMapEngineSceneView> engine) : _engine(std::move(engine)) {}

    std::shared_ptr<TrelmixMapEngineSceneView> _engine;
    int _pixelWidth = 0;
    int _pixelHeight = 0;
    double _scale = 1;
};

} // namespace trelmix
