#include <Trelmix/Host/ViewHost.h>

#include "Host/HostedEngine.h"
#include "Platform/Foundation/CallerFault.h"
#include "Platform/Foundation/Clock.h"
#include "Platform/Foundation/RunLoop.h"
#include "Platform/Foundation/SceneLock.h"
#include "Platform/View/TouchDispatcher.h"
#include "Render/GLStateGuard.h"
#include "Render/Renderer.h"

#include <algorithm>
#include <cmath>
#include <mutex>
#include <optional>
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

class WindowHost final : public ViewHost {
public:
    WindowHost(HostedEngine engine, Options options)
        : _engine(std::move(engine)), _options(options), _touches(_engine.engine().view(), kFraction) {}

    ~WindowHost() override {
        _renderer.reset();
        if (_graveyard) {
            _graveyard->deleteObjects();
        }
    }

    bool setLayout(Layout layout) override {
        return requireMainThread("ViewHost::setLayout") && place(layout).empty();
    }

    /// Why the layout is out of range; empty when it was taken.
    std::string place(const Layout& layout) {
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
        return {};
    }

    // What a touch sets off may destroy this host: the dispatcher is called last, and once.
    void touchBegan(std::int64_t identifier, CGPoint point, double time) override {
        deliver({identifier, TouchPhase::began, inMap(point), time});
    }

    void touchMoved(std::int64_t identifier, CGPoint point, double time) override {
        if (!requireMainThread("ViewHost::touchMoved")) {
            return;
        }
        std::vector<Touch> before;
        if (std::any_of(_moves.begin(), _moves.end(),
                        [identifier](const Touch& move) { return move.identifier == identifier; })) {
            before.swap(_moves);
        }
        _moves.push_back({identifier, TouchPhase::moved, inMap(point), time});
        if (!before.empty()) {
            _touches.handle(before);
        }
    }

    void touchEnded(std::int64_t identifier, CGPoint point, double time) override {
        deliver({identifier, TouchPhase::ended, inMap(point), time});
    }

    void touchCancelled(std::int64_t identifier, double time) override {
        deliver({identifier, TouchPhase::cancelled, {std::nan(""), std::nan("")}, time});
    }

    void cancelTouches() override {
        if (!requireMainThread("ViewHost::cancelTouches")) {
            return;
        }
        _moves.clear();
        _touches.cancelAll();
    }

    void setOverlayImages(std::vector<OverlayImage> images) override {
        const std::lock_guard guard(_overlayMutex);
        if (!sameList(images, _overlays)) {
            _overlays = std::move(images);
            ++_overlayNumber;
        }
    }

    bool pump() override {
        if (isMainThread() && !_moves.empty()) {
            const std::vector<Touch> moves = std::exchange(_moves, {});
            _touches.handle(moves);
        }
        return RunLoop::main().pump();
    }
    void waitForWork(double seconds) override { RunLoop::main().wait(seconds); }

    Drawing drawFrame(bool always) override {
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

    Result<std::shared_ptr<const UIImage>> image() override {
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

    std::string failure() const override { return _failure; }

    void contextWasLost() override {
        _renderer.reset();
        _graveyard = nullptr; // its names went with the context
        _capabilities.reset();
        _drawn = {};
    }

private:
    /// While OpenGL calls are made: the application's state is kept, unless the context is the engine's own.
    class ContextUse {
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

    /// Fingers that move together are one event: fed one by one, the first of them would look like a turn.
    void deliver(const Touch& touch) {
        if (!requireMainThread("ViewHost::touchBegan, touchEnded or touchCancelled")) {
            return;
        }
        std::vector<Touch> touches = std::exchange(_moves, {});
        touches.push_back(touch);
        _touches.handle(touches);
    }

    CGPoint inMap(CGPoint point) const {
        return {point.x - _layout.map.origin.x, point.y - _layout.map.origin.y};
    }

    bool prepare() {
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

    bool draw(const DrawFrame& frame, const Layout& layout, const std::vector<OverlayImage>& overlays) {
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

    /// Ends with this host.
    std::shared_ptr<const bool> _life = std::make_shared<const bool>(true);
    HostedEngine _engine;
    Options _options;
    TouchDispatcher _touches;
    std::vector<Touch> _moves;
    Layout _layout;
    bool _layoutChanged = true;
    std::mutex _overlayMutex;
    std::vector<OverlayImage> _overlays;
    std::uint64_t _overlayNumber = 0;
    // The drawing thread's.
    std::uint64_t _drawnOverlayNumber = 0;
    std::optional<GLCapabilities> _capabilities;
    std::shared_ptr<GLGraveyard> _graveyard;
    std::unique_ptr<Renderer> _renderer;
    DrawFrame _drawn;
    RenderArea _drawnArea;
    double _drawnScale = 1;
    int _uploadsLeft = 0;
    std::string _failure;
};

} // namespace

ViewHost::~ViewHost() = default;

Result<std::unique_ptr<ViewHost>> ViewHost::make(std::shared_ptr<TrelmixMapEngine> engine, Layout layout,
                                                 Options options) {
    using HostResult = Result<std::unique_ptr<ViewHost>>;
    auto hosted = HostedEngine::adopt(std::move(engine));
    if (!hosted) {
        return HostResult::failure(hosted.reason());
    }
    auto host = std::make_unique<WindowHost>(std::move(*hosted), options);
    if (auto reason = host->place(layout); !reason.empty()) {
        return HostResult::failure(std::move(reason));
    }
    return Result<std::unique_ptr<ViewHost>>(std::move(host));
}

} // namespace trelmix
