#pragma once

#include "common/options/CommandLine.h"

#include <string>

namespace trelmix::apps {

struct SideviewOptions {
    ViewOptions view;
    std::string output;
};

/// Writes the picture of a scene's side view into a file.
ExitCode renderSideview(const SideviewOptions& options);

} // namespace trelmix::apps
