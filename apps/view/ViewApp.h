#pragma once

#include "common/options/CommandLine.h"
#include "view/FileWatch.h"
#include "view/Hud.h"
#include "view/InputMapper.h"
#include "view/LoadedScene.h"
#include "view/MessageLine.h"
#include "view/Stage.h"
#include "view/StageInput.h"

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace trelmix::apps {

struct WindowOptions {
    ViewOptions view;
    /// The program ends by itself after so many frames, once every tile is there.
    std::optional<std::uint64_t> frames;
    /// Where the window's picture goes at that end; empty for nowhere.
    std::string screenshot;
    /// How long that end waits for tiles.
    double timeoutSeconds = 60;
    /// Hears each line that the program prints; standard output when empty.
    std::function<void(const std::string&)> print;
};

/// The program with the window: takes events, keeps the pictures over the map up to date, and follows the
/// scene file. One at a time in a process. Main thread.
///
/// Longer than other classes, as here everything meets that a window has: each key's command, the loop, and
/// the change from one scene to the next, a few lines each.
class ViewApp final : private InputTarget {
public:
    struct Failure {
        ExitCode code = ExitCode::badInput;
        std::string reason;
    };

    /// Opens the window; empty with a failure when that cannot be done.
    static std::unique_ptr<ViewApp> open(WindowOptions options, Failure& failure);
    ~ViewApp() override;
    ViewApp(const ViewApp&) = delete;
    ViewApp& operator=(const ViewApp&) = delete;

    /// Steps until the end.
    ExitCode run();
    /// Sleeps until there is something to do, handles what there is, and brings the window up to date. False
    /// at the end.
    bool step();

    Stage& stage() const { return *_stage; }
    Window& window() const { return *_window; }
    const ScreenLayout& layout() const { return _layout; }
    /// The last line that was printed, or what went wrong last; shown in the window for some seconds.
    const std::string& message() const { return _message.last(); }

private:
    using Clock = std::chrono::steady_clock;

    explicit ViewApp(WindowOptions options);
    Failure openWindow();
    Result<std::unique_ptr<Stage>> makeStage(const LoadedScene& scene, const SceneCamera& camera);
    /// The one after the present stage, which stays as it is when this fails.
    Result<std::unique_ptr<Stage>> makeNextStage(const LoadedScene& scene, const SceneCamera& camera);
    double secondsToSleep() const;
    std::string showStage(std::unique_ptr<Stage> stage, bool keepsPicture);
    ScreenLayout layoutOf(const LoadedScene& scene) const;
    void updateLayout();
    void updateOverlays();
    void reloadScene();
    void endWhenDone();
    void savePicture();
    ExitCode writePicture(const std::string& path);
    void say(const std::string& line);
    void complainAndShow(const std::string& message);

    void touch(Phase phase, std::int64_t identifier, CGPoint point, double time) override {
        _hands.touch(phase, identifier, point, time);
    }
    void cancelTouches() override { _hands.cancelTouches(); }
    void wheel(CGPoint point, double notches) override { _hands.wheel(point, notches); }
    void turn(CGPoint start, CGPoint distance) override { _hands.turn(start, distance); }
    void command(Command command) override;
    void windowChanged() override { _layoutIsStale = true; }
    void stepLevel(int direction);
    void toggleSideZoom();

    WindowOptions _options;
    InputMapper _input{*this};
    Hud _hud;
    FileWatch _watch;
    LoadedScene _scene;
    SceneCamera _sceneCamera;
    std::unique_ptr<Window> _window;
    ScreenLayout _layout;
    std::unique_ptr<Stage> _stage;
    StageInput _hands{_hud, _layout};
    MessageLine _message;
    /// When the window is to show a new scene, complete or not.
    Clock::time_point _holdEnd;
    Clock::time_point _start = Clock::now();
    bool _showsHelp = false;
    bool _layoutIsStale = false;
    bool _quits = false;
    ExitCode _exitCode = ExitCode::done;
};

} // namespace trelmix::apps
