/// @file
/// A part of the town: its streets, and the grid that they follow.
#pragma once

#include "TownModel.h"

#include <vector>

namespace trelmix::sample {

/// Blocks of the street grid that are no building land: no street crosses them, no house stands in them.
struct SpecialBlock {
    double u0, v0, u1, v1;
    bool contains(double u, double v) const { return u > u0 && u < u1 && v > v0 && v < v1; }
};
const std::vector<SpecialBlock>& specialBlocks();
/// Grid lines across and along the town.
const std::vector<double>& crossStreets();
const std::vector<double>& longStreets();
/// The railway's corridor runs between these two long streets.
inline constexpr double kRailwayV = -320;

void addStreets(TownModel& model);

} // namespace trelmix::sample
