#pragma once

#include <Trelmix/Platform/UIImage.h>
#include <Trelmix/TileIndex.h>

#include <cstddef>
#include <list>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace trelmix {

/// What came of the question for a tile's image.
struct TileAnswer {
    std::shared_ptr<const UIImage> image;
    /// Without an image: that it could not be had, rather than that there is none.
    bool isFailed = false;
    /// Without an image: why, in words; empty when nobody said.
    std::string reason;
};

/// A layer's answers by tile. Guarded by the scene lock.
class TileImageCache {
public:
    /// What was answered; null when nothing was.
    const TileAnswer* find(const TileIndex& tile);
    /// Replaces an earlier answer.
    void insert(const TileIndex& tile, TileAnswer answer);
    void clear();

    std::optional<std::size_t> limit() const { return _limit; }
    /// Bytes, levels of detail included; empty for no limit. Takes effect with the next `trim`.
    void setLimit(std::optional<std::size_t> limit) { _limit = limit; }
    bool isOverLimit() const { return _limit && _byteCount > *_limit; }
    /// Marks a tile as in use now.
    void touch(const TileIndex& tile);
    /// Forgets the least recently used answers until the limit is kept, but none of the `keptCount` that
    /// were touched last.
    void trim(std::size_t keptCount);
    std::size_t byteCount() const { return _byteCount; }

private:
    struct Entry {
        TileIndex tile;
        TileAnswer answer;
        std::size_t byteCount;
    };
    using Entries = std::list<Entry>;
    void erase(Entries::iterator entry);

    /// The least recently used first.
    Entries _entries;
    std::map<TileIndex, Entries::iterator> _index;
    std::size_t _byteCount = 0;
    std::optional<std::size_t> _limit;
};

} // namespace trelmix
