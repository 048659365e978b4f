#include "Platform/Network/RetryPolicy.h"

#include <algorithm>
#include <cmath>

namespace trelmix {

std::optional<double> RetryPolicy::delay(int failedAttempts, double wish, double remaining,
                                         double chance) const {
    const double doubled = firstDelay * std::exp2(std::clamp(failedAttempts - 1, 0, 30));
    const double jitter = 0.5 + 0.5 * std::clamp(chance, 0.0, 1.0);
    const double wait = std::max(std::min(doubled, longestDelay) * jitter, wish);
    return wait < remaining ? std::optional(wait) : std::nullopt;
}

bool isPassingStatus(long status) {
    return status == 429 || (status >= 500 && status <= 599);
}

} // namespace trelmix
