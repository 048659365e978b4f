#pragma once

#include "Platform/Scene/SCNGeometry.h"

#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace trelmix {

/// A point or a direction of the line's plane: x east, y north.
struct LineVector {
    float x = 0;
    float y = 0;
    friend bool operator==(const LineVector&, const LineVector&) = default;
};

/// The band along a line as a mesh of no width: each point stands there twice, with the normals of the
/// segment that ends there to its right and its left, and with the tangent of its join. The line's shader
/// moves the vertices apart by half the width along the miter.
class LineMesh {
public:
    struct Segment {
        LineVector P0;
        LineVector P1;
        /// Of length 1.
        LineVector direction() const;
        /// To the left, as long as the segment.
        LineVector normal() const { return {-(P1.y - P0.y), P1.x - P0.x}; }
    };

    /// Leaves out points that lie where the one before lies, or nowhere; nothing when fewer than two remain.
    static std::optional<LineMesh> between(std::span<const LineVector> points);

    const std::vector<LineVector>& points() const { return _points; }
    std::size_t segmentCount() const { return _points.size() - 1; }
    Segment segment(std::size_t i) const { return {_points[i], _points[i + 1]}; }
    /// Two vertices a point and six indices a segment: 8-bit up to 128 points. At a join so sharp that its
    /// miter would be longer than any that the clean-up of vertices leaves, the band ends and starts anew
    /// with two more vertices.
    std::shared_ptr<const SCNMesh> data(Vector3d origin) const;

private:
    LineMesh() = default;
    std::vector<LineVector> _points;
};

} // namespace trelmix
