#pragma once

#include "Platform/Scene/DrawList.h"

#include <array>

namespace trelmix {

/// Enough of a drawn thing to tell whether the view can show it, relative to the frame's origin.
struct BoundingSphere {
    float x = 0;
    float y = 0;
    float z = 0;
    /// Negative: shows nothing wherever the camera stands.
    float radius = -1;

    /// Of points relative to the origin; of no use to the view when one of them is not finite.
    static BoundingSphere around(const float (*points)[3], std::size_t count);
};

/// One frame's camera as the shaders take it.
///
/// Vertices are relative to `origin`, a place on the ground that stays while the camera is near, so that they
/// need not be written again; everything up to the product of the matrices is done in doubles.
class FrameView {
public:
    /// Takes the camera of a frame of this many pixels. True when the origin has moved: everything relative
    /// to it has to be written again.
    /// @param rowsRunDown clip coordinates have y downward, as the rows of `FrameTarget` run; else upward, as
    ///        those of a window.
    bool update(const DrawCamera& camera, int width, int height, bool rowsRunDown);

    /// False for a camera that is not finite: nothing can be drawn.
    bool isFinite() const { return _isFinite; }
    Vector3d origin() const { return _origin; }
    std::array<float, 3> relative(Vector3d p) const {
        return {static_cast<float>(p.x - _origin.x), static_cast<float>(p.y - _origin.y),
                static_cast<float>(p.z - _origin.z)};
    }
    const std::array<float, 16>& matrix() const { return _matrix; }
    /// The matrix for vertices relative to another place.
    std::array<float, 16> matrixFor(Vector3d place) const;
    /// Where the camera stands, relative to the origin.
    const std::array<float, 3>& eye() const { return _eye; }
    /// Size of a pixel in the scene, for each unit of distance before the camera.
    float pixelSize() const { return _pixelSize; }
    /// Half the frame's width and height; pixels.
    std::array<float, 2> halfSize() const { return _halfSize; }
    bool canShow(const BoundingSphere& sphere) const;

private:
    bool moveOrigin(Vector3d eye);

    bool _isFinite = false;
    bool _hasOrigin = false;
    Vector3d _origin;
    Matrix4d _clip;
    std::array<float, 16> _matrix{};
    std::array<float, 3> _eye{};
    float _pixelSize = 0;
    std::array<float, 2> _halfSize{};
    /// Planes through the view's sides and its nearest depth: normal, unit length, and distance.
    std::array<std::array<float, 4>, 5> _planes{};
};

} // namespace trelmix
