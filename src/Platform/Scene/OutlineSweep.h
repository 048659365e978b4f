#pragma once

#include <array>
#include <vector>

namespace trelmix {

using OutlineCorner = std::array<double, 3>;
/// A closed run of corners; the last leads back to the first. The third number is 0.
using Outline = std::vector<OutlineCorner>;

/// A turn of the plane, and back.
struct Turn {
    double cosine = 1;
    double sine = 0;
    OutlineCorner applied(const OutlineCorner& p) const {
        return {p[0] * cosine - p[1] * sine, p[0] * sine + p[1] * cosine, 0};
    }
    Turn back() const { return {cosine, -sine}; }
};

/// What a sweep over outlines along x costs. The tessellator's sweep looks at all edges above one x for many
/// of its steps: a comb of ten thousand teeth takes seconds along the teeth and no time across them, and
/// thousands of edges that all cross each other take hours.
class OutlineSweep {
public:
    /// The turn after which most edges stand across the sweep; none where it would not matter.
    static Turn bestTurn(const std::vector<Outline>& outlines);
    /// False when the sweep would take more than some seconds; for edges that cross, more than one or two.
    static bool isAffordable(const std::vector<Outline>& outlines);
};

} // namespace trelmix
