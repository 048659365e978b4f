#pragma once

#include "Platform/Network/DiskCache.h"
#include "Platform/Network/MemoryCache.h"

#include <Trelmix/Platform/URL.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>

namespace trelmix {

/// Answers of earlier requests, whatever their age: a tier in memory over one on disk, each within its limit,
/// least recently used out first.
///
/// Nothing here fails visibly: without a usable disk only the memory remembers. Any thread, but for the ones
/// that draw: looking up waits for the disk.
class URLCache {
public:
    struct Settings {
        /// Where the file lies; made when it is missing. Empty: nothing on disk.
        std::string folder;
        std::size_t memoryLimit = std::size_t{16} << 20;
        std::uint64_t diskLimit = std::uint64_t{256} << 20;
        friend bool operator==(const Settings&, const Settings&) = default;
    };

    explicit URLCache(const Settings& settings);

    /// The body that was stored for the address; empty when there is none.
    CachedBody cachedBody(const URL& url);
    void store(const URL& url, const CachedBody& body);

private:
    MemoryCache _memory;
    DiskCache _disk;
};

/// "trelmix" in the user's folder for caches; empty when there is no such folder.
std::string defaultCacheFolder();

} // namespace trelmix
