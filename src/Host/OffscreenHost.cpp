#include <Trelmix/Host/OffscreenHost.h>

#include "Host/SteppedHost.h"
#include "Platform/Foundation/Clock.h"

#include <utility>

namespace trelmix {

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
