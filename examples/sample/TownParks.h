/// @file
/// A part of the town: parks and squares.
#pragma once

#include "TownModel.h"

namespace trelmix::sample {

void addParks(TownModel& model);

} // namespace trelmix::sample
