/// @file
/// The town as GeoJSON.
#pragma once

#include "TownModel.h"

#include <string>

namespace trelmix::sample {} // namespace trelmix::sample
