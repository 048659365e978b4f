// What the window shows of a scene, and how it follows the file.
#include "apps/view/WindowFixture.h"
#include "apps/view/XDisplay.h"
#include "support/ArchiveWriter.h"

#include <filesystem>
#include <set>

namespace trelmix::apps::scene_test {

using Color = std::array<int, 3>;

class SceneWindowTest : public WindowTest {
protected:
    /// A new file, also for file systems that count times in seconds.
    void rewrite(const std::string& text, const std::string& name = "scene.json") {
        folder.write(name, text);
        touch(name);
    }
    void touch(const std::string& name) {
        const std::string path = folder.path(name);
        const auto time = std::filesystem::last_write_time(path);
        std::filesystem::last_write_time(path, time + std::chrono::seconds(++_later));
    }
    bool isReadAgain() {
        const Stage* before = &app->stage(); // the next one is there before this one goes
        return until([&] { return &app->stage() != before; });
    }
    bool isRefused(const std::string& message) {
        return until([&] { return app->message().find(message) != std::string::npos; });
    }

private:
    int _later = 0;
};

TEST_F(SceneWindowTest, theFileIsReadAgainWhenItChangesAndTheCameraStays) {
    open(sceneWith("", "#ff0000"));
    EXPECT_EQ(pixel(320, 300), (Color{255, 0, 0}));
    wheel({320, 240}, 4);
    rewrite(sceneWith("", "#0000ff"));
    ASSERT_TRUE(isReadAgain());
    EXPECT_EQ(app->message(), "Scene read again");
    settle();
    EXPECT_EQ(pixel(320, 300), (Color{0, 0, 255}));
    EXPECT_FLOAT_EQ(engine().camera()->zoom(), 18);

    rewrite(R"({"camera": 5})");
    ASSERT_TRUE(isRefused("must be an object"));
    settle();
    EXPECT_EQ(pixel(320, 300), (Color{0, 0, 255})) << "a file that is wrong changes nothing";

    rewrite(R"({"view": {"background": "#ff00ff"},
        "camera": {"target": {"lat": 53.5, "lon": 10}, "zoom": 19}, "limits": {"maxZoom": 20}})");
    ASSERT_TRUE(isReadAgain());
    EXPECT_FLOAT_EQ(engine().camera()->zoom(), 19) << "a new camera in the file counts";
    EXPECT_FLOAT_EQ(engine().maxZoom(), 20);
    rewrite(sceneWith("", "#00ff00"));
    ASSERT_TRUE(isReadAgain());
    EXPECT_EQ(engine().maxZoom(), 23) << "limits go with the scene that had them";
    settle();
    EXPECT_EQ(pixel(320, 300), (Color{0, 255, 0}));
}

TEST_F(SceneWindowTest, whatTheSceneNamesIsReadAgainToo) {
    writeImage("plan.png", 8, 8, {0, 0, 200});
    writeImage("side.png", 640, 150, {200, 200, 200});
    folder.write("levels.json", kSideLevels);
    const std::string point = R"({"type": "Point", "coordinates": [10, 53.5]})";
    folder.write("points.json", point);
    open(sceneWith(R"("levelPlans": [{"image": "plan.png", )" + kPlanPlace + R"(}], "limits": {"maxZoom": 20},
        "geojson": [{"file": "points.json", "radius": 5, "color": "#c80000"}],
        "sideView": {"image": "side.png", "levels": "levels.json"})"));
    const Stage* shown = &app->stage();
    EXPECT_EQ(pixel(320, 165), (Color{200, 0, 0}));
    EXPECT_EQ(pixel(220, 165), (Color{0, 0, 200}));

    rewrite(R"({"bearing": 90})", "levels.json");
    ASSERT_TRUE(isRefused("levels.json"));
    rewrite("{", "points.json");
    ASSERT_TRUE(isRefused("points.json"));
    EXPECT_EQ(&app->stage(), shown) << "files that are wrong change nothing";
    EXPECT_EQ(engine().maxZoom(), 20);

    rewrite(R"({"type": "GeometryCollection", "geometries": []})", "points.json");
    rewrite(kSideLevels, "levels.json");
    ASSERT_TRUE(isReadAgain());
    settle();
    EXPECT_EQ(pixel(320, 165), (Color{0, 0, 200}));
    writeImage("plan.png", 8, 8, {0, 200, 0});
    touch("plan.png");
    ASSERT_TRUE(isReadAgain());
    settle();
    EXPECT_EQ(pixel(320, 165), (Color{0, 200, 0}));
    std::filesystem::remove(folder.path("side.png"));
    wait(1.1);
    EXPECT_EQ(pixel(320, 165), (Color{0, 200, 0})) << "a file that has gone";
    writeImage("side.png", 640, 100, {200, 200, 200});
    ASSERT_TRUE(isReadAgain());
    EXPECT_EQ(app->layout().side.size.height, 100);
}

TEST_F(SceneWindowTest, theOldPictureStaysUntilTheNextOneIsThere) {
    {
        ArchiveWriter archive(folder.path("tiles.mbtiles"));
        archive.metadata("minzoom", "13");
        archive.metadata("maxzoom", "13");
        archive.tile(13, 4323, 2649, plainImage(256, 256, Color{200, 0, 0})->pngData());
    }
    const auto scene = [](const char* background) {
        return sceneWith(R"("tiles": [{"mbtiles": "tiles.mbtiles"}, {"mbtiles": "tiles.mbtiles"}])",
                         background);
    };
    open(scene("#00ff00"));
    const MapScene& map = app->stage().map();
    EXPECT_EQ(countOf(map).wanted, 2 * map.layers[0]->tileCounts().wanted);
    ASSERT_EQ(xdisplay::shownPixel(sdlWindow(), 320, 300), (Color{200, 0, 0}));
    rewrite(scene("#ff00ff"));
    const Stage* before = &app->stage();
    std::set<Color> seen;
    ASSERT_TRUE(until([&] {
        seen.insert(xdisplay::shownPixel(sdlWindow(), 320, 300));
        return &app->stage() != before && app->stage().isShown();
    }));
    settle();
    seen.insert(xdisplay::shownPixel(sdlWindow(), 320, 300));
    EXPECT_EQ(seen, (std::set<Color>{{200, 0, 0}}));
    // Who moves the map meanwhile sees at once what there is.
    rewrite(scene("#0000ff"));
    ASSERT_TRUE(isReadAgain());
    wheel({320, 240}, 1);
    EXPECT_TRUE(app->stage().isShown());
    settle();
    EXPECT_EQ(xdisplay::shownPixel(sdlWindow(), 320, 300), (Color{200, 0, 0}));
}

TEST_F(SceneWindowTest, aResizedWindowIsFilledAndKeepsWhatIsUnderTheFinger) {
    open(sceneWith("", "#ff0000"));
    for (const auto& [width, height] : {std::pair{640, 300}, {900, 700}, {200, 150}}) {
        SDL_SetWindowSize(sdlWindow(), width, height);
        const CGSize size{1.0 * width, 1.0 * height};
        ASSERT_TRUE(until([&] { return app->layout().window == size; }));
        settle();
        ASSERT_EQ(picture()->pixelWidth(), width);
        EXPECT_EQ(pixel(width - 1, height - 1), (Color{255, 0, 0}));
        const auto place = groundAt({60, 60});
        drag({60, 60}, {100, 110}, 5);
        EXPECT_LE(distance(pointOf(place), {100, 110}), 0.5);
    }
}

TEST_F(SceneWindowTest, twoPixelsAPointMakeEverythingLargerButNoCoarser) {
    writeImage("icon.png", 20, 20, {200, 0, 0});
    WindowOptions options;
    options.view.scale = 2;
    options.view.size = "320x240";
    open(sceneWith(R"("markers": [{"coordinate": {"lat": 53.5, "lon": 10}, "icon": "icon.png"}])"), options);
    EXPECT_EQ(app->layout().window, (CGSize{320, 240}));
    EXPECT_EQ(picture()->pixelWidth(), 640);
    EXPECT_EQ(pixel(302, 222), (Color{200, 0, 0}));
    EXPECT_EQ(pixel(298, 240), (Color{255, 255, 255}));
    const auto place = groundAt({100, 100});
    drag({200, 200}, {300, 280}, 10);
    EXPECT_LE(distance(pointOf(place), {150, 140}), 0.5) << "the mouse counts in pixels";
}

TEST_F(SceneWindowTest, theDisplaySaysHowLargeAPointIsAndAWindowMayBe) {
    const struct {
        const char* resources;
        std::optional<double> option;
        const char* size;
        CGSize pixels;
        double scale;
    } cases[] = {
        {"Xft.dpi:\t144\n", std::nullopt, "400x300", {600, 450}, 1.5},
        {"Xft.dpi:\t144\n", 1, "400x300", {400, 300}, 1},
        {"Xft.dpi:\t0\n", std::nullopt, "400x300", {400, 300}, 1},
        {"Xft.dpi:\tlarge\n", std::nullopt, "5000x300", {1280, 300}, 1},
        {"Xft.dpi:\t192\n", std::nullopt, "400x900", {800, 1024}, 2},
    };
    for (const auto& c : cases) {
        xdisplay::setResources(c.resources);
        WindowOptions options;
        options.view.size = c.size;
        options.view.scale = c.option;
        app.reset();
        open(kPlain, options);
        EXPECT_EQ(app->window().pixelSize(), c.pixels) << c.resources << c.size;
        EXPECT_EQ(app->layout().scale, c.scale) << c.resources << c.size;
    }
    xdisplay::setResources("");
}

TEST_F(SceneWindowTest, pageKeysShowTheLevelsOfPlansAlsoWithoutASideView) {
    writeImage("one.png", 8, 8, {0, 0, 200});
    writeImage("two.png", 8, 8, {0, 200, 0});
    const auto plan = [](const std::string& image, const std::string& keys) {
        return R"({"image": ")" + image + R"(", )" + kPlanPlace + keys + "}";
    };
    open(sceneWith(R"("levelPlans": [)" + plan("two.png", R"(, "level": 5, "visible": false)") + "," +
                   plan("one.png", R"(, "level": -1)") + "]"));
    EXPECT_EQ(pixel(320, 240), (Color{0, 0, 200}));
    for (const auto& [code, color] : {std::pair{SDLK_PAGEUP, Color{0, 200, 0}},
                                      {SDLK_PAGEUP, Color{0, 200, 0}},
                                      {SDLK_PAGEDOWN, Color{0, 0, 200}}}) {
        key(code);
        settle();
        EXPECT_EQ(pixel(320, 240), color);
    }
    EXPECT_EQ(app->message(), "Level -1");
    app.reset();
    open(sceneWith(R"("levelPlans": [)" + plan("one.png", "") + "]"));
    key(SDLK_PAGEUP);
    settle();
    EXPECT_EQ(app->message(), "") << "there are no levels";
    EXPECT_EQ(pixel(320, 240), (Color{0, 0, 200}));
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
    const double south = groundAt({220, 240}).latitude - groundAt({420, 240}).latitude;
    EXPECT_NEAR(metresPerPoint(engine(), app->layout().map.size), std::abs(south) * 111'195 / 200, 0.001);
    click({610, 30});
    EXPECT_TRUE(until([&] { return std::abs(engine().camera()->rotation()) < 1e-6; }));
    EXPECT_TRUE(lines.empty()) << "the arrow's click is not the map's";
}

} // namespace trelmix::apps::scene_test
