#include "common/tiles/TileServer.h"

#include <algorithm>

namespace trelmix::apps {

TileServer::TileServer(std::size_t threadCount) {
    for (std::size_t i = 0; i < std::max<std::size_t>(threadCount, 1); ++i) {
        _threads.emplace_back([this] { work(); });
    }
}

TileServer::~TileServer() {
    {
        const std::lock_guard lock(_mutex);
        _isStopping = true;
    }
    _newRequest.notify_all();
    for (std::thread& thread : _threads) {
        thread.join();
    }
}

std::size_t TileServer::defaultThreadCount() {
    return std::clamp<std::size_t>(std::thread::hardware_concurrency(), 2, 5) - 1;
}

void TileServer::serve(std::shared_ptr<TrelmixMapTileLayer> layer, std::shared_ptr<const TileSource> source) {
    const std::lock_guard lock(_mutex);
    _sources[std::move(layer)] = std::move(source);
}

void TileServer::tileRequestedForX(std::int64_t x, std::int64_t y, std::int64_t zoom,
                                   const std::shared_ptr<TrelmixMapTileLayer>& layer) {
    if (!layer) {
        return;
    }
    {
        const std::lock_guard lock(_mutex);
        const auto source = _sources.find(layer);
        if (source != _sources.end()) {
            _requests.push_back({{x, y, zoom}, layer, source->second});
            _newRequest.notify_one();
            return;
        }
    }
    layer->provideTileForX(x, y, zoom, nullptr);
}

bool TileServer::waitUntilAnswered(std::chrono::milliseconds patience) {
    std::unique_lock lock(_mutex);
    return _allAnswered.wait_for(lock, patience, [this] { return _requests.empty() && _running == 0; });
}

void TileServer::work() {
    std::unique_lock lock(_mutex);
    while (true) {
        _newRequest.wait(lock, [this] { return _isStopping || !_requests.empty(); });
        if (_isStopping) {
            return;
        }
        Request request = std::move(_requests.front());
        _requests.pop_front();
        ++_running;
        lock.unlock();
        std::shared_ptr<const UIImage> image;
        try {
            image = request.source->imageFor(request.tile);
        } catch (const std::bad_alloc&) {
            // A tile too large for the memory there is leaves a gap.
        }
        request.layer->provideTileForX(request.tile.x, request.tile.y, request.tile.zoom, std::move(image));
        request = {};
        lock.lock();
        if (--_running == 0 && _requests.empty()) {
            _allAnswered.notify_all();
        }
    }
}

} // namespace trelmix::apps
