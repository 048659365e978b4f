#pragma once

#include "Platform/Network/URLCache.h"
#include "Platform/Network/URLSession.h"

#include <memory>

namespace trelmix {

/// The process's session and cache, by the settings of `NetworkSettings.h`; made on first use.
struct SharedNetwork {
    std::shared_ptr<URLSession> session;
    std::shared_ptr<URLCache> cache;

    /// Both empty once the process ends. Any thread.
    static SharedNetwork get();
};

} // namespace trelmix
