#pragma once

#include "Tiles/TileImageCache.h"

#include <Trelmix/Platform/URL.h>
#include <Trelmix/TrelmixMapTileLayer.h>

#include <cstdint>
#include <map>
#include <memory>
#include <set>

namespace trelmix {

class CameraProjection;
class MapTileNode;

/// Where a tile layer's images come from: what was answered before, the engine's delegate, or addresses. Each
/// answer ends in the layer's `show`.
///
/// Part of its layer, guarded by the scene lock, which is released around every question to the application.
class TileImages {
public:
    /// Whom to ask about the tiles that come.
    struct Source {
        bool isSynchronous = false;
        bool isUrlLayer = false;
        TrelmixMapTileLayer::ImageUrlConstructor address;
        bool loadsFromUrls() const { return isUrlLayer && address; }
    };

    explicit TileImages(MapTileNode& layer) : _layer(layer) {}

    Source& source() { return _source; }
    const Source& source() const { return _source; }
    TileImageCache& cache() { return _cache; }
    const TileImageCache& cache() const { return _cache; }

    /// Asks for the image of a tile that the layer shows without one. The application may do anything
    /// meanwhile.
    void request(const TileIndex& tile);
    /// Starts the downloads that were requested, what the view shows before its margin.
    void startDownloads(const CameraProjection& projection);
    /// The application's answer. Any thread, without the lock.
    void provide(const TileIndex& tile, TileAnswer answer);
    /// Whether nobody is going to answer for the tile, as its download was dropped; true once.
    bool takeLost(const TileIndex& tile) { return _lost.erase(tile) > 0; }
    /// Forgets all answers, and those that are on their way.
    void clear();
    /// Changes with every `clear`.
    std::uint64_t generation() const { return _generation; }

private:
    void askAtOnce(const TileIndex& tile);
    void ask(const TileIndex& tile);
    /// Asks for the address; `startDownloads` does the rest.
    void prepareDownload(const TileIndex& tile);
    void acceptOnMainThread(const TileIndex& tile, TileAnswer answer, bool isOwn);
    void accept(const TileIndex& tile, TileAnswer answer, bool isOwn);
    void endDownload(const TileIndex& tile, std::uint64_t generation, std::optional<TileAnswer> answer);

    MapTileNode& _layer;
    Source _source;
    TileImageCache _cache;
    /// Tiles whose images are on their way from their addresses.
    std::set<TileIndex> _downloads;
    std::set<TileIndex> _lost;
    /// Of them, those that have not been started.
    std::map<TileIndex, URL> _prepared;
    std::uint64_t _generation = 0;
};

} // namespace trelmix
