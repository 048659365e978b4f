#pragma once

#include "common/options/CommandLine.h"

#include <string>

namespace trelmix::apps {

struct RenderOptions {
    ViewOptions view;
    std::string output;
    double timeoutSeconds = 60;
    bool allowMissingTiles = false;
    bool noAttribution = false;
    NetworkOptions network;
};

/// Writes the picture of a scene into a file.
ExitCode render(const RenderOptions& options);

} // namespace trelmix::apps
