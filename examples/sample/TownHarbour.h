/// @file
/// A part of the town: the harbour: quays, piers and boats.
#pragma once

#include "TownModel.h"

namespace trelmix::sample {

void addHarbour(TownModel& model);

} // namespace trelmix::sample
