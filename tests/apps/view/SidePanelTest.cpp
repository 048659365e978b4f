// Map and side view together.
#include "apps/view/WindowFixture.h"
#include "view/ScreenLayout.h"

namespace trelmix::apps::side_panel_test {

// Twice the size at which it shows: 1 m takes 10 points.
constexpr const char* kScene = R"({"view": {"width": 640, "height": 480},
    "camera": {"target": {"lat": 53.5, "lon": 10}, "zoom": 18},
    "levelPlans": [{"image": "one.png", "southWest": {"lat": 53.4999, "lon": 9.9995},
                    "northEast": {"lat": 53.5001, "lon": 10.0005}, "level": 1},
                   {"image": "two.png", "southWest": {"lat": 53.4999, "lon": 9.9995},
                    "northEast": {"lat": 53.5001, "lon": 10.0005}, "level": 2, "visible": false}],
    "sideView": {"image": "side.png", "levels": "levels.json", "displayedLevel": 1}})";

class SidePanelTest : public WindowTest {
protected:
    void SetUp() override {
        writeImage("one.png", 8, 8, {0, 0, 200});
        writeImage("two.png", 8, 8, {0, 200, 0});
        writeImage("side.png", 1280, 300, {200, 200, 200});
        folder.write("levels.json", kSideLevels);
        open(kScene);
        ASSERT_TRUE(app->stage().side());
    }
    std::int64_t level() { return app->stage().side()->sideview().levelNumber(); }
    static constexpr std::array<int, 3> kPlanOne{0, 0, 200}, kPlanTwo{0, 200, 0};
};

TEST_F(SidePanelTest, bothAreInTheWindowAndTheLevelsPlanIsShown) {
    EXPECT_EQ(app->layout().side.size.height, 150);
    EXPECT_EQ(app->layout().map.size.height, 330);
    EXPECT_EQ(pixel(320, 165), kPlanOne);
    const auto side = pixel(4, 470);
    EXPECT_GE(side[0], 100) << "the picture, perhaps under the footprint";
    const struct {
        SDL_Keycode code;
        std::int64_t level;
        std::array<int, 3> shown;
    } steps[] = {{SDLK_PAGEUP, 2, kPlanTwo},        {SDLK_PAGEUP, 7, {255, 255, 255}},
                 {SDLK_PAGEUP, 7, {255, 255, 255}}, {SDLK_PAGEDOWN, 2, kPlanTwo},
                 {SDLK_PAGEDOWN, 1, kPlanOne},      {SDLK_PAGEDOWN, 1, kPlanOne}};
    for (const auto& step : steps) {
        key(step.code);
        EXPECT_EQ(level(), step.level);
        settle();
        EXPECT_EQ(pixel(320, 165), step.shown) << "level 7 has no plan";
    }
}

TEST_F(SidePanelTest, aDragInTheSideViewMovesTheMapWithEachStepOfTheLoop) {
    motion({320, 400});
    button(true, {320, 400});
    int moves = 0;
    for (int i = 1; i <= 12; ++i) {
        const double before = engine().camera()->target().longitude;
        motion({320.0 + 10 * i, 400});
        moves += engine().camera()->target().longitude > before ? 1 : 0;
    }
    button(false, {440, 400});
    EXPECT_GE(moves, 10) << "all but what decides that it is a drag";
    // 120 points are 12 m, at this latitude 0.00018 degrees.
    EXPECT_NEAR(engine().camera()->target().longitude, 10.00018, 0.00001);
    EXPECT_EQ(level(), 1);
}

TEST_F(SidePanelTest, aClickShowsItsLevelAndMovesTheMapThere) {
    click({420, 405});
    ASSERT_TRUE(until([&] { return level() == 2; }));
    settle();
    EXPECT_NEAR(engine().camera()->target().longitude, 10.00015, 0.00001);
    EXPECT_EQ(pixel(320, 165), kPlanTwo);
    const std::size_t said = lines.size();
    // The map above has its own clicks.
    click({100, 100});
    EXPECT_TRUE(until([&] { return lines.size() > said; }));
    EXPECT_EQ(level(), 2);
}

TEST_F(SidePanelTest, theFootprintFollowsTheMapOnceItRests) {
    const auto strip = [&] { return app->stage().side()->sideview().sideviewPositionRectangle()->frame(); };
    const CGRect before = strip();
    engine().setCameraWithRotation(0, 0, 20, false);
    EXPECT_TRUE(until([&] { return strip().size.width < before.size.width / 2; }));
    settle();
    drag({300, 100}, {400, 100}, 10);
    const CGRect close = strip();
    EXPECT_TRUE(until([&] { return strip().origin.x < close.origin.x - 1; }));
}

TEST_F(SidePanelTest, zoomingThePictureHasToBeSwitchedOn) {
    const auto target = engine().camera()->target();
    const auto levelAt = [&](double y) { return app->stage().side()->sideview().levelAt({320, y}); };
    wheel({320, 400}, 4);
    EXPECT_EQ(engine().camera()->zoom(), 18);
    EXPECT_EQ(levelAt(40), 7);
    key(SDLK_z);
    EXPECT_TRUE(app->stage().side()->sideview().enableZooming());
    wheel({320, 400}, 4);
    EXPECT_EQ(levelAt(40), 2) << "twice as large, about the pointer at 70";
    EXPECT_EQ(engine().camera()->zoom(), 18);
    drag({320, 400}, {420, 450}, 10);
    EXPECT_EQ(levelAt(80), 7);
    EXPECT_EQ(engine().camera()->target().longitude, target.longitude) << "the drag pans the picture";
    key(SDLK_z);
    EXPECT_EQ(levelAt(80), 2) << "back as it was";
}

TEST_F(SidePanelTest, inALowWindowTheDisplayedLevelIsInView) {
    SDL_SetWindowSize(sdlWindow(), 640, 160);
    ASSERT_TRUE(until([&] { return app->layout().side.size.height == 72; }));
    const auto levelAt = [&](double y) { return app->stage().side()->sideview().levelAt({320, y}); };
    // Each level is 50 points high.
    const auto isInView = [&](std::int64_t wanted) {
        int rows = 0;
        for (int y = 0; y < 72; ++y) {
            rows += levelAt(y) == wanted ? 1 : 0;
        }
        return rows >= 49;
    };
    EXPECT_TRUE(isInView(1));
    for (const std::int64_t wanted : {2, 7}) {
        key(SDLK_PAGEUP);
        EXPECT_TRUE(isInView(wanted)) << wanted;
    }
    SDL_SetWindowSize(sdlWindow(), 640, 100);
    ASSERT_TRUE(until([&] { return app->layout().side.size.height == 45; }));
    EXPECT_TRUE(levelAt(1) == 7 && levelAt(44) == 7) << "its middle where it does not fit";
}

TEST(ScreenLayout, mapAndSideViewShareTheWindowInWholePixels) {
    for (const double scale : {1.0, 1.5, 2.0}) {
        for (const CGSize window : {CGSize{1280, 800}, {333, 777}, {2000, 41}, {90, 2}}) {
            const ScreenLayout layout = layoutFor(window, scale, CGSize{640, 150});
            EXPECT_EQ(layout.side.origin.y, layout.map.size.height);
            EXPECT_DOUBLE_EQ(layout.side.origin.y * scale, std::round(layout.side.origin.y * scale));
            EXPECT_GE(std::min(layout.side.size.height, layout.map.size.height) * scale, 1);
            EXPECT_LE(layout.side.size.height, std::max(0.45 * layout.window.height, 1 / scale));
        }
    }
    EXPECT_EQ(layoutFor({320, 800}, 1, CGSize{640, 150}).side.size.height, 75) << "shrunk with its width";
    EXPECT_EQ(layoutFor({1280, 800}, 1, CGSize{640, 150}).side.size.height, 150) << "but never enlarged";
    EXPECT_EQ(layoutFor({1280, 800}, 1, std::nullopt).map.size.height, 800);
    EXPECT_EQ(layoutFor({-5, 0}, 1, CGSize{640, 150}).map.size.height, 1) << "neither vanishes";
}

} // namespace trelmix::apps::side_panel_test
