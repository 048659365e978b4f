#pragma once

#include <string>

namespace trelmix::apps {

/// What a command line says about the network; empty texts leave the library's own settings.
struct NetworkOptions {
    /// A folder, or "off".
    std::string cache;
    std::string userAgent;
    std::string caFile;
};

/// Sets them for the process. Empty when it went well, else a line that names the option and what is wrong.
std::string applyNetworkOptions(const NetworkOptions& options);

} // namespace trelmix::apps
