#include "Host/HostedEngine.h"

#include "Platform/Foundation/SceneLock.h"
#include "Platform/Foundation/Thread.h"

#include <cmath>
#include <utility>

namespace trelmix {

Result<HostedEngine> HostedEngine::adopt(std::shared_ptr<TrelmixMapEngine> engine) {
    if (!Thread::isMainThread()) {
        return Result<HostedEngine>::failure(
            "a host must be made on the main thread; chooseMainThread makes another thread that one");
    }
    auto own = std::dynamic_pointer_cast<TrelmixMapEngineSceneView>(std::move(engine));
    if (!own) {
        return Result<HostedEngine>::failure("the host needs an engine made by TrelmixMapEngineFactory");
    }
    return HostedEngine(std::move(own));
}

std::string HostedEngine::resize(double width, double height, double scale) {
    const double pixelWidth = std::round(width * scale);
    const double pixelHeight = std::round(height * scale);
    const bool fits = std::isfinite(scale) && scale > 0 && pixelWidth >= 1 && pixelWidth <= kLargestSide &&
                      pixelHeight >= 1 && pixelHeight <= kLargestSide;
    if (!fits) {
        return "a view must have 1 to 16384 pixels a side";
    }
    _pixelWidth = static_cast<int>(pixelWidth);
    _pixelHeight = static_cast<int>(pixelHeight);
    _scale = scale;
    const SceneLock lock;
    const CGSize before = _engine->frame().size;
    if (before.width == width && before.height != height) {
        // The projection takes a new scale only with a new width; sizes on screen would be wrong for a new
        // height.
        _engine->setFrame({{0, 0}, {width + 1, height}});
        _engine->layoutIfNeeded();
    }
    _engine->setFrame({{0, 0}, {width, height}});
    _engine->layoutIfNeeded();
    return {};
}

} // namespace trelmix
