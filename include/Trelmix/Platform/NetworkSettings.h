/// @file
/// How tile images are loaded and remembered, for the whole process.
#pragma once

#include <Trelmix/Export.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace trelmix {

/// Settings of the one connection to the network and the one cache of answers that all tile layers with URLs
/// share. A value; take the current ones, change them, set them.
struct NetworkSettings {
    /// What servers are told about who asks. Public tile servers require one that names the application and
    /// a way to reach its makers. Control characters are left out.
    std::string userAgent;
    /// A file of certificates (PEM) to trust instead of the system's; empty for the system's. Certificates
    /// are always checked.
    std::string caFile;
    /// Bytes of one answer, decompressed; larger ones count as missing.
    std::size_t largestAnswer = std::size_t{16} << 20;

    /// The folder of the cache's file, made when it is missing. Absent: "trelmix" in the user's folder for
    /// caches (XDG_CACHE_HOME, or .cache at home). Empty: nothing is kept on disk.
    std::optional<std::string> cacheFolder;
    /// Bytes kept on disk; the least recently used answers go first.
    std::uint64_t diskCacheLimit = std::uint64_t{256} << 20;
    /// Bytes kept in memory; 0 for none.
    std::size_t memoryCacheLimit = std::size_t{16} << 20;
};

/// The settings as they are; the built-in ones before the first call of `setNetworkSettings`. Any thread.
TRELMIX_API NetworkSettings networkSettings();

/// Any thread; returns at once. Requests that have not left for the server use the new agent, certificates
/// and limit. When a setting of the cache differs, look-ups and answers from now on use a new cache; the disk
/// is first touched when a tile is looked up.
TRELMIX_API void setNetworkSettings(const NetworkSettings& settings);

/// Drops all requests, those under way too, and closes the cache's file; waits until that is done. Their
/// tiles are asked for again by their layers' next checks, where they are in view. The next request begins
/// anew. Any thread. What is open when the process ends is
/// shut down by itself.
TRELMIX_API void shutDownNetwork();

} // namespace trelmix
