#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace trelmix::apps {

struct SceneFile;

/// The files whose change is a change of the scene: images, GeoJSON files and the side view's levels. Tiles
/// are not among them.
std::vector<std::string> filesNamedBy(const SceneFile& scene);

/// Notices that one of some files has been written anew. Asks the disk once a second at most.
class FileWatch {
public:
    /// Watches these from now on. Of those that were watched before, it stays what has been noticed.
    void watch(const std::vector<std::string>& paths);
    /// True once for all changes since the last call. A file that has gone has not changed, one that has come
    /// back has.
    bool hasChanged();

private:
    /// The same for two versions of a file only if it was written twice within one step of the disk's clock.
    struct Version {
        std::filesystem::file_time_type time;
        std::uintmax_t size = 0;
        friend bool operator==(const Version&, const Version&) = default;
    };
    static Version versionOf(const std::string& path);

    std::map<std::string, Version> _seen;
    std::chrono::steady_clock::time_point _nextLook;
};

} // namespace trelmix::apps
