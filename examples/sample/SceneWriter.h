/// @file
/// The scene files of the sample, and the GeoJSON file they show.
#pragma once

#include "TownModel.h"

#include <string>

namespace trelmix::sample {

/// Writes every scene into `folder`. Empty when it went well, else what is wrong.
std::string writeScenes(const std::string& folder, const TownModel& model);

} // namespace trelmix::sample
