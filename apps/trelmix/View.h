#pragma once

#include "common/options/CommandLine.h"

#include <string>
#include <vector>

namespace trelmix::apps {

/// Hands over to the program with the window; comes back only when that fails. Takes what stands behind
/// `view`.
ExitCode view(const char* ownPath, const std::vector<std::string>& arguments);

} // namespace trelmix::apps
