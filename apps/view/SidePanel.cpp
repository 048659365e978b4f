#include "view/SidePanel.h"

#include "common/scene/SceneSideview.h"
#include "view/LevelStep.h"

#include <utility>

namespace trelmix::apps {

struct SidePanel::TapListener : TMXSideviewScrollViewDelegate {
    explicit TapListener(SidePanel& panel) : owner(panel) {}
    void sideViewDidScroll() override {}
    void sideViewDidReceiveTap() override {
        if (const auto level = owner._sideview->levelAt(owner._lastTouch)) {
            owner.showLevel(*level);
        }
    }
    SidePanel& owner;
};

SidePanel::SidePanel(const SceneSideview& scene, std::string scenePath,
                     std::shared_ptr<TrelmixMapEngine> engine, std::function<void(std::int64_t)> onLevel)
    : _scene(scene), _scenePath(std::move(scenePath)), _engine(std::move(engine)),
      _onLevel(std::move(onLevel)), _taps(std::make_shared<TapListener>(*this)) {}

Result<std::unique_ptr<SidePanel>> SidePanel::make(const SceneSideview& scene, const std::string& scenePath,
                                                   const ScreenLayout& layout,
                                                   std::shared_ptr<TrelmixMapEngine> engine,
                                                   std::function<void(std::int64_t)> onLevel) {
    std::unique_ptr<SidePanel> panel(new SidePanel(scene, scenePath, std::move(engine), std::move(onLevel)));
    if (std::string fault = panel->build(layout); !fault.empty()) {
        return Result<std::unique_ptr<SidePanel>>::failure(std::move(fault));
    }
    panel->_sideview->setEnableZooming(false);
    panel->_host->revealDisplayedLevel();
    panel->_onLevel(panel->_sideview->levelNumber());
    return panel;
}

std::string SidePanel::build(const ScreenLayout& layout) {
    auto sideview = makeSceneSideview(_scene, _scenePath, layout.side.size, _engine);
    if (!sideview) {
        return sideview.reason();
    }
    auto host = SideviewHost::make(*sideview, layout.side.size.width, layout.side.size.height, layout.scale);
    if (!host) {
        return host.reason();
    }
    _host = std::move(*host);
    _sideview = std::move(*sideview);
    _sideview->setDelegate(_taps);
    _layout = layout;
    return {};
}

void SidePanel::resize(const ScreenLayout& layout) {
    if (layout == _layout) {
        return;
    }
    const std::int64_t level = _sideview->levelNumber();
    const bool zooms = _sideview->enableZooming();
    // The picture is fitted to the width by a new set-up only.
    const bool isNew = layout.side.size.width != _layout.side.size.width && build(layout).empty();
    if (isNew) {
        _sideview->setEnableZooming(zooms);
        _sideview->setDisplayedLevel(level, _engine);
    } else {
        _host->resize(layout.side.size.width, layout.side.size.height, layout.scale);
        _layout = layout;
    }
    _host->revealDisplayedLevel();
}

CGPoint SidePanel::inside(CGPoint point) const {
    return {point.x - _layout.side.origin.x, point.y - _layout.side.origin.y};
}

void SidePanel::touch(SideviewHost::Phase phase, std::int64_t identifier, CGPoint point, double time) {
    if (phase == SideviewHost::Phase::began) {
        _lastTouch = inside(point);
    }
    _host->touch(phase, identifier, inside(point), time);
}

void SidePanel::wheel(CGPoint point, double factor) {
    _host->zoomBy(factor, inside(point));
}

std::int64_t SidePanel::stepLevel(int direction) {
    if (const auto next = nextLevel(_sideview->levelNumbers(), _sideview->levelNumber(), direction)) {
        showLevel(*next);
    }
    return _sideview->levelNumber();
}

void SidePanel::showLevel(std::int64_t level) {
    if (level != _sideview->levelNumber()) {
        _sideview->setDisplayedLevel(level, _engine);
        _host->revealDisplayedLevel();
        _onLevel(level);
    }
}

std::shared_ptr<const UIImage> SidePanel::image() const {
    const auto image = _host->image();
    return image ? *image : nullptr;
}

} // namespace trelmix::apps
