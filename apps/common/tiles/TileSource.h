#pragma once

#include "common/tiles/TileStore.h"

#include <Trelmix/Platform/UIImage.h>

#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace trelmix::apps {

/// Pictures for every tile of the world, from a store that has some of them: where one is missing, and beyond
/// the deepest zoom, the nearest ancestor's part is cut out and enlarged. Any thread.
class TileSource {
public:
    explicit TileSource(std::unique_ptr<TileStore> store);

    /// Empty outside the world, where no ancestor exists either, and for a tile that cannot be read or
    /// decoded. The levels of detail are ready.
    std::shared_ptr<const UIImage> imageFor(const TileIndex& tile) const;

    const TileStore& store() const { return *_store; }
    /// How many tiles could not be read or decoded so far, and what was wrong with the first of them.
    std::size_t faultCount() const;
    std::string firstFault() const;

private:
    /// Empty with a fault when it cannot be read or decoded, and without one when there is none.
    std::shared_ptr<const UIImage> load(const TileIndex& tile, std::string& fault) const;
    std::shared_ptr<const UIImage> loadAncestor(const TileIndex& tile, std::string& fault) const;
    std::shared_ptr<const UIImage> enlarged(const UIImage& image, const TileIndex& ancestor,
                                            const TileIndex& tile) const;
    std::shared_ptr<const UIImage> remembered(const TileIndex& tile) const;
    void remember(const TileIndex& tile, const std::shared_ptr<const UIImage>& image) const;
    void report(const TileIndex& tile, const std::string& reason) const;

    std::unique_ptr<TileStore> _store;
    mutable std::mutex _mutex;
    // Ancestors that were enlarged lately, the latest last: hundreds of deep tiles share one.
    mutable std::vector<std::pair<TileIndex, std::shared_ptr<const UIImage>>> _ancestors;
    mutable std::size_t _faultCount = 0;
    mutable std::string _firstFault;
};

} // namespace trelmix::apps
