#pragma once

#include "common/JsonCursor.h"
#include "common/scene/SceneFile.h"

#include <string>

namespace trelmix::apps {

/// One entry of the section "geojson". Throws `JsonError`.
SceneGeoJson readGeoJson(const JsonCursor& at, const std::string& folder);

} // namespace trelmix::apps
