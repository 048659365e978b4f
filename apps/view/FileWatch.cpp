#include "view/FileWatch.h"

#include "common/scene/SceneFile.h"

namespace trelmix::apps {

std::vector<std::string> filesNamedBy(const SceneFile& scene) {
    std::vector<std::string> files;
    for (const auto& plan : scene.levelPlans) {
        files.push_back(plan.image);
    }
    for (const auto& marker : scene.markers) {
        files.push_back(marker.icon);
    }
    for (const auto& geojson : scene.geojson) {
        files.push_back(geojson.file);
        files.push_back(geojson.style.icon.value_or(""));
        for (const auto& rule : geojson.rules) {
            files.push_back(rule.style.icon.value_or(""));
        }
    }
    if (const auto& side = scene.sideView) {
        files.insert(files.end(), {side->image, side->levels, side->userIcon});
        for (const auto& marker : side->markers) {
            files.push_back(marker.icon);
        }
    }
    std::erase(files, std::string());
    return files;
}

FileWatch::Version FileWatch::versionOf(const std::string& path) {
    std::error_code error;
    const auto time = std::filesystem::last_write_time(path, error);
    const auto size = error ? 0 : std::filesystem::file_size(path, error);
    return error ? Version{} : Version{time, size};
}

void FileWatch::watch(const std::vector<std::string>& paths) {
    std::map<std::string, Version> seen;
    for (const std::string& path : paths) {
        const auto known = _seen.find(path);
        seen[path] = known != _seen.end() ? known->second : versionOf(path);
    }
    _seen = std::move(seen);
}

bool FileWatch::hasChanged() {
    const auto now = std::chrono::steady_clock::now();
    if (now < _nextLook) {
        return false;
    }
    _nextLook = now + std::chrono::seconds(1);
    bool isAnyNew = false;
    for (auto& [path, version] : _seen) {
        const Version current = versionOf(path);
        isAnyNew = isAnyNew || (current != version && current != Version{});
        version = current;
    }
    return isAnyNew;
}

} // namespace trelmix::apps
