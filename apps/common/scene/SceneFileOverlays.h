#pragma once

#include "common/JsonCursor.h"
#include "common/scene/SceneFile.h"

#include <string>

namespace trelmix::apps {

/// Fills the sections that hold overlays drawn over the tiles. Throws `JsonError`.
void readOverlaySections(const JsonCursor& root, const std::string& folder, SceneFile& scene);

} // namespace trelmix::apps
