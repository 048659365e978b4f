#include <Trelmix/Host/RenderThread.h>

#include "Platform/Foundation/CallerFault.h"
#include "Platform/Foundation/WakeUp.h"

#include <Trelmix/Host/ViewHost.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <utility>

namespace trelmix {

namespace {

using SteadyTime = std::chrono::steady_clock;
constexpr auto kFrameInterval = std::chrono::microseconds(16'667);

/// What the drawing thread and its owner share; it ends with the last of them.
class FrameLoop {
public:
    FrameLoop(std::shared_ptr<ViewHost> host, RenderThread::Surface surface)
        : _host(std::move(host)), _surface(std::move(surface)) {}

    void run() {
        const WakeUp wakeUp([this](Wake what) {
            if (what == Wake::frame) {
                const std::lock_guard guard(_mutex);
                _mayHaveChanged = true;
                _wake.notify_all();
            }
        });
        const bool canDraw = _host && _surface.makeCurrent && _surface.present && _surface.makeCurrent();
        if (canDraw) {
            drawUntilStopped();
            if (_surface.release) {
                _surface.release();
            }
        }
        const std::lock_guard guard(_mutex);
        _ended = true;
        _counted.notify_all();
    }

    void stop() {
        const std::lock_guard guard(_mutex);
        _stops = true;
        _wake.notify_all();
    }

    std::uint64_t updateCount() const {
        const std::lock_guard guard(_mutex);
        return _updates;
    }

    std::uint64_t presentCount() const {
        const std::lock_guard guard(_mutex);
        return _presents;
    }

    bool waitForUpdates(std::uint64_t count) {
        std::unique_lock guard(_mutex);
        _updatesWanted = std::max(_updatesWanted, count);
        _wake.notify_all();
        _counted.wait(guard, [&] { return _updates >= count || _ended; });
        return _updates >= count;
    }

    void setNeedsDisplay() {
        const std::lock_guard guard(_mutex);
        _needsDisplay = true;
        _wake.notify_all();
    }

    bool runBetweenFrames(std::function<void()> job) {
        std::unique_lock guard(_mutex);
        _job = std::move(job);
        _wake.notify_all();
        _counted.wait(guard, [this] { return !_job || _ended; });
        return !std::exchange(_job, nullptr);
    }

private:
    void drawUntilStopped() {
        auto due = SteadyTime::now();
        std::unique_lock guard(_mutex);
        while (!_stops) {
            runJob(guard);
            const bool always = std::exchange(_needsDisplay, false);
            _mayHaveChanged = false;
            guard.unlock();
            const auto drawing = _host->drawFrame(always);
            if (drawing == ViewHost::Drawing::drawn) {
                _surface.present();
            }
            guard.lock();
            ++_updates;
            _presents += drawing == ViewHost::Drawing::drawn ? 1 : 0;
            _counted.notify_all();
            due = std::max(due + kFrameInterval, SteadyTime::now());
            _wake.wait_until(guard, due, [this] { return _stops || _job; });
            // What failed is tried again, as nobody may tell when it would succeed.
            _wake.wait(guard, [&] {
                return _stops || _job || _needsDisplay || _mayHaveChanged || _updates < _updatesWanted ||
                       drawing == ViewHost::Drawing::failed;
            });
            due = std::max(due, SteadyTime::now());
        }
    }

    void runJob(std::unique_lock<std::mutex>& guard) {
        if (const auto job = _job) {
            guard.unlock();
            guarded("a job of the drawing thread threw an exception", job);
            guard.lock();
            _job = nullptr;
            _counted.notify_all();
        }
    }

    std::shared_ptr<ViewHost> _host;
    RenderThread::Surface _surface;
    mutable std::mutex _mutex;
    std::condition_variable _wake;
    std::condition_variable _counted;
    bool _stops = false;
    bool _ended = false;
    bool _needsDisplay = true;
    bool _mayHaveChanged = false;
    std::uint64_t _updatesWanted = 0;
    std::function<void()> _job;
    std::uint64_t _updates = 0;
    std::uint64_t _presents = 0;
};

class FrameThread final : public RenderThread {
public:
    FrameThread(std::shared_ptr<ViewHost> host, Surface surface)
        : _loop(std::make_shared<FrameLoop>(std::move(host), std::move(surface))),
          _thread([loop = _loop] { loop->run(); }) {}

    ~FrameThread() override {
        _loop->stop();
        if (isOwnThread()) {
            _thread.detach(); // it cannot wait for itself; the frame under way is its last
        } else {
            _thread.join();
        }
    }

    std::uint64_t updateCount() const override { return _loop->updateCount(); }
    std::uint64_t presentCount() const override { return _loop->presentCount(); }
    bool waitForUpdates(std::uint64_t count) override {
        return !isOwnThread() ? _loop->waitForUpdates(count) : _loop->updateCount() >= count;
    }
    void setNeedsDisplay() override { _loop->setNeedsDisplay(); }
    bool runBetweenFrames(std::function<void()> job) override {
        return requireMainThread("RenderThread::runBetweenFrames") && _loop->runBetweenFrames(std::move(job));
    }

private:
    bool isOwnThread() const { return std::this_thread::get_id() == _thread.get_id(); }

    std::shared_ptr<FrameLoop> _loop;
    std::thread _thread;
};

} // namespace

RenderThread::~RenderThread() = default;

std::unique_ptr<RenderThread> RenderThread::start(std::shared_ptr<ViewHost> host, Surface surface) {
    if (!requireMainThread("RenderThread::start")) {
        surface = {};
    }
    return std::make_unique<FrameThread>(std::move(host), std::move(surface));
}

} // namespace trelmix
