// Keys, and the program as a shell starts it.
#include "apps/view/WindowFixture.h"
#include "apps/view/XDisplay.h"

#include <csignal>
#include <set>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace trelmix::apps::command_test {

TEST_F(WindowTest, keysMoveTheCamera) {
    open(kPlain);
    const auto becomes = [&](auto value, double expected) {
        return until([&] { return std::abs(value(*engine().camera()) - expected) < 1e-3; });
    };
    const auto zoom = [](const TrelmixMapEngineCamera& c) { return static_cast<double>(c.zoom()); };
    const auto tilt = [](const TrelmixMapEngineCamera& c) { return c.viewingAngle(); };
    const auto rotation = [](const TrelmixMapEngineCamera& c) { return c.rotation(); };
    // Quicker than the camera: each counts from where the one before is going.
    for (const SDL_Keycode code : {SDLK_PLUS, SDLK_EQUALS, SDLK_KP_PLUS, SDLK_PLUS, SDLK_UP, SDLK_UP,
                                   SDLK_DOWN, SDLK_RIGHT, SDLK_LEFT, SDLK_LEFT, SDLK_MINUS}) {
        key(code);
    }
    EXPECT_TRUE(becomes(zoom, 18.5));
    EXPECT_TRUE(becomes(tilt, 5));
    EXPECT_TRUE(becomes(rotation, -15));
    wheel({100, 100}, 4);
    key(SDLK_KP_MINUS);
    EXPECT_TRUE(becomes(zoom, 19)) << "the wheel has come between";
    engine().setMaxZoom(20);
    engine().setMinZoom(24); // beyond what is supported, and so no limit
    for (int i = 0; i < 5; ++i) {
        key(SDLK_PLUS);
    }
    key(SDLK_MINUS);
    EXPECT_TRUE(becomes(zoom, 19.5)) << "what went beyond the limit does not count";
    key(SDLK_PLUS, KMOD_CTRL);
    key(SDLK_r);
    EXPECT_TRUE(becomes(rotation, 0));
    EXPECT_TRUE(becomes(tilt, 0));
    EXPECT_TRUE(becomes(zoom, 17));
    EXPECT_NEAR(engine().camera()->target().longitude, 10, 1e-9);
}

TEST_F(WindowTest, escapeClosesTheHelpFirst) {
    open(kPlain);
    const auto middle = pixel(320, 240);
    for (const SDL_Keycode code : {SDLK_h, SDLK_ESCAPE, SDLK_F1, SDLK_h, SDLK_h}) {
        key(code);
    }
    settle();
    EXPECT_NE(pixel(320, 240), middle);
    key(SDLK_ESCAPE);
    EXPECT_TRUE(app->step());
    settle();
    EXPECT_EQ(pixel(320, 240), middle);
    key(SDLK_ESCAPE);
    EXPECT_FALSE(app->step());
}

TEST_F(WindowTest, cPrintsTheCameraAsAnOptionThatShowsTheSame) {
    open(kPlain);
    wheel({100, 420}, 5);
    engine().setCameraWithRotation(33, 21, 18.3F, false);
    settle();
    key(SDLK_c);
    ASSERT_TRUE(hasLine("--camera 53."));
    EXPECT_TRUE(lines.back().ends_with(",18.3,33,21")) << lines.back();
    WindowOptions options;
    options.view.camera = lines.back().substr(9);
    app.reset();
    open(kPlain, options);
    key(SDLK_c);
    EXPECT_EQ(lines.back(), lines.front());
}

TEST_F(WindowTest, sSavesWhatTheWindowShows) {
    open(kPlain);
    const auto back = std::filesystem::current_path();
    std::filesystem::current_path(folder.path(""));
    for (int i = 0; i < 3; ++i) { // at least two of them within one second
        key(SDLK_s);
    }
    std::filesystem::current_path(back);
    ASSERT_EQ(std::set<std::string>(lines.begin(), lines.end()).size(), 3);
    for (const std::string& line : lines) {
        EXPECT_TRUE(line.starts_with("saved map-")) << line;
    }
    const auto saved = decoded(folder.text(lines.back().substr(6)));
    ASSERT_TRUE(saved);
    EXPECT_EQ(saved->size(), (CGSize{640, 480}));
    EXPECT_EQ(colorAt(*saved, 320, 240), (std::array{0x20, 0x80, 0x40}));
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
        const std::string errors = folder.text("err");
        EXPECT_EQ(WIFEXITED(status) ? WEXITSTATUS(status) : -1, c.exitCode) << c.arguments << errors;
        EXPECT_NE(errors.find(c.message), std::string::npos) << c.arguments << errors;
    }
    EXPECT_TRUE(std::filesystem::exists(folder.path("a.png")));
}

TEST_F(WindowTest, theProgramEndsOnSignalsUnlessTheyWereIgnored) {
    const std::string scene = folder.write("signals.json", kPlain);
    const auto endAfter = [&](std::initializer_list<int> sent, bool ignoresFirst) {
        const pid_t child = ::fork();
        if (child == 0) {
            for (const int number : {SIGHUP, SIGINT, SIGTERM}) {
                ::signal(number, SIG_DFL); // a background job inherits some as ignored
            }
            if (ignoresFirst) {
                ::signal(*sent.begin(), SIG_IGN);
            }
            ::execl(TRELMIX_VIEW, TRELMIX_VIEW, scene.c_str(), nullptr);
            ::_exit(1);
        }
        while (!xdisplay::hasWindow("signals.json")) {
            std::this_thread::yield();
        }
        for (const int number : sent) {
            ::kill(child, number);
        }
        int status = 0;
        ::waitpid(child, &status, 0);
        while (xdisplay::hasWindow("signals.json")) {
            std::this_thread::yield();
        }
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    };
    for (const int number : {SIGHUP, SIGINT, SIGTERM}) {
        EXPECT_EQ(endAfter({number}, false), 128 + number);
    }
    EXPECT_EQ(endAfter({SIGHUP, SIGTERM}, true), 128 + SIGTERM) << "started by nohup";
}

} // namespace trelmix::apps::command_test
