// How a tile's image comes from its address: the cache of answers, the network, a decoder, the main thread.

#include "Platform/Foundation/RunLoop.h"
#include "Platform/Foundation/WorkerPool.h"
#include "Platform/Network/SharedNetwork.h"
#include "Tiles/MapTileNode.h"

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
std::shared_ptr<const UIImage> decoded(const URL& url, const std::vector<std::byte>& body) {
    auto image = UIImage::withData(body, scaleOfAddress(url));
    if (image) {
        image->prepareLevels();
    }
    return image;
}

} // namespace

/// One tile's way to its image. It holds the layer weakly and is never cancelled.
struct MapTileNode::Download {
    std::weak_ptr<MapTileNode> layer;
    TileKey key;
    std::uint64_t generation;
    URL url;

    void answer(std::shared_ptr<const UIImage> image) const {
        DispatchQueue::main().async([weak = layer, tile = key, asked = generation, image = std::move(image)] {
            if (const auto strong = weak.lock()) {
                strong->acceptDownload(tile, asked, image);
            }
        });
    }

    void take(URLSession::Answer answered) const {
        if (!answered) {
            answer(nullptr);
            return;
        }
        auto body = std::make_shared<const std::vector<std::byte>>(std::move(*answered));
        WorkerPool::decoders().run([download = *this, body = std::move(body)] {
            const auto image = decoded(download.url, *body);
            download.answer(image);
            // Only what can be shown is worth remembering: an outage must leave no holes behind.
            if (const auto cache = SharedNetwork::get().cache; image && cache) {
                cache->store(download.url, body);
            }
        });
    }

    /// On a decoder.
    void start() const {
        const SharedNetwork network = SharedNetwork::get();
        if (layer.expired() || !network.session) {
            return;
        }
        if (const auto body = network.cache->cachedBody(url)) {
            answer(decoded(url, *body));
            return;
        }
        network.session->load({url, kTileTimeout}, [download = *this](URLSession::Answer answered) {
            download.take(std::move(answered));
        });
    }
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
        provideOnMainThread(key, nullptr, true);
        return;
    }
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
    WorkerPool::decoders().run([download = Download{self(), key, generation, *url}] { download.start(); });
}

void MapTileNode::acceptDownload(const TileKey& key, std::uint64_t generation,
                                 std::shared_ptr<const UIImage> image) {
    const SceneLock lock;
    // Answers to what was asked before the layer was cleared belong to nothing.
    if (generation == _generation) {
        _downloads.erase(key);
        acceptTile(key, std::move(image), true);
    }
}

} // namespace trelmix
