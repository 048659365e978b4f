#pragma once

#include "support/Pixels.h"
#include "support/ScratchFolder.h"
#include "view/ViewApp.h"

#include <SDL.h>

#include <array>
#include <cmath>
#include <gtest/gtest.h>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace trelmix::apps {

/// Three levels of 5 m, in a structure of 64 m from west to east.
inline constexpr const char* kSideLevels = R"({"bearing": 90, "bowPosition": "right",
    "southLatitude": 53.4999, "northLatitude": 53.5001, "westLongitude": 9.9995, "eastLongitude": 10.0005,
    "levels": [{"levelNumber": 1, "levelbounds": [{"relativeheight": 0, "ceilingheight": 5}]},
               {"levelNumber": 2, "levelbounds": [{"relativeheight": 5, "ceilingheight": 5}]},
               {"levelNumber": 7, "levelbounds": [{"relativeheight": 10, "ceilingheight": 5}]}]})";

/// The program's loop in a real window, fed by pushed events.
class WindowTest : public testing::Test {
protected:
    static constexpr double kWidth = 640, kHeight = 480;
    /// A scene with these members besides.
    static std::string sceneWith(const std::string& members, const std::string& background = "#ffffff") {
        return R"({"view": {"width": 640, "height": 480, "background": ")" + background +
               R"("}, "camera": {"target": {"lat": 53.5, "lon": 10}, "zoom": 17})" +
               (members.empty() ? "" : ", ") + members + "}";
    }
    inline static const std::string kPlain = sceneWith("", "#208040");
    inline static const std::string kPlanPlace =
        R"("southWest": {"lat": 53.49, "lon": 9.99}, "northEast": {"lat": 53.51, "lon": 10.01})";

    void TearDown() override {
        if (app) {
            // The limits are the process's.
            engine().setMaxZoom(engine().maxSupportedZoom());
            engine().setMinZoom(engine().minSupportedZoom());
        }
        app.reset();
    }

    /// Opens a window with that scene and waits until nothing moves any more.
    void open(const std::string& scene, WindowOptions options = {}) {
        options.view.sceneFile = folder.write("scene.json", scene);
        options.print = [this](const std::string& line) { lines.push_back(line); };
        ViewApp::Failure failure;
        app = ViewApp::open(std::move(options), failure);
        if (!app) {
            throw std::runtime_error(failure.reason);
        }
        settle();
    }

    /// Runs the loop until the condition holds; false when it never does.
    template <class Condition>
    bool until(Condition holds) {
        for (int i = 0; i < 5000; ++i) {
            if (holds()) {
                return true;
            }
            app->step();
        }
        return false;
    }
    /// Until tiles are there and the picture stands still.
    void settle() {
        const auto start = app->stage().thread().updateCount();
        ASSERT_TRUE(until([&] {
            wakeLoop();
            return app->stage().isSettled() && app->stage().thread().updateCount() > start + 2;
        }));
    }
    /// For as many frames as a gesture takes to be told from another one.
    void wait(double seconds) {
        const auto end = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
        until([&] {
            app->stage().thread().waitForUpdates(app->stage().thread().updateCount() + 1);
            wakeLoop();
            return std::chrono::steady_clock::now() >= end;
        });
    }
    /// The next step of the loop does not sleep.
    void wakeLoop() {
        SDL_Event event{};
        event.type = app->window().wakeUpEvent();
        SDL_PushEvent(&event);
    }

    void send(SDL_Event event) {
        ASSERT_EQ(SDL_PushEvent(&event), 1);
        app->step();
    }
    void button(bool isDown, CGPoint at, std::uint8_t which = SDL_BUTTON_LEFT, Uint32 device = 0) {
        SDL_Event event{};
        event.button.which = device;
        event.type = isDown ? SDL_MOUSEBUTTONDOWN : SDL_MOUSEBUTTONUP;
        event.button.button = which;
        event.button.x = static_cast<int>(at.x);
        event.button.y = static_cast<int>(at.y);
        send(event);
    }
    void motion(CGPoint to, Uint32 device = 0) {
        SDL_Event event{};
        event.motion.which = device;
        event.type = SDL_MOUSEMOTION;
        event.motion.x = static_cast<int>(to.x);
        event.motion.y = static_cast<int>(to.y);
        send(event);
    }
    void drag(CGPoint from, CGPoint to, int steps, std::uint8_t which = SDL_BUTTON_LEFT) {
        motion(from);
        button(true, from, which);
        for (int i = 1; i <= steps; ++i) {
            const double part = static_cast<double>(i) / steps;
            motion(
                {std::round(from.x + (to.x - from.x) * part), std::round(from.y + (to.y - from.y) * part)});
        }
        button(false, to, which);
    }
    void click(CGPoint at) {
        button(true, at);
        button(false, at);
    }
    void wheel(CGPoint at, float notches) {
        motion(at);
        SDL_Event event{};
        event.type = SDL_MOUSEWHEEL;
        event.wheel.preciseY = notches;
        event.wheel.y = static_cast<int>(notches);
        send(event);
    }
    /// With what is made of it for programs that know only mice.
    void finger(Uint32 type, SDL_FingerID which, CGPoint at) {
        if (type == SDL_FINGERMOTION) {
            motion(at, SDL_TOUCH_MOUSEID);
        } else {
            button(type == SDL_FINGERDOWN, at, SDL_BUTTON_LEFT, SDL_TOUCH_MOUSEID);
        }
        SDL_Event event{};
        event.type = type;
        event.tfinger.touchId = 3;
        event.tfinger.fingerId = which;
        event.tfinger.x = static_cast<float>(at.x / kWidth);
        event.tfinger.y = static_cast<float>(at.y / kHeight);
        send(event);
    }
    void key(SDL_Keycode code, int modifiers = KMOD_NONE) {
        SDL_Event event{};
        event.type = SDL_KEYDOWN;
        event.key.keysym.sym = code;
        event.key.keysym.mod = static_cast<Uint16>(modifiers);
        send(event);
    }

    TrelmixMapEngine& engine() { return app->stage().engine(); }
    CLLocationCoordinate2D groundAt(CGPoint point) {
        return engine().projection()->worldCoordinateFor(point);
    }
    CGPoint pointOf(CLLocationCoordinate2D place) {
        return engine().projection()->screenCoordinateFor(place);
    }
    std::shared_ptr<const UIImage> picture() {
        const auto image = app->stage().picture(app->layout());
        EXPECT_TRUE(image) << image.reason();
        return image ? *image : nullptr;
    }
    /// Red, green, blue.
    std::array<int, 3> pixel(int x, int y) {
        const auto image = picture();
        return image && x < image->pixelWidth() && y < image->pixelHeight() ? colorAt(*image, x, y)
                                                                            : std::array{-1, -1, -1};
    }
    static SDL_Window* sdlWindow() {
        SDL_Window* window = nullptr;
        for (Uint32 id = 1; window == nullptr && id < 1000; ++id) {
            window = SDL_GetWindowFromID(id);
        }
        return window;
    }
    bool hasLine(const std::string& start) const {
        return std::any_of(lines.begin(), lines.end(),
                           [&](const std::string& line) { return line.starts_with(start); });
    }

    /// A picture of one colour, as a file.
    void writeImage(const std::string& name, int width, int height, std::array<std::uint8_t, 3> color) {
        folder.write(name, plainImage(width, height, color)->pngData());
    }

    ScratchFolder folder;
    std::vector<std::string> lines;
    std::unique_ptr<ViewApp> app;
};

inline double distance(CGPoint a, CGPoint b) {
    return std::hypot(a.x - b.x, a.y - b.y);
}

} // namespace trelmix::apps
