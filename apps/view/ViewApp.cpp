#include "view/ViewApp.h"

#include "common/picture/PictureFile.h"
#include "common/scene/SceneFraming.h"
#include "view/CameraControl.h"

#include <algorithm>
#include <cmath>
#include <ctime>
#include <filesystem>
#include <iostream>
#include <SDL.h>

namespace trelmix::apps {

namespace {

/// Seconds: the longest sleep, after which messages and watched files are looked at.
constexpr double kLongestSleep = 1;
/// The longest that a window keeps its old picture while the new one's tiles come.
constexpr std::chrono::seconds kLongestHold{10};

bool isSame(const std::optional<SceneCamera>& a, const std::optional<SceneCamera>& b) {
    if (!a || !b) {
        return a.has_value() == b.has_value();
    }
    return a->target.latitude == b->target.latitude && a->target.longitude == b->target.longitude &&
           a->zoom == b->zoom && a->rotation == b->rotation && a->viewingAngle == b->viewingAngle;
}

constexpr std::pair<Command, CameraStep> kCameraSteps[] = {
    {Command::rotateLeft, {.rotation = -15}}, {Command::rotateRight, {.rotation = 15}},
    {Command::tiltMore, {.viewingAngle = 5}}, {Command::tiltLess, {.viewingAngle = -5}},
    {Command::zoomIn, {.levels = 0.5}},       {Command::zoomOut, {.levels = -0.5}},
};

/// Whether somebody has taken hold of the window.
bool isInput(const SDL_Event& event) {
    return event.type == SDL_KEYDOWN || event.type == SDL_MOUSEBUTTONDOWN || event.type == SDL_MOUSEWHEEL ||
           event.type == SDL_FINGERDOWN;
}

} // namespace

ViewApp::ViewApp(WindowOptions options) : _options(std::move(options)) {
    _watch.watch({_options.view.sceneFile});
}

ViewApp::~ViewApp() = default;

std::unique_ptr<ViewApp> ViewApp::open(WindowOptions options, Failure& failure) {
    std::unique_ptr<ViewApp> app(new ViewApp(std::move(options)));
    failure = app->openWindow();
    return failure.reason.empty() ? std::move(app) : nullptr;
}

ViewApp::Failure ViewApp::openWindow() {
    auto scene = loadScene(_options.view, _watch);
    if (!scene) {
        return {ExitCode::badInput, scene.reason()};
    }
    const std::string name = std::filesystem::path(_options.view.sceneFile).filename().string();
    auto window = Window::open(name, {scene->file.view.width, scene->file.view.height}, _options.view.scale);
    if (!window) {
        return {Window::isDriverMissing(window.reason()) ? ExitCode::noDriver : ExitCode::badInput,
                window.reason()};
    }
    _window = std::move(*window);
    _scene = std::move(*scene);
    _layout = layoutOf(_scene);
    const auto camera = cameraOfScene(_scene.file, _scene.content, _layout.map.size);
    if (!camera) {
        return {ExitCode::badInput, _options.view.sceneFile + ": " + camera.reason()};
    }
    _sceneCamera = *camera;
    auto stage = makeStage(_scene, *camera);
    if (!stage) {
        return {ExitCode::badInput, stage.reason()};
    }
    return {ExitCode::noDriver, showStage(std::move(*stage), false)};
}

Result<std::unique_ptr<Stage>> ViewApp::makeStage(const LoadedScene& scene, const SceneCamera& camera) {
    return Stage::make(*_window, scene, camera, layoutOf(scene),
                       [this](const std::string& hit) { say(hit); });
}

std::string ViewApp::showStage(std::unique_ptr<Stage> stage, bool keepsPicture) {
    // The window has one stage at a time.
    _hands.setStage(nullptr);
    _stage.reset();
    _layout = layoutOf(_scene);
    if (std::string fault = stage->enterWindow(_layout, keepsPicture); !fault.empty()) {
        return fault;
    }
    _stage = std::move(stage);
    _hands.setStage(_stage.get());
    _holdEnd = Clock::now() + kLongestHold;
    updateLayout();
    return {};
}

ScreenLayout ViewApp::layoutOf(const LoadedScene& scene) const {
    return layoutFor(_window->pixelSize(), _window->scale(), scene.sidePicture);
}

void ViewApp::updateLayout() {
    _layoutIsStale = false;
    _layout = layoutOf(_scene);
    _input.setWindow(_window->size(), _layout.window);
    _stage->setLayout(_layout);
}

ExitCode ViewApp::run() {
    while (step()) {
    }
    return _exitCode;
}

bool ViewApp::step() {
    SDL_Event event;
    const int sleep = static_cast<int>(std::ceil(1000 * secondsToSleep()));
    bool isDue = false; // the picture, be it complete or not
    for (bool isThere = SDL_WaitEventTimeout(&event, sleep) != 0; isThere;
         isThere = SDL_PollEvent(&event) != 0) {
        _input.handle(event);
        isDue = isDue || isInput(event);
    }
    if (_watch.hasChanged()) {
        reloadScene();
    }
    if (!_stage) {
        return false;
    }
    isDue = isDue || _layoutIsStale || Clock::now() >= _holdEnd;
    if (_layoutIsStale) {
        updateLayout();
    }
    if (!_stage->isShown() && (isDue || _stage->isSettled())) {
        _stage->showPicture();
    }
    _stage->host().pump();
    _stage->map().tileServer->rethrowFault();
    updateOverlays();
    if (_options.frames) {
        endWhenDone();
    }
    return !_quits;
}

double ViewApp::secondsToSleep() const {
    if (!_stage) {
        return 0;
    }
    // Who waits for a picture to be complete sleeps for its frames instead.
    const bool waitsForPicture = _options.frames.has_value() || !_stage->isShown();
    return waitsForPicture ? 0 : std::min(kLongestSleep, _stage->host().secondsToPump());
}

void ViewApp::updateOverlays() {
    const auto camera = _stage->engine().camera();
    Hud::State state;
    state.map = _layout.map;
    state.scale = _layout.scale;
    state.rotation = camera ? camera->rotation() : 0;
    state.metresPerPoint = metresPerPoint(_stage->engine(), _layout.map.size);
    state.tiles = countOf(_stage->map());
    state.tileFailures = tileFailures(_stage->map());
    state.attribution = _scene.content.attribution;
    state.message = _message.shown();
    state.showsHelp = _showsHelp;
    std::vector<ViewHost::OverlayImage> images;
    if (const SidePanel* side = _stage->side()) {
        if (auto image = side->image()) {
            images.push_back({std::move(image), _layout.side});
        }
    }
    _hud.addTo(images, state);
    _stage->host().setOverlayImages(std::move(images));
}

void ViewApp::reloadScene() {
    auto scene = loadScene(_options.view, _watch);
    if (!scene) {
        complainAndShow(scene.reason());
        return;
    }
    const auto framed = cameraOfScene(scene->file, scene->content, _layout.map.size);
    if (!framed) {
        complainAndShow(_options.view.sceneFile + ": " + framed.reason());
        return;
    }
    SceneCamera camera = *framed;
    const auto shown = _stage->engine().camera();
    if (isSame(scene->file.camera, _scene.file.camera) && shown) {
        camera = {shown->target(), static_cast<double>(shown->zoom()), shown->rotation(),
                  shown->viewingAngle()};
    }
    auto stage = makeNextStage(*scene, camera);
    if (!stage) {
        complainAndShow(stage.reason());
        return;
    }
    _scene = std::move(*scene);
    _sceneCamera = *framed;
    if (std::string fault = showStage(std::move(*stage), true); !fault.empty()) {
        _exitCode = complain(fault, ExitCode::noDriver);
        return;
    }
    _message.set("Scene read again");
}

Result<std::unique_ptr<Stage>> ViewApp::makeNextStage(const LoadedScene& scene, const SceneCamera& camera) {
    // The limits are the process's: those of a scene that has none are the widest.
    TrelmixMapEngine& engine = _stage->engine();
    const float least = engine.minZoom();
    const float most = engine.maxZoom();
    engine.setMaxZoom(engine.maxSupportedZoom());
    engine.setMinZoom(engine.minSupportedZoom());
    auto stage = makeStage(scene, camera);
    if (!stage) {
        engine.setMaxZoom(most);
        engine.setMinZoom(least);
    }
    return stage;
}

void ViewApp::endWhenDone() {
    const std::chrono::duration<double> passed = Clock::now() - _start;
    const bool isLate = passed.count() >= _options.timeoutSeconds;
    const bool isSettled = _stage->isSettled();
    if (!isLate && (!isSettled || _stage->thread().updateCount() < *_options.frames)) {
        return;
    }
    _quits = true;
    if (!_options.screenshot.empty()) {
        _exitCode = writePicture(_options.screenshot);
    }
    const TileCounts tiles = countOf(_stage->map());
    if (_exitCode == ExitCode::done && tiles.answered < tiles.wanted) {
        _exitCode = complain(std::to_string(tiles.wanted - tiles.answered) + " of " +
                                 std::to_string(tiles.wanted) + " tiles were not answered in time",
                             ExitCode::tilesUnanswered);
    }
}

void ViewApp::savePicture() {
    const std::time_t now = std::time(nullptr);
    std::tm parts{};
    char stamp[32] = "";
    if (::localtime_r(&now, &parts) != nullptr) {
        std::strftime(stamp, sizeof stamp, "map-%Y%m%d-%H%M%S", &parts);
    }
    std::string path = std::string(stamp) + ".png";
    for (int i = 2; std::filesystem::exists(path); ++i) {
        path = std::string(stamp) + "-" + std::to_string(i) + ".png";
    }
    if (writePicture(path) == ExitCode::done) {
        say("saved " + path);
    }
}

ExitCode ViewApp::writePicture(const std::string& path) {
    const auto picture = _stage->picture(_layout);
    if (!picture) {
        complainAndShow("the picture cannot be read back: " + picture.reason());
        return ExitCode::noDriver;
    }
    const std::string fault = savePictureFile(**picture, path);
    if (!fault.empty()) {
        complainAndShow(fault);
    }
    return fault.empty() ? ExitCode::done : ExitCode::badInput;
}

void ViewApp::command(Command command) {
    if (!_stage) {
        return;
    }
    TrelmixMapEngine& engine = _stage->engine();
    for (const auto& [moving, step] : kCameraSteps) {
        if (command == moving) {
            _stage->keys().moveBy(engine, step);
        }
    }
    switch (command) {
    case Command::quit:
        _quits = true;
        break;
    case Command::leave:
        _quits = !_showsHelp;
        _showsHelp = false;
        break;
    case Command::resetCamera:
        engine.setCamera(std::make_shared<TrelmixMapEngineCamera>(_sceneCamera.target, _sceneCamera.rotation,
                                                                  _sceneCamera.viewingAngle,
                                                                  static_cast<float>(_sceneCamera.zoom)),
                         true);
        break;
    case Command::levelUp:
    case Command::levelDown:
        stepLevel(command == Command::levelUp ? 1 : -1);
        break;
    case Command::toggleSideZoom:
        toggleSideZoom();
        break;
    case Command::toggleHelp:
        _showsHelp = !_showsHelp;
        break;
    case Command::savePicture:
        savePicture();
        break;
    case Command::printCamera:
        say(cameraArgument(engine));
        break;
    default:
        break;
    }
}

void ViewApp::stepLevel(int direction) {
    if (const auto level = _stage->stepLevel(direction)) {
        _message.set("Level " + std::to_string(*level));
    }
}

void ViewApp::toggleSideZoom() {
    if (SidePanel* side = _stage->side()) {
        side->toggleZooming();
        _message.set(side->sideview().enableZooming() ? "Side view: drag pans, wheel zooms"
                                                      : "Side view: drag moves the map");
    }
}

void ViewApp::say(const std::string& line) {
    if (_options.print) {
        _options.print(line);
    } else {
        std::cout << line << std::endl;
    }
    _message.set(line);
}

void ViewApp::complainAndShow(const std::string& message) {
    complain(message, ExitCode::badInput);
    _message.set(message);
}

} // namespace trelmix::apps
