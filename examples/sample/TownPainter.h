/// @file
/// Paints the town, or any piece of it, as one zoom level of the map shows it.
#pragma once

#include "GroundFrame.h"
#include "TownLabels.h"
#include "TownModel.h"

#include <cairo.h>

namespace trelmix::sample {

/// Any two pictures of one zoom continue each other: nothing depends on where a picture begins.
///
/// `paint` may run on several threads at once; the model must outlive the painter. Longer than other classes,
/// as each kind of thing in the town has its strokes here.
class TownPainter {
public:
    TownPainter(const TownModel& model, int zoom);

    /// Paints what lies at global pixels (left, top) to (left + width, top + height) of the zoom level; `cr`
    /// draws in pixels from its top-left corner.
    void paint(cairo_t* cr, std::int64_t left, std::int64_t top, int width, int height) const;

private:
    void paintAreas(cairo_t* cr, const Box& view) const;
    void paintSea(cairo_t* cr, const Area& sea, const Box& view) const;
    void paintFootpaths(cairo_t* cr, const Box& view) const;
    void paintStreets(cairo_t* cr, const Box& view) const;
    void paintRailways(cairo_t* cr, const Box& view) const;
    void paintQuays(cairo_t* cr, const Box& view) const;
    void paintShadows(cairo_t* cr, const Box& view) const;
    void paintBuildings(cairo_t* cr, const Box& view) const;
    void paintTrees(cairo_t* cr, const Box& view) const;
    double streetWidth(const Street& street) const;

    const TownModel& _model;
    int _zoom;
    double _scale; ///< pixels per metre
    TownLabels _labels;
};

} // namespace trelmix::sample
