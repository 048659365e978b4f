/// @file
/// A part of the town: what stands on the quays.
#pragma once

#include "TownModel.h"

namespace trelmix::sample {

void addHarbourBuildings(TownModel& model);

} // namespace trelmix::sample
