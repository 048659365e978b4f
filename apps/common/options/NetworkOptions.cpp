#include "common/options/NetworkOptions.h"

#include "common/Files.h"

#include <Trelmix/Platform/NetworkSettings.h>

namespace trelmix::apps {

std::string applyNetworkOptions(const NetworkOptions& options) {
    constexpr std::uint64_t kMostCertificateBytes = 64ULL << 20U;
    NetworkSettings settings = networkSettings();
    if (!options.cache.empty()) {
        settings.cacheFolder = options.cache == "off" ? std::string() : options.cache;
    }
    if (!options.userAgent.empty()) {
        settings.userAgent = options.userAgent;
    }
    if (!options.caFile.empty()) {
        // Every secure server would fail because of it, long after the line was typed.
        if (const auto certificates = loadFile(options.caFile, kMostCertificateBytes); !certificates) {
            return "--ca-file " + options.caFile + ": " + certificates.reason();
        }
        settings.caFile = options.caFile;
    }
    setNetworkSettings(settings);
    return {};
}

} // namespace trelmix::apps
