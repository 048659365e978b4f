#include "Geo/Radians.h"

#include <numbers>

namespace trelmix {

Radians shortestTurn(Radians goal, Radians current) {
    constexpr Radians kTurn{2.0 * std::numbers::pi};
    const Radians reduced{std::fmod(goal.value, kTurn.value)};
    const double difference = (reduced - current).value;
    if (std::abs(difference) > std::numbers::pi) {
        return difference > 0 ? reduced - kTurn : reduced + kTurn;
    }
    return reduced;
}

} // namespace trelmix
