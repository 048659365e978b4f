#include <Trelmix/Host/RenderThread.h>

#include <Trelmix/Host/ViewHost.h>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace trelmix {

namespace {

using SteadyTime = std::chrono::steady_clock;
constexpr auto kFrameInterval = std::chrono::microseconds(16'667);

class FrameLoop final : public RenderThread {
public:
    FrameLoop(std::shared_ptr<ViewHost> host, Surface surface)
        : _host(std::move(host)), _surface(std::move(surface)), _thread([this] { run(); }) {}

    ~FrameLoop() override {
        {
            const std::lock_guard guard(_mutex);
            _stops = true;
        }
        _wake.notify_all();
        _thread.join();
    }

    std::uint64_t updateCount() const override {
        const std::lock_guard guard(_mutex);
        return _updates;
    }

    std::uint64_t presentCount() const override {
        const std::lock_guard guard(_mutex);
        return _presents;
    }

    bool waitForUpdates(std::uint64_t count) override {
        std::unique_lock guard(_mutex);
        _counted.wait(guard, [&] { return _updates >= count || _ended; });
        return _updates >= count;
    }

    void setNeedsDisplay() override {
        const std::lock_guard guard(_mutex);
        _needsDisplay = true;
    }

    bool runBetweenFrames(std::function<void()> job) override {
        std::unique_lock guard(_mutex);
        _job = std::move(job);
        _wake.notify_all();
        _counted.wait(guard, [this] { return !_job || _ended; });
        return !std::exchange(_job, nullptr);
    }

private:
    void run() {
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

    void drawUntilStopped() {
        auto due = SteadyTime::now();
        std::unique_lock guard(_mutex);
        while (!_stops) {
            runJob(guard);
            const bool always = std::exchange(_needsDisplay, false);
            guard.unlock();
            const bool isDrawn = _host->drawFrame(always) == ViewHost::Drawing::drawn;
            if (isDrawn) {
                _surface.present();
            }
            guard.lock();
            ++_updates;
            _presents += isDrawn ? 1 : 0;
            _counted.notify_all();
            due = std::max(due + kFrameInterval, SteadyTime::now());
            _wake.wait_until(guard, due, [this] { return _stops || _job; });
        }
    }

    void runJob(std::unique_lock<std::mutex>& guard) {
        if (const auto job = _job) {
            guard.unlock();
            job();
            guard.lock();
            _job = nullptr;
            _counted.notify_all();
        }
    }

    std::shared_ptr<ViewHost> _host;
    Surface _surface;
    mutable std::mutex _mutex;
    std::condition_variable _wake;
    std::condition_variable _counted;
    bool _stops = false;
    bool _ended = false;
    bool _needsDisplay = true;
    std::function<void()> _job;
    std::uint64_t _updates = 0;
    std::uint64_t _presents = 0;
    std::thread _thread;
};

} // namespace

RenderThread::~RenderThread() = default;

std::unique_ptr<RenderThread> RenderThread::start(std::shared_ptr<ViewHost> host, Surface surface) {
    return std::make_unique<FrameLoop>(std::move(host), std::move(surface));
}

} // namespace trelmix
