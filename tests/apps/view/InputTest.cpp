// What hands do in the window.
#include "apps/view/WindowFixture.h"

#include <Trelmix/TrelmixMapMarker.h>

#include <functional>

namespace trelmix::apps::input_test {

TEST_F(WindowTest, fingersPanPinchAndTurn) {
    open(kPlain);
    const auto place = groundAt({200, 200});
    // Where each finger is at a time from 0 to 1.
    const auto slide = [&](const std::vector<std::function<CGPoint(double)>>& fingers) {
        const auto each = [&](Uint32 type, double time) {
            for (std::size_t i = 0; i < fingers.size(); ++i) {
                finger(type, static_cast<SDL_FingerID>(i + 1), fingers[i](time));
            }
        };
        each(SDL_FINGERDOWN, 0);
        for (int step = 1; step <= 20; ++step) {
            each(SDL_FINGERMOTION, step / 20.0);
        }
        each(SDL_FINGERUP, 1);
    };
    const auto line = [](CGPoint from, CGPoint way) {
        return [=](double t) { return CGPoint{from.x + way.x * t, from.y + way.y * t}; };
    };
    slide({line({200, 200}, {100, 60})});
    EXPECT_LE(distance(pointOf(place), {300, 260}), 0.5);

    const float zoom = engine().camera()->zoom();
    slide({line({270, 240}, {-100, 0}), line({370, 240}, {100, 0})});
    EXPECT_NEAR(engine().camera()->zoom(), zoom + std::log2(3.0F), 0.05);

    constexpr double kTurn = 0.9;
    const auto arc = [](double radius) {
        return [=](double t) {
            return CGPoint{320 + radius * std::cos(kTurn * t), 240 + radius * std::sin(kTurn * t)};
        };
    };
    slide({arc(-100), arc(100)});
    EXPECT_NEAR(std::abs(engine().camera()->rotation()), kTurn * 180 / 3.14159265, 4);
}

TEST_F(WindowTest, theWheelZoomsAboutThePointer) {
    open(kPlain);
    engine().setCameraWithRotation(30, 40, 17, false);
    for (const CGPoint at : {CGPoint{100, 420}, {520, 200}}) {
        for (const float notches : {1.0F, 2.0F, -5.0F, 0.25F}) {
            const auto place = groundAt(at);
            const float zoom = engine().camera()->zoom();
            wheel(at, notches);
            EXPECT_FLOAT_EQ(engine().camera()->zoom(), zoom + notches / 4);
            EXPECT_LE(distance(pointOf(place), at), 0.5) << notches;
        }
    }
    const auto target = engine().camera()->target();
    for (const auto& [notches, zoom] : {std::pair{400, 23}, {1, 23}, {-400, 15}}) {
        wheel({100, 420}, static_cast<float>(notches));
        EXPECT_EQ(engine().camera()->zoom(), zoom);
    }
    EXPECT_NEAR(engine().camera()->target().latitude, target.latitude, 0.05) << "the map has not flown away";
}

TEST_F(WindowTest, theRightButtonTurnsAndTilts) {
    open(kPlain);
    drag({300, 300}, {350, 260}, 10, SDL_BUTTON_RIGHT);
    EXPECT_NEAR(engine().camera()->rotation(), 20, 1e-3);
    EXPECT_NEAR(engine().camera()->viewingAngle(), 10, 1e-3);
    EXPECT_EQ(engine().camera()->zoom(), 17);
    drag({300, 400}, {300, 100}, 10, SDL_BUTTON_RIGHT);
    drag({300, 400}, {300, 440}, 10, SDL_BUTTON_RIGHT);
    EXPECT_NEAR(engine().camera()->viewingAngle(), 45, 1e-3) << "55 and 10 less";
}

TEST_F(WindowTest, clicksSayWhatTheyHit) {
    writeImage("icon.png", 30, 30, {200, 0, 0});
    // A triangle north east of its hypotenuse, and what its file says of it.
    folder.write("park.json", R"({"type": "Feature",
        "properties": {"name": "Old Park", "trees": 12, "open": [true, null, 1.5]},
        "geometry": {"type": "Polygon", "coordinates": [[[10.001, 53.5005], [10.002, 53.5005],
                     [10.002, 53.501], [10.001, 53.5005]]]}})");
    open(sceneWith(
        R"("circles": [{"coordinate": {"lat": 53.5, "lon": 10.002}, "radius": 20, "tappable": true, "id": "pond"}],
        "geojson": [{"file": "park.json", "tappable": true, "id": "parks"}],
        "markers": [{"coordinate": {"lat": 53.5, "lon": 10}, "icon": "icon.png", "id": "home",
                     "draggable": true}])"));
    EXPECT_EQ(pixel(320, 240), (std::array{200, 0, 0}));
    const auto before = picture();
    click({325, 236});
    ASSERT_TRUE(until([&] { return hasLine("tap marker \"home\" 53.5,10"); }));
    settle();
    EXPECT_NE(pixel(14, 14), (std::array{255, 255, 255})) << "a label says so in the window";

    const auto clickAt = [&](double lat, double lon) {
        const CGPoint at = pointOf({lat, lon});
        lines.clear();
        click({std::round(at.x), std::round(at.y)});
        until([&] { return !lines.empty(); });
        return lines.empty() ? "" : lines.back();
    };
    EXPECT_TRUE(clickAt(53.5, 10.002).starts_with("tap circle \"pond\""));
    EXPECT_EQ(clickAt(53.5006, 10.0018),
              R"(tap polygon "Old Park" {"name":"Old Park","trees":12,"open":[true,null,1.5]})");
    EXPECT_TRUE(clickAt(53.5009, 10.0012).starts_with("tap map 53.5")) << "beside the hypotenuse";
    EXPECT_TRUE(clickAt(53.50015, 10.00225).starts_with("tap map 53.5")) << "a corner of the circle's box";
    EXPECT_NEAR(engine().camera()->target().longitude, 10, 1e-9) << "clicks move nothing";

    // A long press on the marker picks it up.
    button(true, {320, 240});
    ASSERT_TRUE(until([&] { return hasLine("drag marker \"home\" from"); }));
    motion({350, 250});
    motion({420, 300});
    button(false, {420, 300});
    EXPECT_TRUE(until([&] { return hasLine("drag marker \"home\" to"); }));
    const auto marker = std::dynamic_pointer_cast<TrelmixMapMarker>(app->stage().map().overlays.front());
    EXPECT_LE(distance(pointOf(marker->presentedCoordinate()), {420, 300}), 0.5);
    settle();
    EXPECT_EQ(pixel(420, 300), (std::array{200, 0, 0}));
    // A long press elsewhere is told when it ends.
    button(true, {100, 100});
    wait(0.7);
    button(false, {100, 100});
    EXPECT_TRUE(until([&] { return hasLine("long press map"); }));
}

TEST_F(WindowTest, aWindowThatLosesItsInputLetsGoOfTheMap) {
    open(kPlain);
    button(true, {300, 200});
    motion({330, 230});
    SDL_Event lost{};
    lost.type = SDL_WINDOWEVENT;
    lost.window.event = SDL_WINDOWEVENT_FOCUS_LOST;
    send(lost);
    const auto target = engine().camera()->target();
    motion({500, 400});
    button(false, {500, 400});
    finger(SDL_FINGERMOTION, 9, {100, 100});
    finger(SDL_FINGERUP, 9, {200, 100});
    button(true, {300, 200}, SDL_BUTTON_RIGHT);
    send(lost);
    motion({400, 300});
    button(false, {400, 300}, SDL_BUTTON_RIGHT);
    button(false, {400, 300});
    EXPECT_EQ(engine().camera()->target().latitude, target.latitude);
    EXPECT_EQ(engine().camera()->target().longitude, target.longitude);
    EXPECT_EQ(engine().camera()->rotation(), 0);
    drag({300, 200}, {350, 200}, 5);
    EXPECT_NE(engine().camera()->target().longitude, target.longitude) << "and takes hold anew";
}

} // namespace trelmix::apps::input_test
