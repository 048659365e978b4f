/// @file
/// Paints the boats, the ship at the quay and the lights on the moles; `cr` draws in metres.
#pragma once

#include "TownModel.h"

#include <cairo.h>

namespace trelmix::sample {

void paintBoats(cairo_t* cr, const TownModel& model, const Box& view, double scale);
void paintShip(cairo_t* cr, const Box& view, double scale);
void paintLighthouses(cairo_t* cr, const TownModel& model, double scale);

} // namespace trelmix::sample
