#include "Platform/Network/URLCache.h"

#include <cstdlib>
#include <utility>

namespace trelmix {

URLCache::URLCache(const Settings& settings)
    : _memory(settings.memoryLimit), _disk(settings.folder, settings.diskLimit) {}

CachedBody URLCache::cachedBody(const URL& url) {
    CachedBody body = _memory.find(url.string());
    if (!body) {
        if (auto stored = _disk.find(url.string())) {
            body = std::make_shared<const std::vector<std::byte>>(std::move(*stored));
            _memory.insert(url.string(), body);
        }
    }
    return body;
}

void URLCache::store(const URL& url, const CachedBody& body) {
    if (body) {
        _memory.insert(url.string(), body);
        _disk.store(url.string(), *body);
    }
}

std::string defaultCacheFolder() {
    // The desktop's convention knows absolute paths only.
    const auto absolute = [](const char* name) {
        const char* const value = std::getenv(name);
        return value != nullptr && value[0] == '/' ? std::string(value) : std::string();
    };
    if (const std::string caches = absolute("XDG_CACHE_HOME"); !caches.empty()) {
        return caches + "/trelmix";
    }
    const std::string home = absolute("HOME");
    return home.empty() ? home : home + "/.cache/trelmix";
}

} // namespace trelmix
