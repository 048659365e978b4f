#include "common/tiles/TileDirectory.h"

#include "common/Files.h"

#include <algorithm>
#include <charconv>
#include <filesystem>

namespace trelmix::apps {

namespace {

constexpr std::size_t kMaximumFilesLookedAt = 2'000'000;

struct Range {
    std::int64_t zoom = -1;
    std::int64_t west = 0;
    std::int64_t north = 0;
    std::int64_t east = 0;
    std::int64_t south = 0;

    void add(const TileIndex& tile) {
        if (tile.zoom > zoom) {
            *this = {tile.zoom, tile.x, tile.y, tile.x, tile.y};
        } else if (tile.zoom == zoom) {
            west = std::min(west, tile.x);
            east = std::max(east, tile.x);
            north = std::min(north, tile.y);
            south = std::max(south, tile.y);
        }
    }
};

} // namespace

TileDirectory::TileDirectory(std::string pathTemplate) : _template(std::move(pathTemplate)) {}

std::string TileDirectory::pathOf(const TileIndex& tile) const {
    return filledTemplate(_template, tile);
}

std::optional<TileIndex> TileDirectory::indexOf(const std::string& path) const {
    TileIndex tile;
    const char* at = path.data();
    const char* const end = at + path.size();
    for (std::size_t i = 0; i < _template.size();) {
        const std::string_view rest = std::string_view(_template).substr(i, 3);
        if (rest == "{z}" || rest == "{x}" || rest == "{y}") {
            std::int64_t& number = rest[1] == 'z' ? tile.zoom : rest[1] == 'x' ? tile.x : tile.y;
            const auto [stop, error] = std::from_chars(at, end, number);
            if (error != std::errc()) {
                return std::nullopt;
            }
            at = stop;
            i += 3;
        } else if (at == end || *at != _template[i]) {
            return std::nullopt;
        } else {
            ++at;
            ++i;
        }
    }
    return at == end && isInWorld(tile) && pathOf(tile) == path ? std::optional(tile) : std::nullopt;
}

Result<std::optional<TileBytes>> TileDirectory::tile(const TileIndex& tile) const {
    if (!isInWorld(tile)) {
        return std::optional<TileBytes>();
    }
    const std::string path = pathOf(tile);
    std::error_code error;
    // A pipe of that name would keep its reader waiting for ever.
    if (!std::filesystem::is_regular_file(path, error)) {
        return std::optional<TileBytes>();
    }
    auto bytes = loadFile(path, kMaximumTileBytes);
    if (!bytes) {
        return Result<std::optional<TileBytes>>::failure(path + " " + bytes.reason());
    }
    return std::optional<TileBytes>(std::move(*bytes));
}

std::optional<TileBounds> TileDirectory::bounds() const {
    namespace fs = std::filesystem;
    const std::size_t slash =
        _template.rfind('/', std::min({_template.find("{z}"), _template.find("{x}"), _template.find("{y}")}));
    const std::string folder = slash == std::string::npos ? "." : _template.substr(0, slash + 1);
    const std::string cut = slash == std::string::npos ? "./" : "";
    std::error_code error;
    Range range;
    std::size_t count = 0;
    fs::recursive_directory_iterator files(folder, fs::directory_options::skip_permission_denied, error);
    for (; !error && files != fs::recursive_directory_iterator() && count < kMaximumFilesLookedAt;
         files.increment(error), ++count) {
        if (const auto tile = indexOf(files->path().string().substr(cut.size()))) {
            range.add(*tile);
        }
    }
    if (range.zoom < 0) {
        return std::nullopt;
    }
    return boundsOfTiles(range.zoom, range.west, range.north, range.east, range.south);
}

} // namespace trelmix::apps
