#pragma once

#include "common/picture/Controls.h"
#include "common/scene/MapScene.h"

#include <Trelmix/Host/ViewHost.h>

#include <memory>
#include <string>
#include <vector>

namespace trelmix::apps {

/// What is drawn over the map in the window: the sources' names, a scale bar, the north arrow, how far
/// loading is and what fails in it, and what was hit last. Images are drawn anew only when they would differ.
/// Main thread.
class Hud {
public:
    struct State {
        /// Points of the window.
        CGRect map;
        /// Pixels per point.
        double scale = 1;
        /// Degrees.
        double rotation = 0;
        double metresPerPoint = 0;
        TileCounts tiles;
        /// Lines that say which tiles could not be had.
        std::vector<std::string> tileFailures;
        std::string attribution;
        /// Empty for none.
        std::string message;
        bool showsHelp = false;
    };

    /// What mouse and keys do, in lines.
    static std::string helpText();

    /// Appends what has to be drawn in that state.
    void addTo(std::vector<ViewHost::OverlayImage>& images, const State& state);
    /// Whether a point of the window lies on the north arrow, as it was drawn last.
    bool isNorthArrow(CGPoint point) const;

private:
    using Image = std::shared_ptr<const UIImage>;
    /// The image made from the last key.
    template <class Key>
    struct Made {
        Key key{};
        double scale = 0;
        double width = 0;
        Image image;
    };
    template <class Key, class Make>
    static const Image& made(Made<Key>& memory, const Key& key, const State& state, Make make);

    Made<std::string> _attribution;
    Made<std::string> _message;
    Made<std::string> _progress;
    Made<std::string> _help;
    Made<ScaleBar> _scaleBar;
    Made<double> _northArrow;
    CGRect _northArrowFrame;
};

} // namespace trelmix::apps
