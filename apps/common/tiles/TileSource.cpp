#include "common/tiles/TileSource.h"

#include "common/tiles/EnlargedTile.h"

#include <algorithm>

namespace trelmix::apps {

namespace {

constexpr std::size_t kRememberedAncestors = 16;

} // namespace

TileSource::TileSource(std::unique_ptr<TileStore> store) : _store(std::move(store)) {}

std::shared_ptr<const UIImage> TileSource::imageFor(const TileIndex& tile) const {
    if (!isInWorld(tile)) {
        return nullptr;
    }
    for (std::int64_t levels = 0; levels <= tile.zoom; ++levels) {
        const TileIndex ancestor{tile.x >> levels, tile.y >> levels, tile.zoom - levels};
        std::string fault;
        auto image = levels > 0 ? loadAncestor(ancestor, fault) : load(ancestor, fault);
        if (!fault.empty()) {
            report(ancestor, fault);
            return nullptr;
        }
        if (image) {
            if (levels > 0) {
                image = enlarged(*image, ancestor, tile);
            }
            image->prepareLevels();
            return image;
        }
    }
    return nullptr;
}

std::shared_ptr<const UIImage> TileSource::enlarged(const UIImage& image, const TileIndex& ancestor,
                                                    const TileIndex& tile) const {
    return enlargedPart(image, tile, tile.zoom - ancestor.zoom, [&](std::int64_t east, std::int64_t south) {
        // What is wrong with it is told when it is asked for itself.
        std::string fault;
        const TileIndex beside{ancestor.x + east, ancestor.y + south, ancestor.zoom};
        return isInWorld(beside) ? loadAncestor(beside, fault) : nullptr;
    });
}

std::shared_ptr<const UIImage> TileSource::loadAncestor(const TileIndex& tile, std::string& fault) const {
    auto image = remembered(tile);
    if (!image) {
        image = load(tile, fault);
    }
    if (image) {
        remember(tile, image);
    }
    return image;
}

std::shared_ptr<const UIImage> TileSource::load(const TileIndex& tile, std::string& fault) const {
    const auto bytes = _store->tile(tile);
    if (!bytes) {
        fault = bytes.reason();
        return nullptr;
    }
    return *bytes ? UIImage::withData(**bytes, 1, &fault) : nullptr;
}

std::shared_ptr<const UIImage> TileSource::remembered(const TileIndex& tile) const {
    const std::lock_guard lock(_mutex);
    const auto found = std::find_if(_ancestors.begin(), _ancestors.end(),
                                    [&](const auto& entry) { return entry.first == tile; });
    return found == _ancestors.end() ? nullptr : found->second;
}

void TileSource::remember(const TileIndex& tile, const std::shared_ptr<const UIImage>& image) const {
    const std::lock_guard lock(_mutex);
    std::erase_if(_ancestors, [&](const auto& entry) { return entry.first == tile; });
    if (_ancestors.size() >= kRememberedAncestors) {
        _ancestors.erase(_ancestors.begin());
    }
    _ancestors.emplace_back(tile, image);
}

void TileSource::report(const TileIndex& tile, const std::string& reason) const {
    const std::lock_guard lock(_mutex);
    if (++_faultCount == 1) {
        _firstFault = "tile " + std::to_string(tile.zoom) + "/" + std::to_string(tile.x) + "/" +
                      std::to_string(tile.y) + ": " + reason;
    }
}

std::size_t TileSource::faultCount() const {
    const std::lock_guard lock(_mutex);
    return _faultCount;
}

std::string TileSource::firstFault() const {
    const std::lock_guard lock(_mutex);
    return _firstFault;
}

} // namespace trelmix::apps
