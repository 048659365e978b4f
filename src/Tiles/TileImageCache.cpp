#include "Tiles/TileImageCache.h"

#include <algorithm>

namespace trelmix {
namespace {

/// The levels of detail, a third of the image, are counted before they are made.
std::size_t bytesOf(const UIImage* image) {
    constexpr std::size_t kBookkeeping = 128;
    return kBookkeeping +
           (image == nullptr ? 0 : std::max(image->byteCount(), image->pixels().size() / 3 * 4));
}

} // namespace

const TileAnswer* TileImageCache::find(const TileIndex& tile) {
    const auto found = _index.find(tile);
    if (found == _index.end()) {
        return nullptr;
    }
    touch(tile);
    return &found->second->answer;
}

void TileImageCache::insert(const TileIndex& tile, TileAnswer answer) {
    if (const auto found = _index.find(tile); found != _index.end()) {
        erase(found->second);
    }
    const std::size_t bytes = bytesOf(answer.image.get());
    _entries.push_back({tile, std::move(answer), bytes});
    _index.emplace(tile, std::prev(_entries.end()));
    _byteCount += bytes;
}

void TileImageCache::clear() {
    _index.clear();
    _entries.clear();
    _byteCount = 0;
}

void TileImageCache::touch(const TileIndex& tile) {
    if (const auto found = _index.find(tile); found != _index.end()) {
        _entries.splice(_entries.end(), _entries, found->second);
    }
}

void TileImageCache::trim(std::size_t keptCount) {
    while (isOverLimit() && _entries.size() > keptCount) {
        erase(_entries.begin());
    }
}

void TileImageCache::erase(Entries::iterator entry) {
    _byteCount -= entry->byteCount;
    _index.erase(entry->tile);
    _entries.erase(entry);
}

} // namespace trelmix
