// Where a tile layer's images come from and how answers are kept.

#include "Engine/TrelmixMapEngineSceneView.h"
#include "Platform/Foundation/RunLoop.h"
#include "Platform/Foundation/Thread.h"
#include "Tiles/MapTileNode.h"

namespace trelmix {

bool MapTileNode::readCachedTile(SingleMapTileNode& node) {
    const auto* const answer = _mapTileImages.find(node.key());
    if (answer == nullptr) {
        return false;
    }
    node.finishLoading(*answer);
    if (node.tileImage()) {
        restartTileCleanupTimer();
    }
    return true;
}

void MapTileNode::requestTileImage(SingleMapTileNode& node) {
    const auto keep = self();
    if (readCachedTile(node)) {
        return;
    }
    if (loadsFromUrls()) {
        createMapUrlTileDownloadTask(node.key());
    } else if (_synchronousLayer) {
        askDelegateAtOnce(node.key());
    } else {
        askDelegate(node.key());
    }
}

std::shared_ptr<TrelmixMapEngineDelegate> MapTileNode::delegateOfEngine() const {
    const auto engine = std::dynamic_pointer_cast<TrelmixMapEngineSceneView>(attachedMap());
    return engine ? engine->currentDelegate() : nullptr;
}

void MapTileNode::askDelegate(const TileKey& key) {
    if (const auto delegate = delegateOfEngine()) {
        callOut([&, layer = self()] { delegate->tileRequestedForX(key.x, key.y, key.zoom, layer); });
    }
}

void MapTileNode::askDelegateAtOnce(const TileKey& key) {
    if (!attachedMap()) {
        return;
    }
    std::shared_ptr<const UIImage> image;
    if (const auto delegate = delegateOfEngine()) {
        image = callOut([&] { return delegate->tileForX(key.x, key.y, key.zoom); });
    }
    provideOnMainThread(key, {std::move(image), false, {}}, true);
}

void MapTileNode::provideTileForX(std::int64_t x, std::int64_t y, std::int64_t zoom,
                                  std::shared_ptr<const UIImage> image) {
    provideOnMainThread({x, y, zoom}, {std::move(image), false, {}}, false);
}

void MapTileNode::provideOnMainThread(TileKey key, TileAnswer answer, bool internally) {
    if (Thread::isMainThread()) {
        acceptTile(key, std::move(answer), internally);
        return;
    }
    DispatchQueue::main().async(
        [weak = std::weak_ptr(self()), key, internally, answer = std::move(answer)]() mutable {
            if (const auto layer = weak.lock()) {
                layer->acceptTile(key, std::move(answer), internally);
            }
        });
}

std::shared_ptr<SingleMapTileNode> MapTileNode::shownTile(const TileKey& key) const {
    const auto level = _mapTiles.find(key.zoom);
    if (level == _mapTiles.end()) {
        return nullptr;
    }
    for (const auto& tile : level->second) {
        if (tile->key() == key) {
            return tile;
        }
    }
    return nullptr;
}

void MapTileNode::acceptTile(TileKey key, TileAnswer answer, bool internally) {
    const SceneLock lock;
    if (loadsFromUrls() && !internally) {
        return;
    }
    const auto tile = shownTile(key);
    if (!tile) {
        return;
    }
    _mapTileImages.insert(key, answer);
    if (answer.image) {
        restartTileCleanupTimer();
    }
    tile->finishLoading(std::move(answer));
    trimImageCache();
}

void MapTileNode::trimImageCache() {
    if (!_mapTileImages.isOverLimit()) {
        return;
    }
    std::size_t shown = 0;
    for (const auto& [zoom, tiles] : _mapTiles) {
        for (const auto& tile : tiles) {
            _mapTileImages.touch(tile->key());
            ++shown;
        }
    }
    _mapTileImages.trim(shown);
}

} // namespace trelmix
