#include "Tiles/TileImages.h"

#include "Platform/Foundation/RunLoop.h"
#include "Platform/Foundation/SceneLock.h"
#include "Platform/Foundation/Thread.h"
#include "Tiles/MapTileNode.h"
#include "Tiles/TileDownload.h"
#include "Tiles/TileGround.h"

#include <utility>

namespace trelmix {

void TileImages::request(const TileIndex& tile) {
    if (const auto* const answer = _cache.find(tile)) {
        _layer.show(tile, *answer);
    } else if (_source.loadsFromUrls()) {
        prepareDownload(tile);
    } else if (_source.isSynchronous) {
        askAtOnce(tile);
    } else {
        ask(tile);
    }
}

void TileImages::ask(const TileIndex& tile) {
    if (const auto delegate = _layer.delegateOfEngine()) {
        callOut(
            [&, layer = _layer.self()] { delegate->tileRequestedForX(tile.x, tile.y, tile.zoom, layer); });
    }
}

void TileImages::askAtOnce(const TileIndex& tile) {
    std::shared_ptr<const UIImage> image;
    if (const auto delegate = _layer.delegateOfEngine()) {
        image = callOut([&] { return delegate->tileForX(tile.x, tile.y, tile.zoom); });
    }
    acceptOnMainThread(tile, {std::move(image), false, {}}, true);
}

void TileImages::prepareDownload(const TileIndex& tile) {
    if (!isInWorld(tile)) {
        acceptOnMainThread(tile, {}, true);
        return;
    }
    _lost.erase(tile);
    // A tile that went and came back while its image is on the way is not asked for again.
    if (!_downloads.insert(tile).second) {
        return;
    }
    const std::uint64_t asked = _generation;
    // A copy: the application may replace it while it is called. It goes while the lock is still released.
    auto copy = _source.address;
    const auto url = callOut([&]() -> std::optional<URL> {
        const auto address = std::move(copy);
        return address(static_cast<std::uint64_t>(tile.x), static_cast<std::uint64_t>(tile.y),
                       static_cast<std::uint64_t>(tile.zoom));
    });
    if (_generation != asked) {
        return;
    }
    if (!url) {
        _downloads.erase(tile);
        return;
    }
    _prepared.insert_or_assign(tile, *url);
}

void TileImages::startDownloads(const CameraProjection& projection) {
    std::vector<TileIndex> tiles;
    for (const auto& [tile, url] : _prepared) {
        tiles.push_back(tile);
    }
    for (const TileIndex& tile : viewFirst(projection, std::move(tiles))) {
        loadTileImage(_prepared.at(tile), _layer.self(),
                      [this, tile, asked = _generation](std::optional<TileAnswer> answer) {
                          endDownload(tile, asked, std::move(answer));
                      });
    }
    _prepared.clear();
}

void TileImages::endDownload(const TileIndex& tile, std::uint64_t generation,
                             std::optional<TileAnswer> answer) {
    const SceneLock lock;
    // Answers to what was asked before the layer was cleared belong to nothing.
    if (generation != _generation) {
        return;
    }
    _downloads.erase(tile);
    if (answer) {
        accept(tile, std::move(*answer), true);
    } else if (_layer.shows(tile)) {
        _lost.insert(tile);
        _layer.checkWithoutMovement();
    }
}

void TileImages::provide(const TileIndex& tile, TileAnswer answer) {
    acceptOnMainThread(tile, std::move(answer), false);
}

void TileImages::acceptOnMainThread(const TileIndex& tile, TileAnswer answer, bool isOwn) {
    if (Thread::isMainThread()) {
        accept(tile, std::move(answer), isOwn);
        return;
    }
    DispatchQueue::main().async(
        [this, weak = std::weak_ptr(_layer.self()), tile, isOwn, answer = std::move(answer)]() mutable {
            if (const auto layer = weak.lock()) {
                accept(tile, std::move(answer), isOwn);
            }
        });
}

void TileImages::accept(const TileIndex& tile, TileAnswer answer, bool isOwn) {
    const SceneLock lock;
    if ((_source.loadsFromUrls() && !isOwn) || !_layer.shows(tile)) {
        return;
    }
    _cache.insert(tile, answer);
    _layer.show(tile, std::move(answer));
    _layer.trimImageCache();
}

void TileImages::clear() {
    ++_generation;
    _cache.clear();
    _downloads.clear();
    _lost.clear();
    _prepared.clear();
}

} // namespace trelmix
