#include "Host/WindowHost.h"

#include "Platform/Foundation/CallerFault.h"
#include "Platform/Foundation/Clock.h"
#include "Platform/Foundation/RunLoop.h"
#include "Platform/Foundation/SceneLock.h"
#include "Render/GLStateGuard.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace trelmix {

namespace {

/// A step with an exact zero on an axis scrolls nothing, and mice report whole points. Not one of the binary
/// fractions in which digitisers report, so that none of theirs makes up for it.
constexpr double kFraction = 0.001;
/// How much longer a frame may upload images while the camera stands.
constexpr double kPatienceAtRest = 4;

bool sameList(const std::vector<ViewHost::OverlayImage>& a, const std::vector<ViewHost::OverlayImage>& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](const auto& x, const auto& y) { return x.image == y.image && x.frame == y.frame; });
}

} // namespace

/// While OpenGL calls are made: the application's state is kept, unless the context is the engine's own.
class WindowHost::ContextUse {
public:
    explicit ContextUse(const WindowHost& host) {
        if (!host._options.contextIsOurs) {
            _guard.emplace(*host._capabilities);
        }
    }
    unsigned framebuffer() const { return _guard ? _guard->framebuffer() : 0; }

private:
    std::optional<GLStateGuard> _guard;
};

WindowHost::WindowHost(HostedEngine engine, Options options)
    : _engine(std::move(engine)), _options(options), _touches(_engine.engine().view(), kFraction) {
    setWakeUp(nullptr);
}

WindowHost::~WindowHost() {
    _wakeUp.reset();
    _renderer.reset();
    if (_graveyard) {
        _graveyard->deleteObjects();
    }
}

bool WindowHost::setLayout(Layout layout) {
    return requireMainThread("ViewHost::setLayout") && place(layout).empty();
}

std::string WindowHost::place(const Layout& layout) {
    for (const double side : {layout.window.width, layout.window.height}) {
        if (const double pixels = std::round(side * layout.scale);
            !(pixels >= 1 && pixels <= HostedEngine::kLargestSide)) {
            return "a window must have 1 to 16384 pixels a side";
        }
    }
    for (const double edge : {layout.map.origin.x, layout.map.origin.y}) {
        if (!(std::abs(edge * layout.scale) <= HostedEngine::kLargestSide)) {
            return "the map must lie at most 16384 pixels from the window's corner";
        }
    }
    const SceneLock lock;
    if (auto reason = _engine.resize(layout.map.size.width, layout.map.size.height, layout.scale);
        !reason.empty()) {
        return reason;
    }
    _layout = layout;
    _layoutChanged = true;
    WakeUp::signal(Wake::frame);
    return {};
}

void WindowHost::touchBegan(std::int64_t identifier, CGPoint point, double time) {
    deliver({identifier, TouchPhase::began, inMap(point), time});
}

void WindowHost::touchMoved(std::int64_t identifier, CGPoint point, double time) {
    if (!requireMainThread("ViewHost::touchMoved")) {
        return;
    }
    std::vector<Touch> before;
    if (std::any_of(_moves.begin(), _moves.end(),
                    [identifier](const Touch& move) { return move.identifier == identifier; })) {
        before.swap(_moves);
    }
    _moves.push_back({identifier, TouchPhase::moved, inMap(point), time});
    WakeUp::signal(Wake::work);
    if (!before.empty()) {
        _touches.handle(before);
    }
}

void WindowHost::touchEnded(std::int64_t identifier, CGPoint point, double time) {
    deliver({identifier, TouchPhase::ended, inMap(point), time});
}

void WindowHost::touchCancelled(std::int64_t identifier, double time) {
    deliver({identifier, TouchPhase::cancelled, {std::nan(""), std::nan("")}, time});
}

void WindowHost::cancelTouches() {
    if (!requireMainThread("ViewHost::cancelTouches")) {
        return;
    }
    _moves.clear();
    _touches.cancelAll();
}

void WindowHost::setOverlayImages(std::vector<OverlayImage> images) {
    {
        const std::lock_guard guard(_overlayMutex);
        if (sameList(images, _overlays)) {
            return;
        }
        _overlays.swap(images);
        ++_overlayNumber;
    }
    WakeUp::signal(Wake::frame);
}

bool WindowHost::pump() {
    if (isMainThread() && !_moves.empty()) {
        const std::vector<Touch> moves = std::exchange(_moves, {});
        _touches.handle(moves);
    }
    return RunLoop::main().pump();
}

void WindowHost::waitForWork(double seconds) {
    RunLoop::main().wait(seconds);
}

void WindowHost::setWakeUp(std::function<void()> function) {
    if (!requireMainThread("ViewHost::setWakeUp")) {
        return;
    }
    _wakeUp.reset();
    const auto isCalling = std::make_shared<bool>(false);
    const auto tell = [this, isCalling, function = std::move(function)](Wake what) {
        if (what == Wake::frame) {
            _needsDisplay = true;
        }
        // A function that changes something itself has no need to hear of it.
        if (function && !*isCalling && !_isTold.exchange(true)) {
            const auto flag = isCalling; // the function may destroy this host, and what is captured here
            *flag = true;
            guarded("a wake-up function threw an exception", function);
            *flag = false;
        }
    };
    _isTold = false;
    _wakeUp = std::make_unique<WakeUp>(tell);
    // What there was to do before is news to a new owner.
    WakeUp::signal(Wake::frame);
}

bool WindowHost::needsDisplay() const {
    _isTold = false;
    return _needsDisplay;
}

double WindowHost::secondsToPump() const {
    if (!requireMainThread("ViewHost::secondsToPump")) {
        return std::numeric_limits<double>::infinity();
    }
    _isTold = false;
    return _moves.empty() ? RunLoop::main().secondsToWork() : 0;
}

ViewHost::Drawing WindowHost::drawFrame(bool always) {
    const std::weak_ptr<const bool> life = _life;
    // Before it is looked what there is to draw: what changes from here on is for the next frame.
    _needsDisplay = false;
    const Drawing drawing = drawChanges(always);
    if (!life.expired() && _uploadsLeft > 0) {
        WakeUp::signal(Wake::frame);
    }
    return drawing;
}

ViewHost::Drawing WindowHost::drawChanges(bool always) {
    DrawFrame frame;
    Layout layout;
    bool changed = always;
    {
        const SceneLock lock;
        const std::weak_ptr<const bool> life = _life;
        frame = _engine.nextFrame(Clock::now());
        if (life.expired()) {
            return Drawing::unchanged; // the application has destroyed this host
        }
        layout = _layout;
        changed = std::exchange(_layoutChanged, false) || changed;
    }
    std::vector<OverlayImage> overlays;
    {
        const std::lock_guard guard(_overlayMutex);
        changed = std::exchange(_drawnOverlayNumber, _overlayNumber) != _overlayNumber || changed;
        overlays = _overlays;
    }
    changed = changed || _uploadsLeft > 0 || frame.camera != _drawn.camera || frame.list != _drawn.list ||
              frame.alpha != _drawn.alpha || !(frame.background == _drawn.background);
    if (!changed) {
        return Drawing::unchanged;
    }
    const bool isDrawn = draw(frame, layout, overlays);
    _drawn = isDrawn ? std::move(frame) : DrawFrame{};
    return isDrawn ? Drawing::drawn : Drawing::failed;
}

Result<std::shared_ptr<const UIImage>> WindowHost::image() {
    using Image = Result<std::shared_ptr<const UIImage>>;
    if (!_renderer || !_drawn.list) {
        return Image::failure(_failure.empty() ? "no frame has been drawn yet" : _failure);
    }
    const ContextUse use(*this);
    if (!_renderer->hasPicture()) {
        // What a window was shown cannot be read from it again; the frame that was drawn can be drawn
        // again.
        if (auto again = _renderer->draw(_drawn, _drawnArea.width, _drawnArea.height); !again) {
            return Image::failure(again.reason());
        }
    }
    return _renderer->readBack(_drawnScale);
}

void WindowHost::contextWasLost() {
    _renderer.reset();
    _graveyard = nullptr; // its names went with the context
    _capabilities.reset();
    _drawn = {};
    WakeUp::signal(Wake::frame);
}

void WindowHost::deliver(const Touch& touch) {
    if (!requireMainThread("ViewHost::touchBegan, touchEnded or touchCancelled")) {
        return;
    }
    std::vector<Touch> touches = std::exchange(_moves, {});
    touches.push_back(touch);
    _touches.handle(touches);
}

CGPoint WindowHost::inMap(CGPoint point) const {
    return {point.x - _layout.map.origin.x, point.y - _layout.map.origin.y};
}

bool WindowHost::prepare() {
    if (_renderer) {
        return true;
    }
    _capabilities = GLCapabilities::ofCurrentContext();
    if (_capabilities->renderer.empty()) {
        _capabilities.reset();
        _failure = "no OpenGL ES context is current";
        return false;
    }
    _graveyard = std::make_shared<GLGraveyard>();
    Renderer::Options options;
    options.samples = _options.samples > 0 ? _options.samples : (_capabilities->isSoftwareDriver ? 1 : 4);
    _renderer = std::make_unique<Renderer>(*_capabilities, _graveyard, options);
    return true;
}

bool WindowHost::draw(const DrawFrame& frame, const Layout& layout,
                      const std::vector<OverlayImage>& overlays) {
    if (!prepare()) {
        return false;
    }
    const ContextUse use(*this);
    const auto pixels = [&layout](double points) {
        return static_cast<int>(std::round(points * layout.scale));
    };
    const int windowHeight = pixels(layout.window.height);
    RenderArea area{use.framebuffer(), pixels(layout.map.origin.x), 0, pixels(layout.map.size.width),
                    pixels(layout.map.size.height)};
    area.y = windowHeight - pixels(layout.map.origin.y) - area.height;
    const double patience = frame.camera == _drawn.camera ? kPatienceAtRest : 1;
    _renderer->setUploadSecondsPerFrame(_options.uploadSecondsPerFrame * patience);
    const auto report = _renderer->drawInto(frame, area);
    _failure = report.reason();
    if (!report) {
        return false;
    }
    _uploadsLeft = report->uploadsLeft;
    _drawnArea = area;
    _drawnScale = layout.scale;
    std::vector<OverlayQuad> quads;
    for (const OverlayImage& overlay : overlays) {
        const CGRect& r = overlay.frame;
        quads.push_back({overlay.image,
                         {{r.origin.x * layout.scale, r.origin.y * layout.scale},
                          {r.size.width * layout.scale, r.size.height * layout.scale}}});
    }
    _renderer->drawImagesTo(area.framebuffer, pixels(layout.window.width), windowHeight, quads);
    return true;
}

} // namespace trelmix
