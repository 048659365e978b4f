// Inside every callback an application may make every call, and destroy what it likes.
#include "Platform/Foundation/SceneLock.h"
#include "support/EngineFixture.h"
#include "support/Pixels.h"

#include <Trelmix/Host/OffscreenHost.h>
#include <Trelmix/Host/ViewHost.h>
#include <Trelmix/TrelmixMapEngineFactory.h>

#include <functional>
#include <map>
#include <string>
#include <thread>

namespace trelmix {
namespace {

using Factory = TrelmixMapEngineFactory;

constexpr CLLocationCoordinate2D kPlace{53.5, 10};
constexpr ViewHost::Layout kLayout{{400, 300}, {{0, 0}, {400, 300}}, 1};
constexpr CGPoint kMarkerAt{200, 150};
constexpr CGPoint kCircleAt{320, 60};
constexpr CGPoint kNothingAt{40, 240};

std::shared_ptr<const UIImage> icon() {
    static const auto image = plainImage(20, 20);
    return image;
}

/// An engine in a window with one overlay of each kind, and a delegate that acts once, inside one callback.
struct World : TrelmixMapEngineDelegate {
    explicit World(std::string callback) : kind(std::move(callback)) {
        engine = Factory::createMap();
        host = std::move(*ViewHost::make(engine, kLayout, {}));
        engine->initialiseWithTarget(kPlace, 18);
        const auto at = [this](CGPoint p) { return engine->projection()->worldCoordinateFor(p); };
        marker = Factory::createMapMarkerWith(icon(), kPlace);
        marker->setIsDraggable(true);
        circle = Factory::createMapCircleWithCoordinate(at(kCircleAt), 5);
        circle->setTappable(true);
        polygon = Factory::createMapPolygonWithCorners(
            {CLLocation(at({10, 10})), CLLocation(at({60, 10})), CLLocation(at({10, 60}))});
        line = Factory::createMapPolylineWithVertices({CLLocation(at({90, 10})), CLLocation(at({150, 60}))});
        plan = Factory::createLevelPlanNodeWith(icon(), at({300, 280}), at({380, 220}));
        layer = Factory::createMapTilesNode();
        overlays = {marker, circle, polygon, line, plan};
        for (const auto& overlay : overlays) {
            overlay->setMap(engine);
        }
        overlays.push_back(layer);
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
        return icon();
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
    std::shared_ptr<TrelmixMapPolygon> polygon;
    std::shared_ptr<TrelmixMapPolyline> line;
    std::shared_ptr<TrelmixLevelPlanNode> plan;
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
        w.offscreen->step(0);
    }
    if (w.host) {
        w.host->drawFrame();
    }
    RunLoop::main().drain();
}

void press(World& w, CGPoint at, CGPoint to, double seconds) {
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
    doIf([&](ViewHost& host) { host.touchMoved(1, to, Clock::now()); });
    doIf([&](ViewHost& host) { host.pump(); });
    doIf([&](ViewHost& host) { host.touchEnded(1, to, Clock::now()); });
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
    static const auto dragMarker = [](World& w) { press(w, kMarkerAt, {230, 170}, 0.7); };
    static const std::vector<Callback> list{
        {"willMove", moveCamera},
        {"willMove",
         [](World& w) {
             press(w, kNothingAt, {140, 200}, 0);
         }},
        {"didChange", moveCamera},
        {"idle", moveCamera},
        {"tap", [](World& w) { press(w, kNothingAt, kNothingAt, 0); }},
        {"longPress", [](World& w) { press(w, kNothingAt, kNothingAt, 0.7); }},
        {"tapMarker", [](World& w) { press(w, kMarkerAt, kMarkerAt, 0); }},
        {"tapOverlay", [](World& w) { press(w, kCircleAt, kCircleAt, 0); }},
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
    calls["engine view"] = [](World& w) { w.engine->view(); };
    calls["engine background"] = [](World& w) {
        w.engine->setBackgroundColor(std::nullopt);
        w.engine->backgroundColor();
    };
    calls["engine without delegate"] = [](World& w) { w.engine->setDelegate({}); };
    calls["engine conversions"] = [](World& w) {
        const auto projection = w.engine->projection();
        projection->screenCoordinateFor(projection->topLeftCoordinate());
    };
    calls["engine gestures off"] = [](World& w) {
        w.engine->setEnableRotationGesture(false);
        w.engine->setEnableTiltGesture(false);
        w.engine->setEnableZoomGesture(false);
        w.engine->setEnableScrollGesture(false);
    };
    calls["engine maxZoom"] = [](World& w) { w.engine->setMaxZoom(17); };
    calls["engine minZoom"] = [](World& w) { w.engine->setMinZoom(19); };
    calls["engine bounds"] = [](World& w) {
        w.engine->setCameraTargetBoundsNorthEast({54, 10.5});
        w.engine->setCameraTargetBoundsSouthWest({53.8, 10.2});
    };
    calls["engine exact hits"] = [](World& w) { w.engine->setHitTestBoundingBoxOnly(false); };
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
        w.polygon.reset();
        w.line.reset();
        w.plan.reset();
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
    calls["host overlay images"] = [](World& w) { w.host->setOverlayImages({{icon(), {{0, 0}, {20, 20}}}}); };
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
    const char* const kinds[] = {"marker", "circle", "polygon", "line", "plan", "layer"};
    for (std::size_t i = 0; i < std::size(kinds); ++i) {
        const auto add = [&](const char* what, std::function<void(World&, TrelmixMapOverlay&)> call) {
            calls[std::string(kinds[i]) + " " + what] = [i, call = std::move(call)](World& w) {
                call(w, *w.overlays[i]);
            };
        };
        add("off the map", [](World&, TrelmixMapOverlay& o) { o.setMap(nullptr); });
        add("on the map", [](World& w, TrelmixMapOverlay& o) { o.setMap(w.engine); });
        add("on another map", [](World&, TrelmixMapOverlay& o) { o.setMap(Factory::createMap()); });
        add("userInfo", [](World&, TrelmixMapOverlay& o) { o.setUserInfo(o.userInfo()); });
        add("zIndex", [](World&, TrelmixMapOverlay& o) { o.setZIndex(o.zIndex() - 50); });
        add("visible", [](World&, TrelmixMapOverlay& o) { o.setVisible(!o.visible()); });
        add("opacity", [](World&, TrelmixMapOverlay& o) { o.setOpacity(o.opacity() / 2); });
        add("tappable", [](World&, TrelmixMapOverlay& o) { o.setTappable(!o.tappable()); });
        add("description", [](World&, TrelmixMapOverlay& o) { EXPECT_NE(o.description(), ""); });
    }
    calls["marker coordinate"] = [](World& w) { w.marker->setCoordinate({53.501, 10.001}); };
    calls["marker coordinate animated"] = [](World& w) { w.marker->setCoordinate(kPlace, true, 1); };
    calls["marker presented"] = [](World& w) { w.marker->setCoordinate(w.marker->presentedCoordinate()); };
    calls["marker without icon"] = [](World& w) { w.marker->setMarkerIcon(nullptr); };
    calls["marker anchor"] = [](World& w) { w.marker->setGroundAnchor({0, 1}); };
    calls["marker tint"] = [](World& w) { w.marker->setTint(UIColor::redColor()); };
    calls["marker flat"] = [](World& w) { w.marker->setIsFlat(true); };
    calls["marker not draggable"] = [](World& w) { w.marker->setIsDraggable(false); };
    calls["marker rotation"] = [](World& w) { w.marker->setRotation(90, true, 1); };
    calls["circle coordinate"] = [](World& w) { w.circle->setCoordinate(kPlace); };
    calls["circle radius"] = [](World& w) { w.circle->setRadius(1000); };
    calls["circle colour"] = [](World& w) { w.circle->setColor(UIColor{1, 0, 0, 1}); };
    calls["circle update"] = [](World& w) { w.circle->updateCircleWithCoordinate(kPlace, 9, true, 1); };
    calls["polygon colour"] = [](World& w) { w.polygon->setColor(UIColor{1, 0, 0, 1}); };
    calls["polygon corners"] = [](World& w) { w.polygon->setPolygonCorners({}); };
    calls["line colour"] = [](World& w) { w.line->setColor(UIColor{1, 0, 0, 1}); };
    calls["line width"] = [](World& w) { w.line->setWidth(20); };
    calls["line vertices"] = [](World& w) { w.line->setPolylineVertices({}); };
    calls["plan corners"] = [](World& w) {
        w.plan->setSouthWest({53.4, 9.9});
        w.plan->setNorthEast({53.6, 10.1});
    };
    calls["plan image"] = [](World& w) { w.plan->setLevelPlanImage(nullptr); };
    calls["plan rotation"] = [](World& w) { w.plan->setLevelPlanRotation(45); };
    calls["layer synchronous"] = [](World& w) { w.layer->setSynchronousLayer(!w.layer->synchronousLayer()); };
    calls["layer of addresses"] = [](World& w) { w.layer->setImageUrlLayer(!w.layer->imageUrlLayer()); };
    calls["layer constructor"] = [](World& w) { w.layer->setImageUrlConstructor({}); };
    calls["layer cache"] = [](World& w) { w.layer->setImageCacheLimit(0); };
    calls["layer answer"] = [](World& w) { w.layer->provideTileForX(1, 2, 3, icon()); };
    calls["layer counts"] = [](World& w) {
        const TileCounts counts = w.layer->tileCounts();
        EXPECT_GE(counts.wanted, counts.answered);
    };
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

TEST_F(CallbackTable, anOffscreenHostMayBeDestroyedAndReplacedInsideAStep) {
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

} // namespace
} // namespace trelmix
