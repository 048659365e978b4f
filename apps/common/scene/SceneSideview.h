#pragma once

#include "common/scene/SceneFile.h"

#include <Trelmix/Platform/CGGeometry.h>
#include <Trelmix/TMXSideviewScrollView.h>
#include <Trelmix/TrelmixMapEngine.h>

#include <memory>
#include <string>

namespace trelmix::apps {

/// The side view that a scene describes, in its size, connected to an engine: with its picture, footprint,
/// user position, markers and path. It is no delegate of the engine yet. The reason begins with `scenePath`
/// and the place in the scene; then comes the file's path and what is wrong with it. Main thread only.
Result<std::shared_ptr<TMXSideviewScrollView>> makeSceneSideview(const SceneSideview& scene,
                                                                 const std::string& scenePath,
                                                                 CGSize viewSize,
                                                                 std::shared_ptr<TrelmixMapEngine> engine);

} // namespace trelmix::apps
