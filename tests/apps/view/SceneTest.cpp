// What the window shows of a scene, and how it follows the file.
#include "apps/view/WindowFixture.h"

#include <filesystem>

namespace trelmix::apps {
namespace {

using Color = std::array<int, 3>;

std::string withBackground(const std::string& color) {
    return R"({"view": {"width": 640, "height": 480, "background": ")" + color +
           R"("}, "camera": {"target": {"lat": 53.5, "lon": 10}, "zoom": 17}})";
}

class SceneWindowTest : public WindowTest {
protected:
    /// A new file, also for file systems that count times in seconds.
    void rewrite(const std::string& scene) {
        const std::string path = folder.write("scene.json", scene);
        const auto time = std::filesystem::last_write_time(path);
        std::filesystem::last_write_time(path, time + std::chrono::seconds(++_later));
    }

private:
    int _later = 0;
};

TEST_F(SceneWindowTest, theFileIsReadAgainWhenItChangesAndTheCameraStays) {
    open(withBackground("#ff0000"));
    EXPECT_EQ(pixel(320, 300), (Color{255, 0, 0}));
    wheel({320, 240}, 4);
    rewrite(withBackground("#0000ff"));
    ASSERT_TRUE(until([&] { return app->message() == "Scene read again"; }));
    settle();
    EXPECT_EQ(pixel(320, 300), (Color{0, 0, 255}));
    EXPECT_FLOAT_EQ(engine().camera()->zoom(), 18);

    rewrite(R"({"camera": 5})");
    ASSERT_TRUE(until([&] { return app->message().find("must be an object") != std::string::npos; }));
    settle();
    EXPECT_EQ(pixel(320, 300), (Color{0, 0, 255})) << "a file that is wrong changes nothing";

    rewrite(R"({"view": {"background": "#ff00ff"},
        "camera": {"target": {"lat": 53.5, "lon": 10}, "zoom": 19}, "limits": {"maxZoom": 20}})");
    ASSERT_TRUE(until([&] { return app->message() == "Scene read again"; }));
    EXPECT_FLOAT_EQ(engine().camera()->zoom(), 19) << "a new camera in the file counts";
    EXPECT_FLOAT_EQ(engine().maxZoom(), 20);
    rewrite(withBackground("#00ff00"));
    ASSERT_TRUE(until([&] { return engine().maxZoom() == 23; })) << "limits go with the scene that had them";
    settle();
    EXPECT_EQ(pixel(320, 300), (Color{0, 255, 0}));
}

TEST_F(SceneWindowTest, aResizedWindowIsFilledAndKeepsWhatIsUnderTheFinger) {
    open(withBackground("#ff0000"));
    SDL_Window* window = SDL_GetWindowFromID(1);
    for (Uint32 id = 2; window == nullptr && id < 100; ++id) {
        window = SDL_GetWindowFromID(id);
    }
    ASSERT_NE(window, nullptr);
    for (const auto& [width, height] : {std::pair{640, 300}, {900, 700}, {200, 150}}) {
        SDL_SetWindowSize(window, width, height);
        const CGSize size{1.0 * width, 1.0 * height};
        ASSERT_TRUE(until([&] { return app->layout().window == size; }));
        settle();
        const auto shown = picture();
        ASSERT_EQ(shown->pixelWidth(), width);
        EXPECT_EQ(pixel(0, 0), (Color{255, 0, 0}));
        EXPECT_EQ(pixel(width - 1, height - 1), (Color{255, 0, 0}));
        const auto place = groundAt({60, 60});
        drag({60, 60}, {100, 110}, 5);
        EXPECT_LE(distance(pointOf(place), {100, 110}), 0.5);
        settle();
    }
}

TEST_F(SceneWindowTest, twoPixelsAPointMakeEverythingLargerButNoCoarser) {
    writeImage("icon.png", 20, 20, {200, 0, 0});
    WindowOptions options;
    options.view.scale = 2;
    options.view.size = "320x240";
    open(R"({"camera": {"target": {"lat": 53.5, "lon": 10}, "zoom": 17},
        "markers": [{"coordinate": {"lat": 53.5, "lon": 10}, "icon": "icon.png"}]})",
         options);
    EXPECT_EQ(app->layout().window, (CGSize{320, 240}));
    EXPECT_EQ(picture()->pixelWidth(), 640);
    EXPECT_EQ(pixel(302, 222), (Color{200, 0, 0}));
    EXPECT_EQ(pixel(337, 257), (Color{200, 0, 0}));
    EXPECT_EQ(pixel(298, 240), (Color{255, 255, 255}));
    const auto place = engine().projection()->worldCoordinateFor({100, 100});
    drag({200, 200}, {300, 280}, 10);
    EXPECT_LE(distance(pointOf(place), {150, 140}), 0.5) << "the mouse counts in pixels";
}

TEST_F(SceneWindowTest, cornersShowSourcesScaleAndNorth) {
    writeImage("plan.png", 8, 8, {10, 20, 30});
    open(R"({"view": {"width": 640, "height": 480, "background": "#ff0000"},
        "camera": {"target": {"lat": 53.5, "lon": 10}, "zoom": 17, "rotation": 90},
        "levelPlans": [{"image": "plan.png", "southWest": {"lat": 50, "lon": 9},
                        "northEast": {"lat": 50.001, "lon": 9.001}, "attribution": "somebody's plan"}]})");
    const auto isCovered = [&](int x, int y) { return pixel(x, y) != (Color{255, 0, 0}); };
    EXPECT_TRUE(isCovered(630, 470)) << "sources";
    EXPECT_TRUE(isCovered(12, 466)) << "scale bar";
    EXPECT_TRUE(isCovered(610, 30)) << "north arrow";
    EXPECT_FALSE(isCovered(320, 240));
    click({610, 30});
    EXPECT_TRUE(until([&] { return std::abs(engine().camera()->rotation()) < 1e-6; }));
    EXPECT_TRUE(lines.empty()) << "the arrow's click is not the map's";
}

} // namespace
} // namespace trelmix::apps
