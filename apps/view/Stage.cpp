#include "view/Stage.h"

#include "view/LevelStep.h"

#include <chrono>
#include <cmath>
#include <SDL.h>

namespace trelmix::apps {

namespace {

// The fade of a new map, uploads and the label of the progress have come to rest by then.
constexpr std::uint64_t kStillFrames = 5;
constexpr const char* kDriverFault = "OpenGL ES cannot be used in the window: ";

} // namespace

Result<std::unique_ptr<Stage>> Stage::make(Window& window, const LoadedScene& scene,
                                           const SceneCamera& camera, const ScreenLayout& layout,
                                           std::function<void(const std::string&)> report) {
    using Made = Result<std::unique_ptr<Stage>>;
    std::unique_ptr<Stage> stage(new Stage(window));
    stage->_map =
        buildMapScene(scene.file, scene.content, camera, layout.map.size, std::make_shared<TileServer>());
    stage->_reporter = std::make_shared<HitReporter>(std::move(report));
    stage->_listeners = TrelmixMapEngineDelegateGroup::make();
    stage->_listeners->addMember(stage->_map.tileServer);
    stage->_listeners->addMember(stage->_reporter);
    stage->_listeners->addMember(stage->_keys);
    stage->_map.engine->setDelegate(stage->_listeners);
    // What is told is what the pointer is on, not what has it in its bounding box.
    stage->_map.engine->setHitTestBoundingBoxOnly(false);
    stage->findPlans(scene.file);
    if (std::string fault = stage->addSidePanel(scene, layout); !fault.empty()) {
        return Made::failure(std::move(fault));
    }
    return stage;
}

std::string Stage::enterWindow(const ScreenLayout& layout, bool keepsPicture) {
    _isShown = !keepsPicture;
    auto host = ViewHost::make(_map.engine, layout.hostLayout(), {.contextIsOurs = true});
    if (!host) {
        return host.reason();
    }
    _host = std::move(*host);
    _host->setWakeUp([type = _window.wakeUpEvent()] {
        SDL_Event event{};
        event.type = type;
        SDL_PushEvent(&event);
    });
    RenderThread::Surface surface = _window.surface();
    surface.present = [this, present = std::move(surface.present)] {
        if (_isShown) {
            present();
        }
    };
    _thread = RenderThread::start(_host, std::move(surface));
    std::string fault;
    if (!_thread->waitForUpdates(1) ||
        !_thread->runBetweenFrames([this, &fault] { fault = _host->failure(); })) {
        fault = "it does not start";
    }
    return fault.empty() ? fault : kDriverFault + fault;
}

void Stage::showPicture() {
    if (!_isShown.exchange(true)) {
        _thread->setNeedsDisplay();
    }
}

void Stage::findPlans(const SceneFile& scene) {
    // Level plans come first among the overlays, in the scene's order.
    for (std::size_t i = 0; i < scene.levelPlans.size(); ++i) {
        if (const auto level = scene.levelPlans[i].level) {
            _plans.emplace_back(*level, _map.overlays[i]);
            _planLevel = _map.overlays[i]->visible() ? level : _planLevel;
        }
    }
}

std::string Stage::addSidePanel(const LoadedScene& scene, const ScreenLayout& layout) {
    if (!scene.file.sideView) {
        return {};
    }
    auto side = SidePanel::make(*scene.file.sideView, scene.path, layout, _map.engine,
                                [this](std::int64_t level) { showPlansOf(level); });
    if (!side) {
        return side.reason();
    }
    _side = std::move(*side);
    _listeners->addMember(_side->engineListener());
    return {};
}

void Stage::showPlansOf(std::int64_t level) {
    for (const auto& [planLevel, plan] : _plans) {
        plan->setVisible(planLevel == level);
    }
}

std::optional<std::int64_t> Stage::stepLevel(int direction) {
    if (_side) {
        return _side->stepLevel(direction);
    }
    std::vector<std::int64_t> levels;
    for (const auto& [level, plan] : _plans) {
        levels.push_back(level);
    }
    _planLevel = nextLevel(levels, _planLevel, direction);
    if (_planLevel) {
        showPlansOf(*_planLevel);
    }
    return _planLevel;
}

void Stage::setLayout(const ScreenLayout& layout) {
    _host->setLayout(layout.hostLayout());
    if (_side) {
        const auto before = _side->engineListener();
        _side->resize(layout);
        _listeners->removeMember(before);
        _listeners->addMember(_side->engineListener());
    }
    _thread->setNeedsDisplay();
}

Stage::~Stage() {
    _thread.reset();
    if (_host) {
        // The host's textures and programs go with its context current.
        _window.makeCurrent();
        _host.reset();
        _window.release();
    }
}

bool Stage::isSettled() {
    // At rest there are frames only for who waits for them.
    _thread->waitForUpdates(_thread->updateCount() + 1);
    const std::uint64_t updates = _thread->updateCount();
    const std::uint64_t presents = _thread->presentCount();
    const TileCounts tiles = countOf(_map);
    const bool isAnswered =
        tiles.answered >= tiles.wanted && _map.tileServer->waitUntilAnswered(std::chrono::milliseconds(0));
    if (presents != _lastPresent || !isAnswered) {
        _lastPresent = presents;
        _stillSince = updates;
    }
    return updates >= _stillSince + kStillFrames;
}

Result<std::shared_ptr<const UIImage>> Stage::picture(const ScreenLayout& layout) {
    using Picture = Result<std::shared_ptr<const UIImage>>;
    std::shared_ptr<const UIImage> picture;
    std::string fault = "the drawing thread has ended";
    _thread->runBetweenFrames([&] {
        if (_host->drawFrame(true) != ViewHost::Drawing::drawn) {
            fault = _host->failure();
            return;
        }
        const auto pixels = [&layout](double points) {
            return static_cast<int>(std::lround(points * layout.scale));
        };
        picture =
            _window.drawnPicture(pixels(layout.window.width), pixels(layout.window.height), layout.scale);
        _window.present();
    });
    return picture ? Picture(std::move(picture)) : Picture::failure(std::move(fault));
}

} // namespace trelmix::apps
