#include "view/Hud.h"

#include "common/picture/Drawing.h"

#include <algorithm>
#include <cmath>

namespace trelmix::apps {

namespace {

constexpr double kMargin = 10;
constexpr double kCornerMargin = 4;
constexpr double kLongestScaleBar = 120;
constexpr const char* kHelpText = R"(Drag: pan. Wheel, two fingers: zoom. Right drag: rotate and tilt.
Left, Right: rotate. Up, Down: tilt. + and -: zoom. R: reset.
Page Up, Page Down: show a level of the plans.
S: save a picture. C: print the camera. Q: quit. H, Escape: hide this.
With a side view: drag in it to move along the structure,
click on a level: show it, Z: pan and zoom the picture instead.)";

/// Places images so that their pixels fall on the window's.
class Placer {
public:
    Placer(std::vector<ViewHost::OverlayImage>& images, double scale) : _images(images), _scale(scale) {}

    CGRect place(const std::shared_ptr<const UIImage>& image, double x, double y) {
        if (!image) {
            return {};
        }
        const CGRect frame{{std::round(x * _scale) / _scale, std::round(y * _scale) / _scale}, image->size()};
        _images.push_back({image, frame});
        return frame;
    }

private:
    std::vector<ViewHost::OverlayImage>& _images;
    double _scale;
};

std::string progressText(const Hud::State& state) {
    std::string text;
    for (const std::string& line : state.tileFailures) {
        text += (text.empty() ? "" : "\n") + line;
    }
    if (state.tiles.answered < state.tiles.wanted) {
        text += (text.empty() ? "Loading " : "\nLoading ") + std::to_string(state.tiles.answered) + " of " +
                std::to_string(state.tiles.wanted) + " tiles";
    }
    return text;
}

} // namespace

std::string Hud::helpText() {
    return kHelpText;
}

template <class Key, class Make>
const Hud::Image& Hud::made(Made<Key>& memory, const Key& key, const State& state, Make make) {
    const double width = state.map.size.width;
    if (!(memory.key == key) || memory.scale != state.scale || memory.width != width) {
        memory = {key, state.scale, width, make(key)};
    }
    return memory.image;
}

void Hud::addTo(std::vector<ViewHost::OverlayImage>& images, const State& state) {
    Placer placer(images, state.scale);
    const CGRect& map = state.map;
    const double right = map.origin.x + map.size.width;
    const double bottom = map.origin.y + map.size.height;
    const auto label = [&](const std::string& text) {
        return labelImage(text, state.scale, std::max(1.0, map.size.width - 2 * kMargin - 50));
    };

    const Image& attribution = made(_attribution, state.attribution, state, [&](const std::string& text) {
        return attributionImage(text, state.scale, std::max(1.0, map.size.width - 2 * kCornerMargin));
    });
    const CGSize attributionSize = attribution ? attribution->size() : CGSize{};
    placer.place(attribution, right - kCornerMargin - attributionSize.width,
                 bottom - kCornerMargin - attributionSize.height);

    const ScaleBar bar = scaleBarFor(state.metresPerPoint, std::min(kLongestScaleBar, map.size.width / 3));
    const Image& barImage =
        made(_scaleBar, bar, state, [&](const ScaleBar& key) { return scaleBarImage(key, state.scale); });
    double left = bottom - kMargin;
    if (barImage) {
        const bool isCrowded =
            barImage->size().width + attributionSize.width + 3 * kMargin > map.size.width && attribution;
        left -= barImage->size().height + (isCrowded ? attributionSize.height : 0);
        placer.place(barImage, map.origin.x + kMargin, left);
    }
    const Image& progress = made(_progress, progressText(state), state, label);
    if (progress) {
        placer.place(progress, map.origin.x + kMargin, left - kMargin - progress->size().height);
    }

    // Half a degree is what an eye can tell at this size.
    const Image& arrow = made(_northArrow, std::round(state.rotation * 2) / 2, state,
                              [&](double rotation) { return northArrowImage(rotation, state.scale); });
    if (arrow) {
        _northArrowFrame = placer.place(arrow, right - kMargin - arrow->size().width, map.origin.y + kMargin);
    }
    placer.place(made(_message, state.message, state, label), map.origin.x + kMargin, map.origin.y + kMargin);

    const Image& help = made(_help, state.showsHelp ? helpText() : std::string(), state, label);
    if (help) {
        placer.place(help, map.origin.x + (map.size.width - help->size().width) / 2,
                     map.origin.y + (map.size.height - help->size().height) / 2);
    }
}

bool Hud::isNorthArrow(CGPoint point) const {
    const double radius = _northArrowFrame.size.width / 2;
    return std::hypot(point.x - _northArrowFrame.origin.x - radius,
                      point.y - _northArrowFrame.origin.y - radius) <= radius &&
           radius > 0;
}

} // namespace trelmix::apps
