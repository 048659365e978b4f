#pragma once

#include <optional>

namespace trelmix {

/// When a request that failed for a passing reason is tried again. Seconds.
struct RetryPolicy {
    double firstDelay = 0.25;
    double longestDelay = 2.0;

    /// How long to wait before the next attempt, which may be the answer's own wish; empty when there is no
    /// time for another one.
    /// @param failedAttempts at least 1.
    /// @param wish what "Retry-After" says; 0 when it says nothing.
    /// @param remaining until the request's time is up.
    /// @param chance from 0 to 1, evenly spread: many clients shall not come back in step.
    std::optional<double> delay(int failedAttempts, double wish, double remaining, double chance) const;
};

/// True for the status of an answer that may be another the next time.
bool isPassingStatus(long status);

} // namespace trelmix
