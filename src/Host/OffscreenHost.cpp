#include <Trelmix/Host/OffscreenHost.h>

#include "Host/HostedEngine.h"
#include "Host/TileWait.h"
#include "Platform/Foundation/CallerFault.h"
#include "Platform/Foundation/Clock.h"
#include "Platform/Foundation/RunLoop.h"
#include "Render/GLContext.h"
#include "Render/Renderer.h"

#include <cmath>
#include <optional>

namespace trelmix {

namespace {

using ImageResult = Result<std::shared_ptr<const UIImage>>;

class SteppedHost final : public OffscreenHost {
public:
    SteppedHost(HostedEngine engine, std::unique_ptr<GLContext> context, Renderer::Options options)
        : _engine(std::move(engine)), _context(std::move(context)) {
        _context->makeCurrent();
        _renderer = std::make_unique<Renderer>(_context->capabilities(), _context->graveyard(), options);
    }

    ~SteppedHost() override {
        const CurrentContextKeeper keeper;
        _context->makeCurrent();
        _renderer.reset();
    }

    bool resize(double width, double height, double scale) override {
        return requireMainThread("OffscreenHost::resize") && _engine.resize(width, height, scale).empty();
    }

    void step(double seconds) override {
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

    bool pump() override { return RunLoop::main().pump(); }

    void wait(double seconds) override { RunLoop::main().wait(seconds); }

    TileCounts settle(double seconds, const std::function<bool(const TileCounts&)>& progress) override {
        return requireMainThread("OffscreenHost::settle")
                   ? TileWait(*this, _life, _engine.engine(), seconds, progress).settle()
                   : TileCounts();
    }

    ImageResult image() override {
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

private:
    /// Why it failed; empty when it did not.
    std::string draw() {
        if (!_context->makeCurrent()) {
            return "the OpenGL ES context cannot be made current";
        }
        return _renderer->draw(_last->frame, _last->pixelWidth, _last->pixelHeight).reason();
    }

    /// With the size of its time: the engine's may have changed since.
    struct Step {
        DrawFrame frame;
        int pixelWidth = 0;
        int pixelHeight = 0;
        double scale = 1;
    };

    /// Ends with this host.
    std::shared_ptr<const bool> _life = std::make_shared<const bool>(true);
    HostedEngine _engine;
    std::unique_ptr<GLContext> _context;
    std::unique_ptr<Renderer> _renderer;
    std::optional<Step> _last;
};

} // namespace

OffscreenHost::~OffscreenHost() = default;

Result<std::unique_ptr<OffscreenHost>> OffscreenHost::make(std::shared_ptr<TrelmixMapEngine> engine,
                                                           Options options) {
    using HostResult = Result<std::unique_ptr<OffscreenHost>>;
    auto hosted = HostedEngine::adopt(std::move(engine));
    if (!hosted) {
        return HostResult::failure(hosted.reason());
    }
    if (auto reason = hosted->resize(options.width, options.height, options.scale); !reason.empty()) {
        return HostResult::failure(std::move(reason));
    }
    const CurrentContextKeeper keeper;
    auto context = GLContext::makeOffscreen();
    if (!context) {
        return HostResult::failure(context.reason());
    }
    Clock::set(Clock::now());
    Renderer::Options drawing;
    drawing.samples = options.samples;
    drawing.maximumTextureSize = options.maximumTextureSize;
    std::unique_ptr<OffscreenHost> host =
        std::make_unique<SteppedHost>(std::move(*hosted), std::move(*context), drawing);
    return host;
}

bool OffscreenHost::isDriverMissing(const std::string& reason) {
    return reason.ends_with(GLContext::missingDriverHint());
}

} // namespace trelmix
