#pragma once

#include "common/options/CommandLine.h"
#include "common/scene/SceneContent.h"
#include "view/FileWatch.h"

#include <optional>
#include <string>

namespace trelmix::apps {

/// A scene file and what it names.
struct LoadedScene {
    /// The scene file's.
    std::string path;
    SceneFile file;
    SceneContent content;
    /// Size of the side view's picture in points; absent without a side view.
    std::optional<CGSize> sidePicture;
};

/// Reads the scene file and all that it names, and has them watched, also where one of them is what is wrong.
Result<LoadedScene> loadScene(const ViewOptions& options, FileWatch& watch);

} // namespace trelmix::apps
