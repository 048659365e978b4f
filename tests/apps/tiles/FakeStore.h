#pragma once

#include "common/tiles/TileStore.h"

#include <algorithm>
#include <utility>

namespace trelmix::apps {

/// Holds the tiles it was given.
class FakeStore : public TileStore {
public:
    void add(const TileIndex& tile, TileBytes bytes) { tiles.emplace_back(tile, std::move(bytes)); }
    Result<std::optional<TileBytes>> tile(const TileIndex& tile) const override {
        const auto found = std::find_if(tiles.begin(), tiles.end(), [&](auto& t) { return t.first == tile; });
        return found == tiles.end() ? std::optional<TileBytes>() : std::optional(found->second);
    }
    std::optional<TileBounds> bounds() const override { return std::nullopt; }
    std::string attribution() const override { return {}; }
    const std::string& name() const override { return storeName; }

private:
    std::vector<std::pair<TileIndex, TileBytes>> tiles;
    std::string storeName = "fake";
};

} // namespace trelmix::apps
