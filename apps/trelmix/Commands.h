#pragma once

#include "common/options/CommandLine.h"

#include <string>
#include <vector>

namespace trelmix::apps {

struct RenderOptions {
    ViewOptions view;
    std::string output;
    double timeoutSeconds = 60;
    bool allowMissingTiles = false;
    bool noAttribution = false;
    NetworkOptions network;
};

struct LocateOptions {
    ViewOptions view;
    bool corners = false;
};

/// Writes the picture of a scene into a file.
ExitCode render(const RenderOptions& options);
/// Answers the places on standard input, line by line.
ExitCode locate(const LocateOptions& options);
/// Hands over to the program with the window; comes back only when that fails. Takes what stands behind
/// `view`.
ExitCode view(const char* ownPath, const std::vector<std::string>& arguments);

} // namespace trelmix::apps
