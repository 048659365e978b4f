#pragma once

#include "common/JsonCursor.h"
#include "common/scene/SceneFile.h"

#include <string>

namespace trelmix::apps {

/// The section "sideView". Throws `JsonError`.
SceneSideview readSideview(const JsonCursor& at, const std::string& folder);

} // namespace trelmix::apps
