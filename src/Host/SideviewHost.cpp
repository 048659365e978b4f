#include <Trelmix/Host/SideviewHost.h>

#include "Host/HostedEngine.h"
#include "Host/ViewTreeState.h"
#include "Platform/Foundation/CallerFault.h"
#include "Platform/View/TouchDispatcher.h"
#include "Platform/View/ViewComposer.h"
#include "Sideview/SideviewScrollView.h"

#include <cmath>
#include <utility>

namespace trelmix {

namespace {

using ImageResult = Result<std::shared_ptr<const UIImage>>;

bool isPixelSide(double pixels) {
    return std::round(pixels) >= 1 && std::round(pixels) <= HostedEngine::kLargestSide;
}

TouchPhase touchPhase(SideviewHost::Phase phase) {
    switch (phase) {
    case SideviewHost::Phase::began:
        return TouchPhase::began;
    case SideviewHost::Phase::moved:
        return TouchPhase::moved;
    case SideviewHost::Phase::ended:
        return TouchPhase::ended;
    case SideviewHost::Phase::cancelled:
        break;
    }
    return TouchPhase::cancelled;
}

class ComposingHost final : public SideviewHost {
public:
    explicit ComposingHost(std::shared_ptr<SideviewScrollView> sideview)
        : _sideview(std::move(sideview)), _touches(_sideview) {}

    bool resize(double width, double height, double scale) override {
        if (!requireMainThread("SideviewHost::resize") || !(scale > 0) || !isPixelSide(width * scale) ||
            !isPixelSide(height * scale)) {
            return false;
        }
        _scale = scale;
        _sideview->setFrame({{0, 0}, {width, height}});
        _sideview->layoutIfNeeded();
        _picture.reset();
        return true;
    }

    void touch(Phase phase, std::int64_t identifier, CGPoint point, double time) override {
        _touches.handle({identifier, touchPhase(phase), point, time});
    }
    void cancelTouches() override { _touches.cancelAll(); }
    void zoomBy(double factor, CGPoint point) override {
        if (requireMainThread("SideviewHost::zoomBy")) {
            _sideview->zoomBy(factor, point);
        }
    }

    void revealDisplayedLevel() override {
        if (requireMainThread("SideviewHost::revealDisplayedLevel")) {
            _sideview->revealDisplayedLevel();
        }
    }

    bool needsDisplay() const override { return !_picture || ViewTreeState::of(*_sideview) != _shown; }

    ImageResult image() override {
        if (!requireMainThread("SideviewHost::image")) {
            return ImageResult::failure("a side view is composed on the main thread");
        }
        // A layout pass that is due would otherwise count as a change after the picture.
        _sideview->layoutIfNeeded();
        if (!needsDisplay()) {
            return _picture;
        }
        auto composed = ViewComposer::compose(*_sideview, _scale);
        if (composed) {
            _picture = *composed;
            _shown = ViewTreeState::of(*_sideview);
        }
        return composed;
    }

private:
    std::shared_ptr<SideviewScrollView> _sideview;
    TouchDispatcher _touches;
    double _scale = 1;
    std::shared_ptr<const UIImage> _picture;
    ViewTreeState _shown;
};

} // namespace

SideviewHost::~SideviewHost() = default;

Result<std::unique_ptr<SideviewHost>> SideviewHost::make(std::shared_ptr<TMXSideviewScrollView> sideview,
                                                         double width, double height, double scale) {
    using Made = Result<std::unique_ptr<SideviewHost>>;
    if (!isMainThread()) {
        return Made::failure("a host must be made on the main thread; chooseMainThread makes another thread "
                             "that one");
    }
    auto own = std::dynamic_pointer_cast<SideviewScrollView>(std::move(sideview));
    if (!own || own->superview()) {
        return Made::failure("the host needs a side view made by TMXSideviewScrollView that lies in no "
                             "other view");
    }
    std::unique_ptr<SideviewHost> host = std::make_unique<ComposingHost>(std::move(own));
    if (!host->resize(width, height, scale)) {
        return Made::failure("a view must have 1 to 16384 pixels a side");
    }
    return host;
}

} // namespace trelmix
