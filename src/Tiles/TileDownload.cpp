// How a tile's image comes from its address: the cache of answers, the network, a decoder, the main thread.

#include "Platform/Foundation/RunLoop.h"
#include "Platform/Foundation/WorkerPool.h"
#include "Platform/Network/SharedNetwork.h"
#include "Tiles/MapTileNode.h"

#include <new>
#include <utility>

namespace trelmix {

namespace {

/// Seconds for one tile, repeats included.
constexpr double kTileTimeout = 10.0;

/// "name@2x.png" has two pixels a point.
double scaleOfAddress(const URL& url) {
    std::string_view path = url.string();
    path = path.substr(0, path.find_first_of("?#"));
    const std::string_view name = path.substr(path.rfind('/') + 1);
    const std::string_view stem = name.substr(0, name.rfind('.'));
    return stem.ends_with("@2x") ? 2 : stem.ends_with("@3x") ? 3 : 1;
}

/// On a decoder: everything that drawing the image will need.
TileAnswer decoded(const URL& url, const std::vector<std::byte>& body) {
    try {
        std::string fault;
        auto image = UIImage::withData(body, scaleOfAddress(url), &fault);
        if (!image) {
            return {nullptr, true, "no image: " + fault};
        }
        image->prepareLevels();
        return {std::move(image), false, {}};
    } catch (const std::bad_alloc&) {
        return {nullptr, true, "out of memory"};
    }
}

} // namespace

/// One tile's way to its image. It holds the layer weakly and is never cancelled. The layer hears of its end
/// once, also when nobody answers since the network is shut down.
struct MapTileNode::Download : std::enable_shared_from_this<Download> {
    Download(std::weak_ptr<MapTileNode> asking, TileKey tile, std::uint64_t asked, URL address)
        : layer(std::move(asking)), key(tile), generation(asked), url(std::move(address)) {}
    Download(const Download&) = delete;
    Download& operator=(const Download&) = delete;

    ~Download() {
        if (!isAnswered) {
            try {
                end(std::nullopt);
            } catch (const std::bad_alloc&) {
                // The tile stays unanswered.
            }
        }
    }

    void answer(TileAnswer tileAnswer) {
        isAnswered = true;
        end(std::move(tileAnswer));
    }

    void end(std::optional<TileAnswer> tileAnswer) const {
        DispatchQueue::main().async(
            [weak = layer, tile = key, asked = generation, ended = std::move(tileAnswer)]() mutable {
                if (const auto strong = weak.lock()) {
                    strong->acceptDownload(tile, asked, std::move(ended));
                }
            });
    }

    void take(URLSession::Answer answered) {
        if (!answered) {
            answer({nullptr, !answered.isAbsent, answered.reason()});
            return;
        }
        auto body = std::make_shared<const std::vector<std::byte>>(std::move(*answered));
        WorkerPool::decoders().run([self = shared_from_this(), body = std::move(body)] {
            TileAnswer tileAnswer = decoded(self->url, *body);
            const bool isImage = tileAnswer.image != nullptr;
            self->answer(std::move(tileAnswer));
            // Only what can be shown is worth remembering: an outage must leave no holes behind.
            if (const auto cache = SharedNetwork::get().cache; isImage && cache) {
                cache->store(self->url, body);
            }
        });
    }

    /// On a decoder.
    void start() {
        const SharedNetwork network = SharedNetwork::get();
        if (layer.expired() || !network.session) {
            return;
        }
        if (const auto body = network.cache->cachedBody(url)) {
            answer(decoded(url, *body));
            return;
        }
        network.session->load({url, kTileTimeout}, [self = shared_from_this()](URLSession::Answer answered) {
            self->take(std::move(answered));
        });
    }

    std::weak_ptr<MapTileNode> layer;
    TileKey key;
    std::uint64_t generation;
    URL url;
    bool isAnswered = false;
};

std::optional<URL> MapTileNode::addressOf(const TileKey& key) const {
    // A copy: the application may replace it while it is called. It goes while the lock is still released.
    auto copy = _imageUrlConstructor;
    return callOut([&]() -> std::optional<URL> {
        const auto constructor = std::move(copy);
        return constructor(static_cast<std::uint64_t>(key.x), static_cast<std::uint64_t>(key.y),
                           static_cast<std::uint64_t>(key.zoom));
    });
}

void MapTileNode::createMapUrlTileDownloadTask(const TileKey& key) {
    if (!isInWorld(key)) {
        provideOnMainThread(key, {}, true);
        return;
    }
    _lostTiles.erase(key);
    // A tile that went and came back while its image is on the way is not asked for again.
    if (!_downloads.insert(key).second) {
        return;
    }
    const std::uint64_t generation = _generation;
    const auto url = addressOf(key);
    if (_generation != generation) {
        return;
    }
    if (!url) {
        _downloads.erase(key);
        return;
    }
    // Before the pool, so that at the end of the process the pool's work is done before these go.
    SharedNetwork::get();
    WorkerPool::decoders().run(
        [download = std::make_shared<Download>(self(), key, generation, *url)] { download->start(); });
}

void MapTileNode::acceptDownload(const TileKey& key, std::uint64_t generation,
                                 std::optional<TileAnswer> answer) {
    const SceneLock lock;
    // Answers to what was asked before the layer was cleared belong to nothing.
    if (generation != _generation) {
        return;
    }
    _downloads.erase(key);
    if (answer) {
        acceptTile(key, std::move(*answer), true);
    } else if (shownTile(key)) {
        _lostTiles.insert(key);
        // The next check does not wait for the camera to move.
        _lastTileCheckTarget.reset();
    }
}

} // namespace trelmix
