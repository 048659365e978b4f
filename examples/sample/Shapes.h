/// @file
/// Points and outlines of the town: metres east and south of the centre of the sample.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numbers>
#include <vector>

namespace trelmix::sample {

/// Metres: x east, y south, as pictures have it.
struct Pt {
    double x = 0;
    double y = 0;
    friend Pt operator+(Pt a, Pt b) { return {a.x + b.x, a.y + b.y}; }
    friend Pt operator-(Pt a, Pt b) { return {a.x - b.x, a.y - b.y}; }
    friend Pt operator*(Pt a, double f) { return {a.x * f, a.y * f}; }
};

using Path = std::vector<Pt>;

/// Smallest upright rectangle; empty until the first point came.
struct Box {
    double left = 1e30;
    double top = 1e30;
    double right = -1e30;
    double bottom = -1e30;

    void add(Pt p) {
        left = std::min(left, p.x);
        top = std::min(top, p.y);
        right = std::max(right, p.x);
        bottom = std::max(bottom, p.y);
    }
    Box grownBy(double margin) const {
        return {left - margin, top - margin, right + margin, bottom + margin};
    }
    bool touches(const Box& other) const {
        return left <= other.right && other.left <= right && top <= other.bottom && other.top <= bottom;
    }
    static Box of(const Path& path) {
        Box box;
        for (const Pt p : path) {
            box.add(p);
        }
        return box;
    }
};

inline double length(Pt p) {
    return std::hypot(p.x, p.y);
}
inline Pt between(Pt a, Pt b, double t) {
    return a + (b - a) * t;
}

/// 0 at and below `from`, 1 at and above `to` (the edges may be given in falling order).
inline double smoothStep(double from, double to, double value) {
    const double t = std::clamp((value - from) / (to - from), 0.0, 1.0);
    return t * t * (3 - 2 * t);
}

/// Random numbers that are the same on every machine and with every library.
class Dice {
public:
    explicit Dice(std::uint64_t seed) : _state(seed * 0x9E3779B97F4A7C15ULL + 0x1234567ULL) {}

    std::uint64_t next() {
        _state += 0x9E3779B97F4A7C15ULL;
        std::uint64_t z = _state;
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ULL;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBULL;
        return z ^ (z >> 31);
    }
    double between(double low, double high) {
        return low + (high - low) * (static_cast<double>(next() >> 11) * 0x1.0p-53);
    }
    int below(int count) { return static_cast<int>(next() % static_cast<std::uint64_t>(count)); }
    bool chance(double probability) { return between(0, 1) < probability; }

private:
    std::uint64_t _state;
};

} // namespace trelmix::sample
