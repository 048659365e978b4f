// What a window costs at rest: processor time of the whole process while nothing happens, as a share of one
// core. Drawn by the thread of its own and by an event loop that sleeps, beside one that asks for a frame
// sixty times a second.
#include "Render/FrameTarget.h"
#include "Render/GLContext.h"
#include "Report.h"
#include "Window.h"

#include <Trelmix/Host/RenderThread.h>
#include <Trelmix/TrelmixMapEngineFactory.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <ctime>
#include <mutex>
#include <thread>

namespace trelmix::bench {
namespace {

constexpr double kSeconds = 20;
constexpr CLLocationCoordinate2D kMiddle{53.5, 10};
constexpr CGSize kSize{800, 600};

double processSeconds() {
    timespec used{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &used);
    return static_cast<double>(used.tv_sec) + static_cast<double>(used.tv_nsec) * 1e-9;
}

/// A map of so many markers, a twentieth of them in view.
std::shared_ptr<TrelmixMapEngine> makeMap(int count) {
    const auto map = TrelmixMapEngineFactory::createMap();
    map->initialiseWithTarget(kMiddle, 17);
    const auto icon = UIImage::withPixels(16, 16, std::vector<std::uint8_t>(std::size_t{16} * 16 * 4, 200));
    for (int i = 0; i < count; ++i) {
        TrelmixMapEngineFactory::createMapMarkerWith(icon, {kMiddle.latitude + 0.00005 * (i / 200 - 100),
                                                            kMiddle.longitude + 0.0001 * (i % 200 - 100)})
            ->setMap(map);
    }
    return map;
}

/// An application's event loop: it sleeps until it is woken.
class Loop {
public:
    void wake() {
        const std::lock_guard guard(_mutex);
        _isWoken = true;
        _wake.notify_all();
    }
    void sleep(double longest) {
        std::unique_lock guard(_mutex);
        _wake.wait_for(guard, std::chrono::duration<double>(std::max(0.0, longest)),
                       [this] { return _isWoken; });
        _isWoken = false;
    }

private:
    std::mutex _mutex;
    std::condition_variable _wake;
    bool _isWoken = false;
};

/// A share of one core after a rest of three seconds, in which `turn` runs the loop until the time that it is
/// given.
template <class Turn>
double shareAtRest(double length, Turn turn) {
    for (const double start = seconds(); seconds() < start + 3;) {
        turn(start + 3);
    }
    const double used = processSeconds();
    const double start = seconds();
    while (seconds() < start + length) {
        turn(start + length);
    }
    return 100 * (processSeconds() - used) / (seconds() - start);
}

double polledShare(int count) {
    Window window(kSize);
    window.show(makeMap(count));
    return shareAtRest(kSeconds / 4, [&](double) {
        window.host().pump();
        window.host().drawFrame();
        std::this_thread::sleep_for(std::chrono::microseconds(16'667));
    });
}

double sleepingShare(int count) {
    Window window(kSize);
    window.show(makeMap(count));
    Loop loop;
    window.host().setWakeUp([&] { loop.wake(); });
    return shareAtRest(kSeconds, [&](double end) {
        window.host().pump();
        if (window.host().needsDisplay()) {
            window.host().drawFrame();
        }
        const double longest = std::min(end - seconds(), window.host().secondsToPump());
        loop.sleep(window.host().needsDisplay() ? std::min(longest, 1.0 / 60) : longest);
    });
}

double threadShare(int count) {
    auto context = std::move(*GLContext::makeOffscreen());
    context->release();
    std::optional<FrameTarget> bitmap;
    const std::shared_ptr<ViewHost> host =
        std::move(*ViewHost::make(makeMap(count), {kSize, {{0, 0}, kSize}, 1}, {.samples = 1}));
    Loop loop;
    host->setWakeUp([&] { loop.wake(); });
    auto thread = RenderThread::start(host, {[&] {
                                                 context->makeCurrent();
                                                 bitmap.emplace(makeBitmap(*context, 800, 600));
                                                 bitmap->bindForDrawing();
                                                 return true;
                                             },
                                             [] {},
                                             [&] {
                                                 bitmap.reset();
                                                 context->release();
                                             }});
    const double share = shareAtRest(kSeconds, [&](double end) {
        host->pump();
        loop.sleep(std::min(end - seconds(), host->secondsToPump()));
    });
    thread.reset();
    context->makeCurrent();
    return share;
}

void run() {
    startTable("at rest, 800x600, percent of one core over 20 s");
    const Goal nothing{Goal::Kind::atMost, 0.1};
    for (const int count : {0, 40'000}) {
        const std::string name = ", " + std::to_string(count) + " markers";
        const double polled = inOwnProcess([=] { return polledShare(count); });
        report({"a loop that sleeps" + name, inOwnProcess([=] { return sleepingShare(count); }), "%", polled,
                nothing});
        report({"a drawing thread" + name, inOwnProcess([=] { return threadShare(count); }), "%", polled,
                nothing});
    }
}

} // namespace
} // namespace trelmix::bench

int main() {
    trelmix::bench::run();
}
