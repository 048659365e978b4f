#include "common/scene/SceneImage.h"

#include "common/Files.h"

#include <filesystem>

namespace trelmix::apps {

namespace {

constexpr std::uint64_t kMaximumImageBytes = 256ULL << 20U;

double scaleOfImageName(const std::string& path) {
    const std::string stem = std::filesystem::path(path).stem().string();
    return stem.ends_with("@2x") ? 2 : stem.ends_with("@3x") ? 3 : 1;
}

} // namespace

Result<std::shared_ptr<const UIImage>> loadSceneImage(const std::string& path) {
    using Loaded = Result<std::shared_ptr<const UIImage>>;
    const auto bytes = loadFile(path, kMaximumImageBytes);
    if (!bytes) {
        return Loaded::failure(path + ": " + bytes.reason());
    }
    std::string reason;
    auto image = UIImage::withData(*bytes, scaleOfImageName(path), &reason);
    return image ? Loaded(std::move(image)) : Loaded::failure(path + ": " + reason);
}

} // namespace trelmix::apps
