#pragma once

#include "common/options/CommandLine.h"

namespace trelmix::apps {

struct LocateOptions {
    ViewOptions view;
    bool corners = false;
};

/// Answers the places on standard input, line by line.
ExitCode locate(const LocateOptions& options);

} // namespace trelmix::apps
