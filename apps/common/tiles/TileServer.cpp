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

void TileServer::rethrowFault() {
    const std::lock_guard lock(_mutex);
    if (_fault) {
        std::rethrow_exception(_fault);
    }
}

void TileServer::answer(const Request& request) {
    request.layer->provideTileForX(request.tile.x, request.tile.y, request.tile.zoom,
                                   request.source->imageFor(request.tile));
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
        std::exception_ptr fault;
        try {
            answer(request);
        } catch (...) {
            fault = std::current_exception();
        }
        request = {};
        lock.lock();
        if (fault && !_fault) {
            _fault = fault;
        }
        if (--_running == 0 && _requests.empty()) {
            _allAnswered.notify_all();
        }
    }
}

} // namespace trelmix::apps
