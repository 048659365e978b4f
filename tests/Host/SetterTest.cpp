// Every setter that changes the picture shows with the next frame of a resting window, as if the value had
// been there from the start. The others (tappable, draggable, user data, gestures, limits) draw nothing.
#include "Host/HostStage.h"
#include "Host/OverlaySetters.h"

namespace trelmix::setter_test {

struct Tiles : TrelmixMapEngineDelegate {
    std::shared_ptr<const UIImage> tileForX(std::int64_t, std::int64_t, std::int64_t) override {
        return plainImage(16, 16, {255, 255, 0, 255});
    }
};

/// A map in a window, with an area that every overlay lies on or under.
class Window {
public:
    Window() {
        engine->setDelegate(_tiles);
        engine->setBackgroundColor(UIColor{0, 1, 1, 1});
        engine->initialiseWithTarget(kHere, 18);
        ground->setColor(UIColor{1, 0, 0, 1});
        ground->setMap(engine);
        _host = std::move(*ViewHost::make(engine, {{100, 80}, {{0, 0}, {100, 80}}, 1}, {}));
        _host->setWakeUp([this] { ++wakeUps; });
    }
    /// As an event loop does it that sleeps while there is nothing to draw.
    bool isDrawn() {
        Clock::set(Clock::now() + 1.0 / 60);
        const bool drawn = _host->needsDisplay() && _host->drawFrame() == ViewHost::Drawing::drawn;
        _host->pump();
        return drawn;
    }
    std::vector<std::uint8_t> pictureAtRest() {
        while (_host->needsDisplay()) {
            isDrawn();
        }
        wakeUps = 0;
        const auto picture = *_host->image();
        return {picture->pixels().begin(), picture->pixels().end()};
    }

    std::shared_ptr<TrelmixMapEngine> engine = TrelmixMapEngineFactory::createMap();
    std::shared_ptr<TrelmixMapPolygon> ground = TrelmixMapEngineFactory::createMapPolygonWithCorners(
        {{53.4999, 9.9990}, {53.4999, 10.0010}, {53.4990, 10.0010}, {53.4990, 9.9990}});

    int wakeUps = 0;

private:
    std::shared_ptr<Tiles> _tiles = std::make_shared<Tiles>();
    std::unique_ptr<ViewHost> _host;
};

class SetterTest : public WindowFixture {
protected:
    using Change = std::function<void(TrelmixMapOverlay&, TrelmixMapEngine&)>;

    /// `before` gives the same picture to an overlay that is not on a map yet.
    static void expectShows(const OverlayKind& kind, const Change& change, const Change& before) {
        Window resting;
        const auto overlay = kind.make();
        overlay->setMap(resting.engine);
        const auto first = resting.pictureAtRest();
        change(*overlay, *resting.engine);
        EXPECT_EQ(resting.wakeUps, 1);
        EXPECT_TRUE(resting.isDrawn());
        const auto changed = resting.pictureAtRest();
        EXPECT_TRUE(changed != first);

        Window fresh;
        const auto other = kind.make();
        before(*other, *fresh.engine);
        other->setMap(fresh.engine);
        // Vertices written under another camera may be rounded otherwise.
        EXPECT_LE(largestDifference(fresh.pictureAtRest(), changed), 1);
    }
};

TEST_F(SetterTest, ofTheEngine) {
    const std::pair<const char*, std::function<void(TrelmixMapEngine&)>> setters[] = {
        {"backgroundColor", [](auto& map) { map.setBackgroundColor(UIColor::blackColor()); }},
        {"no backgroundColor", [](auto& map) { map.setBackgroundColor(std::nullopt); }},
        {"camera",
         [](auto& map) {
             map.setCamera(std::make_shared<TrelmixMapEngineCamera>(kEast, 40, 30, 18.5F), false);
         }},
        {"cameraWithRotation", [](auto& map) { map.setCameraWithRotation(40, 30, 18.5F, false); }}};
    for (const auto& [name, set] : setters) {
        const Change change = [&set = set](auto&, auto& map) { set(map); };
        for (const OverlayKind& kind : {markers(), polylines()}) {
            SCOPED_TRACE(kind.name + " " + name);
            expectShows(kind, change, change);
        }
    }
}

TEST_F(SetterTest, ofEachOverlay) {
    for (const OverlayKind& kind : overlayKinds()) {
        for (const OverlaySetter& setter : kind.setters) {
            SCOPED_TRACE(kind.name + " " + setter.name);
            expectShows(
                kind, [&](auto& overlay, auto&) { setter.set(overlay); },
                [&](auto& overlay, auto&) { (setter.before ? setter.before : setter.set)(overlay); });
        }
    }
}

} // namespace trelmix::setter_test
