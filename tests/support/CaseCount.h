#pragma once

#include <cstdlib>

namespace trelmix {

/// How often a test repeats itself: what the environment's variable says, or the usual count.
inline int countFromEnvironment(const char* variable, int usual) {
    const char* given = std::getenv(variable);
    const int count = given ? std::atoi(given) : 0;
    return count > 0 ? count : usual;
}

/// Random cases of a property test; TRELMIX_PROPERTY_CASES=1000000 for many.
inline int caseCount(int usual) {
    return countFromEnvironment("TRELMIX_PROPERTY_CASES", usual);
}

} // namespace trelmix
