#pragma once

#include "common/scene/SceneContent.h"

namespace trelmix::apps {

/// The scene's own camera, or one that shows everything the scene holds. Fails, without a path in the reason,
/// when there is neither.
Result<SceneCamera> cameraOfScene(const SceneFile& scene, const SceneContent& content, CGSize viewSize);

} // namespace trelmix::apps
