/// @file
/// The ship from the side, its decks in a cut.
#pragma once

#include "Canvas.h"

namespace trelmix::sample {

/// Bow to the right: kSideWidth by kSideHeight pixels.
Canvas paintElevation();

} // namespace trelmix::sample
