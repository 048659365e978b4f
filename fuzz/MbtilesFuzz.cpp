// Whatever a file holds, an archive opens or says why not, and its tiles are read or missing.
#include "common/tiles/MbtilesArchive.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <unistd.h>

namespace {

const std::string& scratchPath() {
    static const std::string path =
        (std::filesystem::temp_directory_path() / ("mbtiles-fuzz-" + std::to_string(::getpid()))).string();
    static const int removeAtTheEnd = std::atexit([] { std::remove(scratchPath().c_str()); });
    static_cast<void>(removeAtTheEnd);
    return path;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace trelmix::apps;
    std::FILE* file = std::fopen(scratchPath().c_str(), "wb");
    if (file == nullptr) {
        std::abort();
    }
    std::fwrite(data, 1, size, file);
    std::fclose(file);
    const auto archive = MbtilesArchive::open(scratchPath());
    if (!archive) {
        return archive.reason().empty() ? (std::abort(), 0) : 0;
    }
    for (std::int64_t zoom = (*archive)->lowestZoom(); zoom <= (*archive)->highestZoom(); ++zoom) {
        (*archive)->tile({0, 0, zoom});
    }
    (*archive)->bounds();
    (*archive)->attribution();
    return 0;
}
