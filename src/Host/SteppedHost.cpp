#include "Host/SteppedHost.h"

#include "Host/TileWait.h"
#include "Platform/Foundation/CallerFault.h"
#include "Platform/Foundation/Clock.h"
#include "Platform/Foundation/RunLoop.h"

#include <cmath>
#include <utility>

namespace trelmix {

using ImageResult = Result<std::shared_ptr<const UIImage>>;

SteppedHost::SteppedHost(HostedEngine engine, std::unique_ptr<GLContext> context, Renderer::Options options)
    : _engine(std::move(engine)), _context(std::move(context)) {
    _context->makeCurrent();
    _renderer = std::make_unique<Renderer>(_context->capabilities(), _context->graveyard(), options);
}

SteppedHost::~SteppedHost() {
    const CurrentContextKeeper keeper;
    _context->makeCurrent();
    _renderer.reset();
}

bool SteppedHost::resize(double width, double height, double scale) {
    return requireMainThread("OffscreenHost::resize") && _engine.resize(width, height, scale).empty();
}

void SteppedHost::step(double seconds) {
    if (!requireMainThread("OffscreenHost::step")) {
        return;
    }
    Clock::set(Clock::now() + (seconds > 0 && std::isfinite(seconds) ? seconds : 0.0));
    const std::weak_ptr<const bool> life = _life;
    DrawFrame frame = _engine.nextFrame(Clock::now());
    if (life.expired()) {
        return; // the application has destroyed this host
    }
    const bool isFirst = !_last;
    _last = Step{std::move(frame), _engine.pixelWidth(), _engine.pixelHeight(), _engine.scale()};
    if (isFirst) {
        // So that the driver makes its shaders and its surfaces while the first tiles are on their way.
        const CurrentContextKeeper keeper;
        draw();
    }
}

bool SteppedHost::pump() {
    return RunLoop::main().pump();
}

void SteppedHost::wait(double seconds) {
    RunLoop::main().wait(seconds);
}

TileCounts SteppedHost::settle(double seconds, const std::function<bool(const TileCounts&)>& progress) {
    return requireMainThread("OffscreenHost::settle")
               ? TileWait(*this, _life, _engine.engine(), seconds, progress).settle()
               : TileCounts();
}

ImageResult SteppedHost::image() {
    if (!requireMainThread("OffscreenHost::image")) {
        return ImageResult::failure("a picture is made on the main thread");
    }
    if (!_last) {
        return ImageResult::failure("no frame has been made yet");
    }
    const CurrentContextKeeper keeper;
    const std::string failure = draw();
    return failure.empty() ? _renderer->readBack(_last->scale) : ImageResult::failure(failure);
}

std::string SteppedHost::draw() {
    if (!_context->makeCurrent()) {
        return "the OpenGL ES context cannot be made current";
    }
    return _renderer->draw(_last->frame, _last->pixelWidth, _last->pixelHeight).reason();
}

} // namespace trelmix
