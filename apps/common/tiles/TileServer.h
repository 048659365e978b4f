#pragma once

#include "common/tiles/TileSource.h"

#include <Trelmix/TrelmixMapEngineDelegate.h>
#include <Trelmix/TrelmixMapTileLayer.h>

#include <chrono>
#include <condition_variable>
#include <deque>
#include <exception>
#include <map>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace trelmix::apps {

/// An engine's delegate that answers the requests of asynchronous tile layers from tile sources, on a few
/// threads of its own, in the order they come.
///
/// Owned by the program, which must keep it as long as its layers are on a map; it shares the layers. The
/// destructor drops what waits and waits for what runs.
class TileServer : public TrelmixMapEngineDelegate {
public:
    /// @param threadCount at least 1.
    explicit TileServer(std::size_t threadCount = defaultThreadCount());
    ~TileServer() override;
    TileServer(const TileServer&) = delete;
    TileServer& operator=(const TileServer&) = delete;

    /// Requests of the layer are answered from the source from now on. Requests of layers that were never
    /// named here are answered with none.
    void serve(std::shared_ptr<TrelmixMapTileLayer> layer, std::shared_ptr<const TileSource> source);

    void tileRequestedForX(std::int64_t x, std::int64_t y, std::int64_t zoom,
                           const std::shared_ptr<TrelmixMapTileLayer>& layer) override;

    /// Sleeps until every request so far is answered, but not longer than `patience`; true when they are.
    bool waitUntilAnswered(std::chrono::milliseconds patience);

    /// Throws what has gone wrong in a thread, `std::bad_alloc` in practice; the tile stays unanswered. Main
    /// thread.
    void rethrowFault();

    /// One thread fewer than the machine has cores, 1 to 4.
    static std::size_t defaultThreadCount();

private:
    struct Request {
        TileIndex tile;
        std::shared_ptr<TrelmixMapTileLayer> layer;
        std::shared_ptr<const TileSource> source;
    };
    void work();
    static void answer(const Request& request);

    std::mutex _mutex;
    std::condition_variable _newRequest;
    std::condition_variable _allAnswered;
    // The layers stay here until the threads have ended, so that none of them ends on a worker.
    std::map<std::shared_ptr<TrelmixMapTileLayer>, std::shared_ptr<const TileSource>> _sources;
    std::deque<Request> _requests;
    std::size_t _running = 0;
    std::exception_ptr _fault;
    bool _isStopping = false;
    std::vector<std::thread> _threads; // not every standard library has jthread
};

} // namespace trelmix::apps
