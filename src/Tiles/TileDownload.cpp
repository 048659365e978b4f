#include "Tiles/TileDownload.h"

#include "Platform/Foundation/RunLoop.h"
#include "Platform/Foundation/WorkerPool.h"
#include "Platform/Network/SharedNetwork.h"

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

/// One tile's way to its image, also when nobody answers since the network is shut down.
class Download : public std::enable_shared_from_this<Download> {
public:
    using Done = std::function<void(std::optional<TileAnswer>)>;

    Download(URL url, std::weak_ptr<void> asker, Done done)
        : _url(std::move(url)), _asker(std::move(asker)), _done(std::move(done)) {}
    ~Download() {
        if (!_isAnswered) {
            try {
                end(std::nullopt);
            } catch (const std::bad_alloc&) {
                // The tile stays unanswered.
            }
        }
    }
    Download(const Download&) = delete;
    Download& operator=(const Download&) = delete;

    /// On a decoder.
    void start() {
        const SharedNetwork network = SharedNetwork::get();
        if (_asker.expired() || !network.session) {
            return;
        }
        if (const auto body = network.cache->cachedBody(_url)) {
            answer(decoded(_url, *body));
            return;
        }
        network.session->load({_url, kTileTimeout}, [self = shared_from_this()](URLSession::Answer answered) {
            self->take(std::move(answered));
        });
    }

private:
    void take(URLSession::Answer answered) {
        if (!answered) {
            answer({nullptr, !answered.isAbsent, answered.reason()});
            return;
        }
        auto body = std::make_shared<const std::vector<std::byte>>(std::move(*answered));
        WorkerPool::decoders().run([self = shared_from_this(), body = std::move(body)] {
            TileAnswer tileAnswer = decoded(self->_url, *body);
            const bool isImage = tileAnswer.image != nullptr;
            self->answer(std::move(tileAnswer));
            // Only what can be shown is worth remembering: an outage must leave no holes behind.
            if (const auto cache = SharedNetwork::get().cache; isImage && cache) {
                cache->store(self->_url, body);
            }
        });
    }

    void answer(TileAnswer tileAnswer) {
        _isAnswered = true;
        end(std::move(tileAnswer));
    }

    void end(std::optional<TileAnswer> tileAnswer) const {
        DispatchQueue::main().async([weak = _asker, done = _done, ended = std::move(tileAnswer)]() mutable {
            if (const auto asker = weak.lock()) {
                done(std::move(ended));
            }
        });
    }

    URL _url;
    std::weak_ptr<void> _asker;
    Done _done;
    bool _isAnswered = false;
};

} // namespace

void loadTileImage(const URL& url, std::weak_ptr<void> asker,
                   std::function<void(std::optional<TileAnswer>)> done) {
    // Before the pool, so that at the end of the process the pool's work is done before these go.
    SharedNetwork::get();
    WorkerPool::decoders().run([download = std::make_shared<Download>(
                                    url, std::move(asker), std::move(done))] { download->start(); });
}

} // namespace trelmix
