// How fast images come in and go out on one thread, and the size of the library that does it.

#include "common/tiles/MbtilesArchive.h"
#include "Report.h"
#include "Town.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>

namespace trelmix::bench {
namespace {

constexpr std::int64_t kZoom = 17;

std::vector<apps::TileBytes> tilesOf(const std::string& path) {
    const auto archive = apps::MbtilesArchive::open(path);
    std::vector<apps::TileBytes> tiles;
    for (std::int64_t x = 70632; archive && x <= 70648; ++x) {
        for (std::int64_t y = 41495; y <= 41508; ++y) {
            if (auto tile = (*archive)->tile({x, y, kZoom}); tile && *tile) {
                tiles.push_back(std::move(**tile));
            }
        }
    }
    if (tiles.empty()) {
        std::fprintf(stderr, "%s: no tiles of zoom %d where the sample has them\n", path.c_str(),
                     static_cast<int>(kZoom));
        std::exit(2);
    }
    return tiles;
}

/// Milliseconds of one item; the quickest of seven rounds over all.
template <class Items, class Job>
double quickest(const Items& items, Job job) {
    double best = 1e9;
    for (int round = 0; round < 7; ++round) {
        const double start = threadSeconds();
        for (const auto& item : items) {
            job(item);
        }
        best = std::min(best, (threadSeconds() - start) * 1000 / static_cast<double>(items.size()));
    }
    return best;
}

void run(const std::string& path) {
    startTable("images, one thread");
    const auto tiles = tilesOf(path);
    double bytes = 0;
    std::vector<std::shared_ptr<const UIImage>> images;
    for (const auto& tile : tiles) {
        bytes += static_cast<double>(tile.size());
        images.push_back(UIImage::withData(tile));
    }
    report({"mean size of a tile, PNG", bytes / static_cast<double>(tiles.size()), "bytes"});
    const double plain = quickest(tiles, [](const auto& tile) { UIImage::withData(tile); });
    const double whole = quickest(tiles, [](const auto& tile) { UIImage::withData(tile)->prepareLevels(); });
    report({"decoding a tile of 256x256", plain});
    report({"decoding it, with its levels of detail", whole});
    report({"decode rate, with levels of detail", 1000 / whole, "tiles/s"});
    report({"encoding a tile as PNG", quickest(images, [](const auto& image) { return image->pngData(); })});
    startTable("size");
    const double size = static_cast<double>(std::filesystem::file_size(TRELMIX_STRIPPED));
    report({"stripped shared library", size / (1 << 20), "MiB", {}, Goal{Goal::Kind::atMost, 1.5}});
}

} // namespace
} // namespace trelmix::bench

int main(int argc, char** argv) {
    trelmix::bench::run(trelmix::bench::archiveArgument(argc, argv));
}
