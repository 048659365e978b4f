/// @file
/// A part of the town: what lies around the town.
#pragma once

#include "TownModel.h"

namespace trelmix::sample {

void addSurroundings(TownModel& model);

} // namespace trelmix::sample
