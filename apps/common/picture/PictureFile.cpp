#include "common/picture/PictureFile.h"

#include "common/Files.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <optional>

namespace trelmix::apps {

namespace {

constexpr const char* kStandardOutput = "-";

enum class Format { png, jpeg, webp };

std::optional<Format> formatOf(const std::string& path) {
    if (path == kStandardOutput || isDeviceOrPipe(path)) {
        return Format::png;
    }
    std::string ending = std::filesystem::path(path).extension().string();
    std::transform(ending.begin(), ending.end(), ending.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    if (ending == ".png") {
        return Format::png;
    }
    if (ending == ".jpg" || ending == ".jpeg") {
        return Format::jpeg;
    }
    return ending == ".webp" ? std::optional(Format::webp) : std::nullopt;
}

std::vector<std::byte> encoded(const UIImage& picture, Format format) {
    switch (format) {
    case Format::jpeg:
        return picture.jpegData();
    case Format::webp:
        return picture.webpData();
    case Format::png:
        break;
    }
    return picture.pngData();
}

/// How many pixels a side the format holds.
int maximumSide(Format format) {
    switch (format) {
    case Format::jpeg:
        return UIImage::kMaximumJpegSide;
    case Format::webp:
        return UIImage::kMaximumWebpSide;
    case Format::png:
        break;
    }
    return INT32_MAX;
}

} // namespace

std::string faultOfPictureName(const std::string& path, const std::string& scenePath) {
    if (path != kStandardOutput && isSameFile(path, scenePath)) {
        return path + ": is the scene itself, which must not be written over";
    }
    return formatOf(path) ? "" : path + ": must end in .png, .jpg, .jpeg or .webp";
}

std::string savePictureFile(const UIImage& picture, const std::string& path) {
    const Format format = formatOf(path).value_or(Format::png);
    const int side = std::max(picture.pixelWidth(), picture.pixelHeight());
    if (side > maximumSide(format)) {
        return path + ": cannot hold " + std::to_string(side) + " pixels a side, only " +
               std::to_string(maximumSide(format));
    }
    const auto data = encoded(picture, format);
    if (data.empty()) {
        return path + ": cannot be made: out of memory";
    }
    const bool goesOut = path == kStandardOutput;
    const std::string fault = goesOut ? writeStandardOutput(data) : saveFile(path, data);
    return fault.empty() ? fault : (goesOut ? "standard output" : path) + ": " + fault;
}

} // namespace trelmix::apps
