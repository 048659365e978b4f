#include <Trelmix/Host/ViewHost.h>

#include "Host/WindowHost.h"

#include <utility>

namespace trelmix {

ViewHost::~ViewHost() = default;

Result<std::unique_ptr<ViewHost>> ViewHost::make(std::shared_ptr<TrelmixMapEngine> engine, Layout layout,
                                                 Options options) {
    using HostResult = Result<std::unique_ptr<ViewHost>>;
    auto hosted = HostedEngine::adopt(std::move(engine));
    if (!hosted) {
        return HostResult::failure(hosted.reason());
    }
    auto host = std::make_unique<WindowHost>(std::move(*hosted), options);
    if (auto reason = host->place(layout); !reason.empty()) {
        return HostResult::failure(std::move(reason));
    }
    return Result<std::unique_ptr<ViewHost>>(std::move(host));
}

} // namespace trelmix
