// Map and side view together.
#include "apps/view/WindowFixture.h"

namespace trelmix::apps {
namespace {

// 1 m takes 10 points of the picture; the structure lies from west to east.
constexpr const char* kLevels = R"({"bearing": 90, "bowPosition": "right",
    "southLatitude": 53.4999, "northLatitude": 53.5001, "westLongitude": 9.9995, "eastLongitude": 10.0005,
    "levels": [{"levelNumber": 1, "levelbounds": [{"relativeheight": 0, "ceilingheight": 5}]},
               {"levelNumber": 2, "levelbounds": [{"relativeheight": 5, "ceilingheight": 5}]},
               {"levelNumber": 7, "levelbounds": [{"relativeheight": 10, "ceilingheight": 5}]}]})";

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
        writeImage("side.png", 640, 150, {200, 200, 200});
        folder.write("levels.json", kLevels);
        open(kScene);
        ASSERT_TRUE(app->stage().side());
    }
    std::int64_t level() { return app->stage().side()->sideview().levelNumber(); }
    static constexpr std::array<int, 3> kPlanOne{0, 0, 200};
    static constexpr std::array<int, 3> kPlanTwo{0, 200, 0};
};

TEST_F(SidePanelTest, bothAreInTheWindowAndTheLevelsPlanIsShown) {
    EXPECT_EQ(app->layout().side.size.height, 150);
    EXPECT_EQ(app->layout().map.size.height, 330);
    EXPECT_EQ(pixel(320, 165), kPlanOne);
    const auto side = pixel(4, 470);
    EXPECT_GE(side[0], 100) << "the picture, perhaps under the footprint";
    key(SDLK_PAGEUP);
    EXPECT_EQ(level(), 2);
    settle();
    EXPECT_EQ(pixel(320, 165), kPlanTwo);
    key(SDLK_PAGEUP);
    key(SDLK_PAGEUP);
    EXPECT_EQ(level(), 7);
    settle();
    EXPECT_EQ(pixel(320, 165), (std::array{255, 255, 255})) << "a level without a plan";
    key(SDLK_PAGEDOWN);
    key(SDLK_PAGEDOWN);
    key(SDLK_PAGEDOWN);
    EXPECT_EQ(level(), 1);
}

TEST_F(SidePanelTest, aDragInTheSideViewMovesTheMapWithEachStepOfTheLoop) {
    motion({320, 400});
    button(true, {320, 400});
    double before = engine().camera()->target().longitude;
    int moves = 0;
    for (int i = 1; i <= 12; ++i) {
        motion({320.0 + 10 * i, 400});
        const double now = engine().camera()->target().longitude;
        moves += now > before ? 1 : 0;
        before = now;
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
    wheel({320, 400}, 4);
    EXPECT_EQ(engine().camera()->zoom(), 18);
    key(SDLK_z);
    EXPECT_TRUE(app->stage().side()->sideview().enableZooming());
    drag({320, 400}, {420, 400}, 10);
    EXPECT_EQ(engine().camera()->target().longitude, target.longitude) << "the drag pans the picture";
}

} // namespace
} // namespace trelmix::apps
