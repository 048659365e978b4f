// Inside every callback an application may make every call, and destroy what it likes.
#include "Host/OverlaySetters.h"
#include "Platform/Foundation/SceneLock.h"
#include "support/EngineFixture.h"

#include <Trelmix/Host/OffscreenHost.h>
#include <Trelmix/Host/ViewHost.h>

#include <functional>
#include <map>
#include <string>
#include <thread>

namespace trelmix::callback_table_test {

using Factory = TrelmixMapEngineFactory;

constexpr ViewHost::Layout kLayout{{400, 300}, {{0, 0}, {400, 300}}, 1};
constexpr CGPoint kMarkerAt{200, 150}, kDropAt{230, 170}, kCircleAt{320, 60}, kNothingAt{40, 240};

/// An engine in a window with one overlay of each kind, and a delegate that acts once, inside one callback.
struct World : TrelmixMapEngineDelegate {
    explicit World(std::string callback) : kind(std::move(callback)) {
        engine = Factory::createMap();
        host = std::move(*ViewHost::make(engine, kLayout, {}));
        engine->initialiseWithTarget(kHere, 18);
        for (const OverlayKind& each : overlayKinds()) {
            overlays.push_back(each.make());
        }
        marker = std::dynamic_pointer_cast<TrelmixMapMarker>(overlays[0]);
        marker->setIsDraggable(true);
        circle = std::dynamic_pointer_cast<TrelmixMapCircle>(overlays[1]);
        circle->setCoordinate(engine->projection()->worldCoordinateFor(kCircleAt));
        circle->setTappable(true);
        layer = std::dynamic_pointer_cast<TrelmixMapTileLayer>(overlays[5]);
        layer->setSynchronousLayer(false);
        for (std::size_t i = 0; i < 5; ++i) {
            overlays[i]->setMap(engine);
        }
        host->drawFrame();
        RunLoop::main().drain();
    }

    void act(const std::string& callback) {
        EXPECT_FALSE(SceneLock::isHeldHere()) << callback;
        if (callback == kind && !std::exchange(hasActed, true)) {
            action(*this);
        }
    }
    void mapViewWillMoveFromGesture(bool) override { act("willMove"); }
    void mapViewDidChangeCamera(const std::shared_ptr<TrelmixMapEngineCamera>&) override { act("didChange"); }
    void mapViewIdleAtCamera(const std::shared_ptr<TrelmixMapEngineCamera>&) override { act("idle"); }
    void mapViewDidTapAt(CLLocationCoordinate2D) override { act("tap"); }
    void mapViewDidLongPressAt(CLLocationCoordinate2D) override { act("longPress"); }
    bool mapViewDidTapMarker(const std::shared_ptr<TrelmixMapMarker>&) override {
        act("tapMarker");
        return false;
    }
    void mapViewDidTapAtOverlay(const std::shared_ptr<TrelmixMapOverlay>&) override { act("tapOverlay"); }
    void mapViewDidBeginDraggingMarker(const std::shared_ptr<TrelmixMapMarker>&) override { act("begin"); }
    void mapViewDidDragMarker(const std::shared_ptr<TrelmixMapMarker>&) override { act("drag"); }
    void mapViewDidEndDraggingMarker(const std::shared_ptr<TrelmixMapMarker>&) override { act("end"); }
    std::shared_ptr<const UIImage> tileForX(std::int64_t, std::int64_t, std::int64_t) override {
        act("tileNow");
        return plainImage(20, 20);
    }
    void tileRequestedForX(std::int64_t, std::int64_t, std::int64_t,
                           const std::shared_ptr<TrelmixMapTileLayer>&) override {
        act("tileLater");
    }

    std::string kind;
    std::function<void(World&)> action;
    bool hasActed = false;
    std::shared_ptr<TrelmixMapEngine> engine;
    std::unique_ptr<ViewHost> host;
    std::unique_ptr<OffscreenHost> offscreen;
    std::shared_ptr<TrelmixMapMarker> marker;
    std::shared_ptr<TrelmixMapCircle> circle;
    std::shared_ptr<TrelmixMapTileLayer> layer;
    std::vector<std::shared_ptr<TrelmixMapOverlay>> overlays;
};

/// Dies with what holds it, and that is a callback too.
struct Farewell {
    explicit Farewell(World& that) : world(&that) {}
    Farewell(const Farewell&) = delete;
    Farewell& operator=(const Farewell&) = delete;
    World* world;
    ~Farewell() { world->act("farewell"); }
};

void frame(World& w, double seconds = 2) {
    Clock::set(Clock::now() + seconds);
    if (w.offscreen) {
        w.offscreen->settle(0);
    }
    if (w.host) {
        w.host->drawFrame();
    }
    RunLoop::main().drain();
}

/// One move is delivered when the host is pumped, an earlier one when the next comes.
void press(World& w, CGPoint at, const std::vector<CGPoint>& moves, double seconds) {
    const auto doIf = [&w](auto&& event) {
        if (w.host) {
            event(*w.host);
        }
        RunLoop::main().drain();
        Clock::set(Clock::now() + 0.02);
    };
    doIf([&](ViewHost& host) { host.touchBegan(1, at, Clock::now()); });
    Clock::set(Clock::now() + seconds);
    RunLoop::main().drain();
    for (const CGPoint to : moves) {
        doIf([&](ViewHost& host) { host.touchMoved(1, to, Clock::now()); });
    }
    doIf([&](ViewHost& host) { host.pump(); });
    doIf([&](ViewHost& host) { host.touchEnded(1, moves.back(), Clock::now()); });
    frame(w, 1);
}

void askForTiles(World& w) {
    w.layer->setMap(w.engine);
    frame(w);
}

struct Callback {
    std::string name;
    std::function<void(World&)> provoke;
};

const std::vector<Callback>& callbacks() {
    static const auto moveCamera = [](World& w) {
        w.engine->setCameraWithRotation(20, 10, 18, false);
        frame(w);
    };
    static const auto dragMarker = [](World& w) { press(w, kMarkerAt, {kDropAt}, 0.7); };
    static const std::vector<CGPoint> way{kCircleAt, kMarkerAt};
    static const auto pan = [](World& w) { press(w, kNothingAt, way, 0); };
    static const std::vector<Callback> list{
        {"willMove", moveCamera},
        {"willMove", [](World& w) { press(w, kNothingAt, {kMarkerAt}, 0); }},
        {"willMove", pan},
        {"didChange", moveCamera},
        {"idle", moveCamera},
        {"tap", [](World& w) { press(w, kNothingAt, {kNothingAt}, 0); }},
        {"longPress", [](World& w) { press(w, kNothingAt, {kNothingAt}, 0.7); }},
        {"tapMarker", [](World& w) { press(w, kMarkerAt, {kMarkerAt}, 0); }},
        {"tapOverlay", [](World& w) { press(w, kCircleAt, {kCircleAt}, 0); }},
        {"begin", dragMarker},
        {"drag", dragMarker},
        {"end", dragMarker},
        {"tileLater", askForTiles},
        {"tileNow",
         [](World& w) {
             w.layer->setSynchronousLayer(true);
             askForTiles(w);
         }},
        {"address",
         [](World& w) {
             w.layer->setImageUrlLayer(true);
             w.layer->setImageUrlConstructor([&w](auto, auto, auto) -> std::optional<URL> {
                 w.act("address");
                 return std::nullopt;
             });
             askForTiles(w);
         }},
        {"farewell",
         [](World& w) {
             w.circle->setUserInfo(std::make_shared<Farewell>(w));
             w.circle->setUserInfo({});
         }},
    };
    return list;
}

using Calls = std::map<std::string, std::function<void(World&)>>;

void addEngineCalls(Calls& calls) {
    calls["engine conversions"] = [](World& w) {
        const auto projection = w.engine->projection();
        projection->screenCoordinateFor(projection->topLeftCoordinate());
    };
    calls["engine without delegate"] = [](World& w) { w.engine->setDelegate({}); };
    calls["engine switches"] = [](World& w) {
        w.engine->setBackgroundColor(std::nullopt);
        w.engine->setEnableRotationGesture(false);
        w.engine->setEnableTiltGesture(false);
        w.engine->setEnableZoomGesture(false);
        w.engine->setEnableScrollGesture(false);
        w.engine->setHitTestBoundingBoxOnly(false);
    };
    calls["engine maxZoom"] = [](World& w) { w.engine->setMaxZoom(17); };
    calls["engine minZoom"] = [](World& w) { w.engine->setMinZoom(19); };
    calls["engine bounds"] = [](World& w) {
        w.engine->setCameraTargetBoundsNorthEast({54, 10.5});
        w.engine->setCameraTargetBoundsSouthWest({53.8, 10.2});
    };
    calls["engine initialise"] = [](World& w) { w.engine->initialiseWithTarget({1, 2}, 20); };
    calls["engine setCamera"] = [](World& w) { w.engine->setCameraWithRotation(90, 30, 16, false); };
    calls["engine setCamera animated"] = [](World& w) { w.engine->setCameraWithRotation(90, 30, 16, true); };
    calls["engine set its own camera"] = [](World& w) { w.engine->setCamera(w.engine->camera(), true); };
    calls["engine destroyed"] = [](World& w) { w.engine.reset(); };
    calls["engine and host destroyed"] = [](World& w) {
        w.engine.reset();
        w.host.reset();
    };
    calls["everything destroyed"] = [](World& w) {
        w.host.reset();
        w.engine.reset();
        w.overlays.clear();
        w.marker.reset();
        w.circle.reset();
        w.layer.reset();
    };
}

void addHostCalls(Calls& calls) {
    calls["host setLayout"] = [](World& w) { w.host->setLayout({{300, 500}, {{10, 10}, {280, 480}}, 2}); };
    calls["host touchBegan"] = [](World& w) { w.host->touchBegan(2, {100, 100}, Clock::now()); };
    calls["host touchMoved"] = [](World& w) { w.host->touchMoved(1, {100, 100}, Clock::now()); };
    calls["host touchEnded"] = [](World& w) { w.host->touchEnded(1, {100, 100}, Clock::now()); };
    calls["host touchCancelled"] = [](World& w) { w.host->touchCancelled(1, Clock::now()); };
    calls["host cancelTouches"] = [](World& w) { w.host->cancelTouches(); };
    calls["host overlay images"] = [](World& w) {
        w.host->setOverlayImages({{plainImage(20, 20), {{0, 0}, {20, 20}}}});
    };
    calls["host pump"] = [](World& w) { w.host->pump(); };
    calls["host waitForWork"] = [](World& w) { w.host->waitForWork(0); };
    calls["host drawFrame"] = [](World& w) { w.host->drawFrame(true); };
    calls["host image"] = [](World& w) { w.host->image(); };
    calls["host contextWasLost"] = [](World& w) { w.host->contextWasLost(); };
    calls["host destroyed"] = [](World& w) { w.host.reset(); };
    calls["host replaced"] = [](World& w) { w.host = std::move(*ViewHost::make(w.engine, kLayout, {})); };
    calls["host for another engine"] = [](World& w) {
        w.engine = Factory::createMap();
        w.host = std::move(*ViewHost::make(w.engine, kLayout, {}));
    };
    calls["NaN layout"] = [](World& w) { w.host->resize(__builtin_nan(""), 5, 1); };
}

void addOverlayCalls(Calls& calls) {
    const auto kinds = overlayKinds();
    for (std::size_t i = 0; i < kinds.size(); ++i) {
        const auto add = [&](const std::string& what, auto call) {
            calls[kinds[i].name + " " + what] = [i, call](World& w) { call(w, *w.overlays[i]); };
        };
        for (const OverlaySetter& setter : kinds[i].setters) {
            add(setter.name, [set = setter.set](World&, auto& overlay) { set(overlay); });
        }
        add("off the map", [](World&, auto& overlay) { overlay.setMap(nullptr); });
        add("on the map", [](World& w, auto& overlay) { overlay.setMap(w.engine); });
        add("on another map", [](World&, auto& overlay) { overlay.setMap(Factory::createMap()); });
        add("userInfo", [](World&, auto& overlay) { overlay.setUserInfo(overlay.userInfo()); });
        add("tappable", [](World&, auto& overlay) { overlay.setTappable(!overlay.tappable()); });
        add("description", [](World&, auto& overlay) { EXPECT_NE(overlay.description(), ""); });
    }
    calls["marker presented"] = [](World& w) { w.marker->setCoordinate(w.marker->presentedCoordinate()); };
    calls["marker not draggable"] = [](World& w) { w.marker->setIsDraggable(false); };
    calls["circle slowly"] = [](World& w) { w.circle->updateCircleWithCoordinate(kEast, 9, true, 1); };
    calls["layer synchronous"] = [](World& w) { w.layer->setSynchronousLayer(!w.layer->synchronousLayer()); };
    calls["layer of addresses"] = [](World& w) { w.layer->setImageUrlLayer(!w.layer->imageUrlLayer()); };
    calls["layer constructor"] = [](World& w) { w.layer->setImageUrlConstructor({}); };
    calls["layer cache"] = [](World& w) { w.layer->setImageCacheLimit(0); };
    calls["layer answer"] = [](World& w) { w.layer->provideTileForX(1, 2, 3, plainImage(20, 20)); };
    calls["layer counts"] = [](World& w) { EXPECT_EQ(w.layer->tileCounts().failed, 0U); };
    calls["second layer"] = [](World& w) { Factory::createMapTilesNode()->setMap(w.engine); };
}

const Calls& allCalls() {
    static const Calls all = [] {
        Calls calls;
        addEngineCalls(calls);
        addHostCalls(calls);
        addOverlayCalls(calls);
        return calls;
    }();
    return all;
}

class CallbackTable : public EngineFixture {
protected:
    /// The engine of the pair must be gone at its end, whatever happened.
    static void runPair(const Callback& callback, const std::function<void(World&)>& call,
                        const std::function<void(World&)>& prepare = {}) {
        std::weak_ptr<TrelmixMapEngine> watched;
        {
            const auto world = std::make_shared<World>(callback.name);
            watched = world->engine;
            world->engine->setDelegate(world);
            world->action = call;
            if (prepare) {
                prepare(*world);
            }
            callback.provoke(*world);
            EXPECT_TRUE(world->hasActed) << "the callback never came";
            frame(*world);
            world->action = nullptr;
            world->hasActed = true;
        }
        RunLoop::main().drain();
        EXPECT_TRUE(watched.expired());
    }
};

TEST_F(CallbackTable, everyCallMayBeMadeInsideEveryCallback) {
    for (const Callback& callback : callbacks()) {
        for (const auto& [name, call] : allCalls()) {
            SCOPED_TRACE(callback.name + ": " + name);
            runPair(callback, call);
            TrelmixMapMarker::setMarkerAnimationDuration(0.2);
            ZoomLimits::reset();
            ASSERT_FALSE(HasFailure());
        }
    }
}

TEST_F(CallbackTable, anOffscreenHostMayBeDestroyedAndReplacedWhileItSettles) {
    const auto takeOver = [](World& w) {
        w.host.reset();
        w.offscreen = std::move(*OffscreenHost::make(w.engine, {.width = 64, .height = 48}));
    };
    for (const Callback& callback : callbacks()) {
        if (callback.name.starts_with("tile") || callback.name == "address") {
            runPair(
                callback, [](World& w) { w.offscreen.reset(); }, takeOver);
            runPair(callback, takeOver, takeOver);
            runPair(
                callback, [](World& w) { w.offscreen->step(2); }, takeOver);
        }
    }
}

TEST_F(CallbackTable, callsOnAnotherThreadAreRefusedAndReported) {
    for (const auto& entry : allCalls()) {
        const auto& name = entry.first;
        if (name.find("destroyed") != std::string::npos || name == "layer answer" ||
            name == "engine conversions" || name.starts_with("host ")) {
            continue;
        }
        World world("none");
        std::thread([&] { entry.second(world); }).join();
        EXPECT_FALSE(takeFaults().empty() && name.find("description") == std::string::npos) << name;
        world.overlays.clear();
        RunLoop::main().drain();
    }
    World world("none");
    std::thread([&world] {
        EXPECT_NE(ViewHost::make(world.engine, kLayout, {}).reason().find("chooseMainThread"),
                  std::string::npos);
        EXPECT_NE(OffscreenHost::make(world.engine, {}).reason().find("chooseMainThread"), std::string::npos);
        EXPECT_FALSE(world.host->setLayout(kLayout));
        EXPECT_FALSE(world.host->pump());
        world.host->touchBegan(1, {}, 0);
        world.host->touchMoved(1, {}, 0);
        world.host->cancelTouches();
    }).join();
    EXPECT_EQ(takeFaults().size(), 5U);
}

} // namespace trelmix::callback_table_test
