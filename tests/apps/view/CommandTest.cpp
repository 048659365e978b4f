// Keys, and the program as a shell starts it.
#include "apps/view/WindowFixture.h"

#include <sys/wait.h>

namespace trelmix::apps {
namespace {

TEST_F(WindowTest, keysMoveTheCamera) {
    open(kPlain);
    const auto becomes = [&](auto value, double expected) {
        return until([&] { return std::abs(value(*engine().camera()) - expected) < 1e-3; });
    };
    const auto zoom = [](const TrelmixMapEngineCamera& c) { return static_cast<double>(c.zoom()); };
    const auto tilt = [](const TrelmixMapEngineCamera& c) { return c.viewingAngle(); };
    const auto rotation = [](const TrelmixMapEngineCamera& c) { return c.rotation(); };
    key(SDLK_PLUS);
    EXPECT_TRUE(becomes(zoom, 17.5));
    key(SDLK_MINUS);
    EXPECT_TRUE(becomes(zoom, 17));
    key(SDLK_UP);
    EXPECT_TRUE(becomes(tilt, 5));
    key(SDLK_RIGHT);
    EXPECT_TRUE(becomes(rotation, 15));
    key(SDLK_LEFT);
    key(SDLK_LEFT);
    EXPECT_TRUE(becomes(rotation, -15));
    wheel({100, 100}, 4);
    key(SDLK_r);
    EXPECT_TRUE(becomes(rotation, 0));
    EXPECT_TRUE(becomes(tilt, 0));
    EXPECT_TRUE(becomes(zoom, 17));
    EXPECT_NEAR(engine().camera()->target().longitude, 10, 1e-9);
}

TEST_F(WindowTest, cPrintsTheCameraAsAnOptionThatShowsTheSame) {
    open(kPlain);
    wheel({100, 420}, 5);
    engine().setCameraWithRotation(33, 21, 18.3F, false);
    settle();
    key(SDLK_c);
    ASSERT_TRUE(hasLine("--camera "));
    const auto camera = *engine().camera();
    WindowOptions options;
    options.view.camera = lines.back().substr(9);
    app.reset();
    open(kPlain, options);
    EXPECT_NEAR(engine().camera()->target().latitude, camera.target().latitude, 1e-7);
    EXPECT_NEAR(engine().camera()->target().longitude, camera.target().longitude, 1e-7);
    EXPECT_NEAR(engine().camera()->zoom(), camera.zoom(), 1e-3);
    EXPECT_NEAR(engine().camera()->rotation(), camera.rotation(), 0.01);
    EXPECT_NEAR(engine().camera()->viewingAngle(), camera.viewingAngle(), 0.01);
}

TEST_F(WindowTest, sSavesWhatTheWindowShows) {
    open(kPlain);
    const auto back = std::filesystem::current_path();
    std::filesystem::current_path(folder.path(""));
    key(SDLK_s);
    std::filesystem::current_path(back);
    ASSERT_TRUE(hasLine("saved map-"));
    std::ifstream file(folder.path(lines.back().substr(6)), std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(file), {}};
    const auto saved = UIImage::withData(std::as_bytes(std::span(bytes)));
    ASSERT_TRUE(saved);
    EXPECT_EQ(saved->pixelWidth(), 640);
    EXPECT_EQ(saved->pixelHeight(), 480);
    EXPECT_EQ(saved->pixels()[4 * (640 * 240 + 320)], 0x20);
}

TEST_F(WindowTest, endsByItselfAfterItsFramesAndLeavesAPicture) {
    open(kPlain,
         {.view = {}, .frames = 10, .screenshot = folder.path("end.png"), .timeoutSeconds = 60, .print = {}});
    EXPECT_EQ(app->run(), ExitCode::done);
    EXPECT_TRUE(std::filesystem::exists(folder.path("end.png")));
}

TEST_F(WindowTest, theProgramTellsWhyItCannotStart) {
    folder.write("ok.json", kPlain);
    folder.write("bad.json", R"({"sideView": {"image": "none.png", "levels": "none.json"},
        "camera": {"target": {"lat": 53.5, "lon": 10}, "zoom": 17}})");
    const struct {
        const char* environment;
        const char* arguments;
        int exitCode;
        const char* message;
    } cases[] = {
        {"", "ok.json --frames 2 --screenshot a.png", 0, ""},
        {"", "missing.json", 2, "missing.json: cannot be opened"},
        {"", "bad.json", 2, "bad.json: sideView.image: none.png"},
        {"", "ok.json --camera 1", 2, "--camera"},
        {"", "ok.json --screenshot a.png", 2, "--frames"},
        {"DISPLAY= WAYLAND_DISPLAY= SDL_VIDEODRIVER=x11", "ok.json", 2, "no window can be opened"},
        {"__EGL_VENDOR_LIBRARY_FILENAMES=/nowhere", "ok.json", 3, "apt-get install libgl1-mesa-dri"},
    };
    for (const auto& c : cases) {
        const std::string command = "cd '" + folder.path("") + "' && " + c.environment +
                                    " '" TRELMIX_VIEW "' " + c.arguments + " >out 2>err";
        const int status = std::system(command.c_str());
        std::ifstream file(folder.path("err"));
        const std::string errors{std::istreambuf_iterator<char>(file), {}};
        EXPECT_EQ(WIFEXITED(status) ? WEXITSTATUS(status) : -1, c.exitCode) << c.arguments << errors;
        EXPECT_NE(errors.find(c.message), std::string::npos) << c.arguments << errors;
    }
    EXPECT_TRUE(std::filesystem::exists(folder.path("a.png")));
}

} // namespace
} // namespace trelmix::apps
