// Every setter that changes the picture shows with the next frame of a resting window, as if the value had
// been there from the start. The others (tappable, draggable, user data, gestures, limits) draw nothing.
#include "Host/HostStage.h"

#include <Trelmix/TrelmixMapEngineFactory.h>

#include <algorithm>
#include <cstdlib>

namespace trelmix {
namespace {

constexpr CLLocationCoordinate2D kHere{53.5, 10};
// Of one latitude: the scale of an overlay is that of its first one.
constexpr CLLocationCoordinate2D kEast{53.5, 10.0004};
constexpr CLLocationCoordinate2D kNorthEast{53.5002, 10.0003};
const std::vector<CLLocation> kPlaces{{53.5001, 9.9996}, {53.5, 10.0001}, {53.4998, 9.9996}};
const std::vector<CLLocation> kOthers{{53.5001, 10.0004}, {53.5, 10.0001}, {53.4997, 10.0003}};
const UIColor kGreen{0, 1, 0, 0.5};

using Factory = TrelmixMapEngineFactory;

std::shared_ptr<const UIImage> twoColours(int width, int height) {
    std::vector<std::uint8_t> pixels;
    for (int i = 0; i < width * height; ++i) {
        const auto green = static_cast<std::uint8_t>(i % width < width / 3 ? 200 : 0);
        pixels.insert(pixels.end(), {0, green, 255, 255});
    }
    return UIImage::withPixels(width, height, std::move(pixels));
}

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
    }
    bool isDrawn() {
        Clock::set(Clock::now() + 1.0 / 60);
        const bool drawn = _host->drawFrame() == ViewHost::Drawing::drawn;
        _host->pump();
        return drawn;
    }
    std::vector<std::uint8_t> pictureAtRest() {
        while (isDrawn()) {
        }
        const auto picture = *_host->image();
        return {picture->pixels().begin(), picture->pixels().end()};
    }

    std::shared_ptr<TrelmixMapEngine> engine = Factory::createMap();
    std::shared_ptr<TrelmixMapPolygon> ground = Factory::createMapPolygonWithCorners(
        {{53.4999, 9.9990}, {53.4999, 10.0010}, {53.4990, 10.0010}, {53.4990, 9.9990}});

private:
    std::shared_ptr<Tiles> _tiles = std::make_shared<Tiles>();
    std::unique_ptr<ViewHost> _host;
};

/// Vertices that were written under another camera may be rounded otherwise: by the last bit of a colour.
int largestDifference(const std::vector<std::uint8_t>& a, const std::vector<std::uint8_t>& b) {
    int largest = a.size() == b.size() ? 0 : 255;
    for (std::size_t i = 0; largest < 255 && i < a.size(); ++i) {
        largest = std::max(largest, std::abs(a[i] - b[i]));
    }
    return largest;
}

struct Setter {
    std::string name;
    std::function<void(TrelmixMapOverlay&, TrelmixMapEngine&)> set;
    /// What gives the same picture to an overlay that is not on a map yet; empty for the setter itself.
    std::function<void(TrelmixMapOverlay&, TrelmixMapEngine&)> before;
};

template <class Kind, class F>
Setter setter(std::string name, F set) {
    return {
        std::move(name), [set](TrelmixMapOverlay& o, TrelmixMapEngine&) { set(dynamic_cast<Kind&>(o)); }, {}};
}
template <class Kind, class F, class G>
Setter setter(std::string name, F set, G before) {
    Setter result = setter<Kind>(std::move(name), set);
    result.before = setter<Kind>("", before).set;
    return result;
}

class SetterTest : public EngineFixture {
protected:
    void SetUp() override {
        EngineFixture::SetUp();
        context = std::move(*GLContext::makeOffscreen());
        window = std::make_unique<TestWindow>(100, 80);
    }
    void TearDown() override {
        window.reset();
        context.reset();
        EngineFixture::TearDown();
    }

    /// Each setter in turn, on a new overlay.
    static void expectEachShows(const std::function<std::shared_ptr<TrelmixMapOverlay>()>& make,
                                const std::vector<Setter>& setters) {
        for (const Setter& setter : setters) {
            SCOPED_TRACE(setter.name);
            Window resting;
            const auto overlay = make();
            overlay->setMap(resting.engine);
            const auto first = resting.pictureAtRest();
            setter.set(*overlay, *resting.engine);
            EXPECT_TRUE(resting.isDrawn());
            const auto changed = resting.pictureAtRest();
            EXPECT_TRUE(changed != first);

            Window fresh;
            const auto other = make();
            (setter.before ? setter.before : setter.set)(*other, *fresh.engine);
            other->setMap(fresh.engine);
            EXPECT_LE(largestDifference(fresh.pictureAtRest(), changed), 1);
        }
    }
    static std::vector<Setter> with(std::vector<Setter> own, std::int64_t zIndex) {
        using O = TrelmixMapOverlay;
        own.push_back(setter<O>("zIndex", [zIndex](O& o) { o.setZIndex(zIndex); }));
        own.push_back(setter<O>("visible", [](O& o) { o.setVisible(false); }));
        own.push_back(setter<O>("opacity", [](O& o) { o.setOpacity(0.4); }));
        return own;
    }

    std::unique_ptr<GLContext> context;
    std::unique_ptr<TestWindow> window;
};

TEST_F(SetterTest, ofTheEngine) {
    using Set = void (*)(TrelmixMapOverlay&, TrelmixMapEngine&);
    const std::pair<const char*, Set> setters[] = {
        {"backgroundColor",
         [](auto&, auto& map) {
             map.setBackgroundColor(UIColor{0, 0, 0, 1});
         }},
        {"no backgroundColor", [](auto&, auto& map) { map.setBackgroundColor(std::nullopt); }},
        {"camera",
         [](auto&, auto& map) {
             map.setCamera(std::make_shared<TrelmixMapEngineCamera>(kEast, 40, 30, 18.5F), false);
         }},
        {"cameraWithRotation", [](auto&, auto& map) { map.setCameraWithRotation(40, 30, 18.5F, false); }}};
    for (const auto& [name, set] : setters) {
        expectEachShows([] { return Factory::createMapMarkerWith(twoColours(20, 30), kHere); },
                        {{name, set, {}}});
        expectEachShows([] { return Factory::createMapPolylineWithVertices(kPlaces); }, {{name, set, {}}});
    }
}

TEST_F(SetterTest, ofMarkers) {
    using M = TrelmixMapMarker;
    const auto wide = twoColours(30, 10);
    const auto place = [](M& m) { m.setCoordinate(kEast); };
    const auto turn = [](M& m) { m.setIsFlat(true), m.setMarkerRotation(50); };
    expectEachShows(
        [] { return Factory::createMapMarkerWith(twoColours(20, 30), kHere); },
        with({setter<M>("coordinate", place),
              setter<M>(
                  "coordinate at once", [](M& m) { m.setCoordinate(kEast, false, 0); }, place),
              setter<M>(
                  "coordinate slowly", [](M& m) { m.setCoordinate(kEast, true, 0.3); }, place),
              setter<M>("markerIcon", [wide](M& m) { m.setMarkerIcon(wide); }),
              setter<M>("no markerIcon", [](M& m) { m.setMarkerIcon(nullptr); }),
              setter<M>("tint", [](M& m) { m.setTint(kGreen); }),
              setter<M>("groundAnchor",
                        [](M& m) {
                            m.setGroundAnchor({1, 0.2});
                        }),
              setter<M>("tint",
                        [](M& m) {
                            m.setTint({1, 0.5, 0, 0.8});
                        }),
              setter<M>("markerRotation", turn),
              setter<M>(
                  "rotation", [](M& m) { m.setIsFlat(true), m.setRotation(50, false, 0); }, turn)},
             20));
}

TEST_F(SetterTest, ofCircles) {
    using C = TrelmixMapCircle;
    expectEachShows(
        [] {
            auto circle = Factory::createMapCircleWithCoordinate(kHere, 15);
            circle->setColor(UIColor::blueColor());
            return circle;
        },
        with({setter<C>("coordinate", [](C& c) { c.setCoordinate(kEast); }),
              setter<C>("radius", [](C& c) { c.setRadius(9); }),
              setter<C>("color", [](C& c) { c.setColor(kGreen); }),
              setter<C>("no color", [](C& c) { c.setColor(std::nullopt); }),
              setter<C>(
                  "both", [](C& c) { c.updateCircleWithCoordinate(kEast, 9, false, 0); },
                  [](C& c) { c.setCoordinate(kEast), c.setRadius(9); })},
             20));
}

TEST_F(SetterTest, ofPolygons) {
    using P = TrelmixMapPolygon;
    expectEachShows(
        [] {
            auto polygon = Factory::createMapPolygonWithCorners(kPlaces);
            polygon->setColor(UIColor::blueColor());
            return polygon;
        },
        with({setter<P>("color", [](P& p) { p.setColor(kGreen); }),
              setter<P>("no color", [](P& p) { p.setColor(std::nullopt); }),
              setter<P>("polygonCorners", [](P& p) { p.setPolygonCorners(kOthers); }),
              setter<P>("no polygonCorners", [](P& p) { p.setPolygonCorners({}); })},
             20));
}

TEST_F(SetterTest, ofPolylines) {
    using L = TrelmixMapPolyline;
    expectEachShows([] { return Factory::createMapPolylineWithVertices(kPlaces); },
                    with({setter<L>("color", [](L& l) { l.setColor(kGreen); }),
                          setter<L>("width", [](L& l) { l.setWidth(12); }),
                          setter<L>("no width", [](L& l) { l.setWidth(0); }),
                          setter<L>("polylineVertices", [](L& l) { l.setPolylineVertices(kOthers); })},
                         20));
}

TEST_F(SetterTest, ofLevelPlans) {
    using N = TrelmixLevelPlanNode;
    const auto plain = plainImage(8, 8, {9, 99, 9, 255});
    expectEachShows(
        [] {
            return Factory::createLevelPlanNodeWith(twoColours(40, 40), kPlaces[2].coordinate(), kNorthEast);
        },
        with({setter<N>("southWest", [](N& n) { n.setSouthWest(kHere); }),
              setter<N>("northEast",
                        [](N& n) {
                            n.setNorthEast({53.5001, 10.0001});
                        }),
              setter<N>("levelPlanImage", [plain](N& n) { n.setLevelPlanImage(plain); }),
              setter<N>("no levelPlanImage", [](N& n) { n.setLevelPlanImage(nullptr); }),
              setter<N>("levelPlanRotation", [](N& n) { n.setLevelPlanRotation(35); })},
             30));
}

TEST_F(SetterTest, ofTileLayers) {
    // Their index counts only beside other layers: tiles are ordered by zoom.
    auto setters = with({}, 0);
    setters.erase(setters.begin());
    expectEachShows(
        [] {
            auto layer = Factory::createMapTilesNode();
            layer->setSynchronousLayer(true);
            return layer;
        },
        setters);
}

} // namespace
} // namespace trelmix
