/// @file
/// A part of the town: the blocks between the streets, with their houses.
#pragma once

#include "TownModel.h"

namespace trelmix::sample {

void addBlocks(TownModel& model);

} // namespace trelmix::sample
