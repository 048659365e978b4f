#pragma once

#include "trelmix/Commands.h"

namespace trelmix::apps {

struct SideviewOptions {
    ViewOptions view;
    std::string output;
};

/// Writes the picture of a scene's side view into a file.
ExitCode renderSideview(const SideviewOptions& options);

} // namespace trelmix::apps
