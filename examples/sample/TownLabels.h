/// @file
/// The names on one zoom level of the map: chosen and placed once for the whole level, so that every tile
/// agrees.
#pragma once

#include "TownModel.h"

#include <cairo.h>
#include <cstdint>
#include <string>
#include <vector>

namespace trelmix::sample {

/// The names in the town, placed so that none covers another. Longer than other classes, as the names of
/// places stand upright in lines and those of streets run letter by letter along them.
class TownLabels {
public:
    TownLabels(const TownModel& model, int zoom);

    /// Draws the names that touch these global pixels; `cr` draws in pixels from their top-left corner.
    void paint(cairo_t* cr, std::int64_t left, std::int64_t top, int width, int height) const;

private:
    struct Style {
        double size;
        bool isBold;
        bool isItalic;
        std::uint32_t rgb;
        double letterGap;
    };
    struct Glyph {
        std::string text; ///< one letter, or a whole line of an upright name
        Pt place;         ///< pixels from the centre of the sample
        double angle;
    };
    struct Label {
        Style style;
        std::vector<Glyph> glyphs;
        Box box; ///< pixels from the centre of the sample
    };

    static Style placeStyle(PlaceKind kind, int zoom);
    static void applyFont(cairo_t* cr, const Style& style);
    void addPlace(cairo_t* cr, const Place& place);
    void addStreet(cairo_t* cr, const Street& street);
    bool addAlong(cairo_t* cr, const Path& line, double from, const std::string& text, const Style& style);
    /// Keeps the label unless another has taken its room.
    bool claim(Label label, const std::vector<Box>& rooms);

    int _zoom;
    double _scale;
    std::vector<Label> _labels;
    std::vector<Box> _taken;
};

} // namespace trelmix::sample
