#include "Platform/Scene/OutlineSweep.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace trelmix {

namespace {

/// Pairs of edges that share an x up to which nothing has to be weighed.
constexpr double kFewPairs = 1e5;
/// Pairs that can be tested for a crossing within a second.
constexpr double kMostPairs = 5e8;
/// Crossings times edges above one x, and crossings times all edges (each crossing relabels the loops that
/// it joins): a second or two of the library, in which no picture can be drawn.
constexpr double kMostSearching = 1e7;
constexpr double kMostRelabelling = 1.5e7;
/// Corners at which the sweep begins something new, times all edges (each of them relabels a loop too, a
/// cheaper one): up to ten seconds, for a hundred thousand corners of a ragged coast.
constexpr double kMostStarting = 3e9;

struct Edge {
    OutlineCorner left;
    OutlineCorner right;
};

std::vector<Edge> edgesOf(const std::vector<Outline>& outlines) {
    std::vector<Edge> edges;
    for (const Outline& outline : outlines) {
        for (std::size_t i = 0; i < outline.size(); ++i) {
            const OutlineCorner& a = outline[i];
            const OutlineCorner& b = outline[i + 1 < outline.size() ? i + 1 : 0];
            edges.push_back(a[0] <= b[0] ? Edge{a, b} : Edge{b, a});
        }
    }
    std::sort(edges.begin(), edges.end(), [](const Edge& a, const Edge& b) { return a.left[0] < b.left[0]; });
    return edges;
}

/// How many corners have both their edges after them, in the sweep's order: by x, then by y.
double startCount(const std::vector<Outline>& outlines) {
    double starts = 0;
    for (const Outline& outline : outlines) {
        const OutlineCorner* before = &outline.back();
        for (std::size_t i = 0; i < outline.size(); ++i) {
            const OutlineCorner& after = outline[i + 1 < outline.size() ? i + 1 : 0];
            starts += outline[i] < *before && outline[i] < after ? 1 : 0;
            before = &outline[i];
        }
    }
    return starts;
}

/// How many pairs of edges share an x.
double pairCount(const std::vector<Edge>& edges) {
    std::vector<double> ends;
    ends.reserve(edges.size());
    for (const Edge& edge : edges) {
        ends.push_back(edge.right[0]);
    }
    std::sort(ends.begin(), ends.end());
    double pairs = 0;
    std::size_t started = 0;
    std::size_t ended = 0;
    for (const Edge& edge : edges) {
        while (ended < ends.size() && ends[ended] < edge.left[0]) {
            ++ended;
        }
        pairs += static_cast<double>(started++) - static_cast<double>(ended);
    }
    return pairs;
}

double side(const OutlineCorner& a, const OutlineCorner& b, const OutlineCorner& p) {
    return (b[0] - a[0]) * (p[1] - a[1]) - (b[1] - a[1]) * (p[0] - a[0]);
}

bool cross(const Edge& a, const Edge& b) {
    return side(a.left, a.right, b.left) * side(a.left, a.right, b.right) < 0 &&
           side(b.left, b.right, a.left) * side(b.left, b.right, a.right) < 0;
}

bool hasFewCrossings(const std::vector<Edge>& edges, double most) {
    double crossings = 0;
    std::vector<const Edge*> active;
    for (const Edge& edge : edges) {
        std::erase_if(active, [&edge](const Edge* other) { return other->right[0] < edge.left[0]; });
        crossings += static_cast<double>(std::count_if(
            active.begin(), active.end(), [&edge](const Edge* other) { return cross(edge, *other); }));
        if (crossings > most) {
            return false;
        }
        active.push_back(&edge);
    }
    return true;
}

} // namespace

Turn OutlineSweep::bestTurn(const std::vector<Outline>& outlines) {
    const std::vector<Edge> edges = edgesOf(outlines);
    if (pairCount(edges) <= kFewPairs) {
        return {};
    }
    // The axis along which most length lies: directions count twice their angle, so that opposite ones add
    // up.
    double doubleCosine = 0;
    double doubleSine = 0;
    for (const auto& [left, right] : edges) {
        const double dx = right[0] - left[0];
        const double dy = right[1] - left[1];
        const double length = std::hypot(dx, dy);
        if (length > 0) {
            doubleCosine += (dx * dx - dy * dy) / length;
            doubleSine += 2.0 * dx * dy / length;
        }
    }
    constexpr double kQuarterTurn = 1.5707963267948966;
    const double turn = kQuarterTurn - 0.5 * std::atan2(doubleSine, doubleCosine);
    return {std::cos(turn), std::sin(turn)};
}

bool OutlineSweep::isAffordable(const std::vector<Outline>& outlines) {
    const std::vector<Edge> edges = edgesOf(outlines);
    const auto count = static_cast<double>(edges.size());
    if (startCount(outlines) * count > kMostStarting) {
        return false;
    }
    const double pairs = pairCount(edges);
    if (pairs <= kFewPairs) {
        return true;
    }
    const double edgesAbove = std::max(1.0, pairs / count);
    return pairs <= kMostPairs &&
           hasFewCrossings(edges, std::min(kMostSearching / edgesAbove, kMostRelabelling / count));
}

} // namespace trelmix
