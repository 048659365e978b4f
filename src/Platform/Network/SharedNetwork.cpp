#include "Platform/Network/SharedNetwork.h"

#include <Trelmix/Platform/NetworkSettings.h>

#include <mutex>
#include <utility>

namespace trelmix {
namespace {

struct Holder {
    std::mutex mutex;
    NetworkSettings settings;
    SharedNetwork network;
    bool isOver = false;
};

NetworkSettings builtInSettings() {
    NetworkSettings settings;
    settings.userAgent = "Trelmix/" TRELMIX_VERSION;
    return settings;
}

// Never destroyed: a decoder may still ask for it while the process ends.
Holder& holder() {
    static auto* const instance = new Holder{{}, builtInSettings(), {}, false};
    return *instance;
}

URLSession::Settings sessionSettings(const NetworkSettings& settings) {
    return {settings.userAgent, settings.caFile, settings.largestAnswer, {}};
}

URLCache::Settings cacheSettings(const NetworkSettings& settings) {
    return {settings.cacheFolder ? *settings.cacheFolder : defaultCacheFolder(), settings.memoryCacheLimit,
            settings.diskCacheLimit};
}

void shutDown(bool forGood) {
    SharedNetwork dropped;
    Holder& shared = holder();
    const std::lock_guard guard(shared.mutex);
    shared.isOver = shared.isOver || forGood;
    std::swap(dropped, shared.network);
}

/// A line break would let the text add headers of its own.
std::string withoutControlCharacters(std::string text) {
    std::erase_if(text, [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7f; });
    return text;
}

} // namespace

SharedNetwork SharedNetwork::get() {
    // The thread ends before static data go, and the file is closed in order.
    static const struct AtExit {
        ~AtExit() { shutDown(true); }
    } atExit;
    Holder& shared = holder();
    const std::lock_guard guard(shared.mutex);
    if (!shared.isOver && !shared.network.session) {
        shared.network.session = std::make_shared<URLSession>(sessionSettings(shared.settings));
    }
    if (!shared.isOver && !shared.network.cache) {
        shared.network.cache = std::make_shared<URLCache>(cacheSettings(shared.settings));
    }
    return shared.network;
}

NetworkSettings networkSettings() {
    Holder& shared = holder();
    const std::lock_guard guard(shared.mutex);
    return shared.settings;
}

void setNetworkSettings(const NetworkSettings& settings) {
    std::shared_ptr<URLCache> dropped;
    Holder& shared = holder();
    const std::lock_guard guard(shared.mutex);
    const auto before = cacheSettings(shared.settings);
    shared.settings = settings;
    shared.settings.userAgent = withoutControlCharacters(settings.userAgent);
    if (shared.network.session) {
        shared.network.session->setSettings(sessionSettings(shared.settings));
    }
    if (cacheSettings(shared.settings) != before) {
        dropped.swap(shared.network.cache);
    }
}

void shutDownNetwork() {
    shutDown(false);
}

} // namespace trelmix
