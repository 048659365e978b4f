#pragma once

#include <cstdint>
#include <optional>
#include <vector>

namespace trelmix::apps {

/// The next higher (`direction` 1) or lower (-1) of some levels, in any order, after the one that is shown;
/// that one at the end. While none is shown, the first from that side.
inline std::optional<std::int64_t> nextLevel(const std::vector<std::int64_t>& levels,
                                             std::optional<std::int64_t> shown, int direction) {
    std::optional<std::int64_t> next;
    for (const std::int64_t level : levels) {
        const bool isBeyond = !shown || (direction > 0 ? level > *shown : level < *shown);
        const bool isNearer = !next || (direction > 0 ? level < *next : level > *next);
        next = isBeyond && isNearer ? level : next;
    }
    return next ? next : shown;
}

} // namespace trelmix::apps
