#pragma once

#include "common/scene/GeoJson.h"

namespace trelmix::apps {

/// One outline that encloses, under the non-zero rule, the outer ring without its holes: every hole runs
/// against the outer ring and hangs on it by a bridge of no width, there and back. Rings as in `GeoJsonArea`.
CoordinateList outlineWithHoles(const std::vector<CoordinateList>& rings);

} // namespace trelmix::apps
