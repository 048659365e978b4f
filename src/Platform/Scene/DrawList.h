#pragma once

#include "Platform/Scene/SCNGeometry.h"
#include "Platform/Scene/SCNMatrix.h"

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

namespace trelmix {

enum class DrawKind : std::uint8_t {
    image,  ///< a quad that shows an image
    disc,   ///< the disc that touches the quad's four sides, filled with a colour
    fill,   ///< a mesh filled with a colour
    program ///< a mesh drawn by a shader program of its own
};

/// One node's picture, as it was when it was collected. Immutable and shared: a node that has not changed
/// gives the same object again, so that a renderer tells by the pointer what it has to upload.
struct DrawItem {
    DrawKind kind = DrawKind::image;
    /// Minified images are drawn from their levels of detail (tiles, plans); markers are not.
    bool usesLevels = false;
    float opacity = 1;
    /// Painter's order: first by rendering order, then by the order of addition.
    std::int64_t renderingOrder = 0;
    std::uint64_t sequence = 0;
    /// Scene positions of the quad's corners as one looks at its front: top left, top right, bottom left,
    /// bottom right. Quads that share a corner give the same doubles for it.
    std::array<Vector3d, 4> corners{};
    std::shared_ptr<const UIImage> image;
    /// Premultiplied; the opacity is not in it. What fills a disc or a mesh; an image is multiplied by it.
    std::array<float, 4> color{1, 1, 1, 1};
    std::shared_ptr<const SCNMesh> mesh;
    /// Where the mesh's origin stands in the scene.
    Vector3d meshPosition;
    std::shared_ptr<const SCNProgram> program;
    std::shared_ptr<const std::map<std::string, SCNBindingHandler>> bindings;
};

/// Everything that is drawn, in painter's order. Immutable; the same object as long as nothing changed.
struct DrawList {
    std::vector<std::shared_ptr<const DrawItem>> items;
};

/// The camera of one frame: where its node stands, in doubles.
struct DrawCamera {
    Vector3d position;
    Vector3d eulerAngles;
    Vector3d pivot;
    /// Vertical, radians.
    double fieldOfView = 1.0471975511965976;

    /// From scene positions relative to `origin` to clip coordinates for a view of the given aspect (width /
    /// height). The far plane lies at infinity and the near plane close before the camera: there is no depth
    /// buffer whose precision they would cost.
    Matrix4d clipFromScene(Vector3d origin, double aspect) const;
    friend bool operator==(const DrawCamera&, const DrawCamera&) = default;
};

/// What one frame shows. Holds no nodes.
struct DrawFrame {
    DrawCamera camera;
    UIColor background = UIColor::whiteColor();
    /// 0 until the scene view has been made visible: then only the background is drawn.
    double alpha = 1;
    std::shared_ptr<const DrawList> list;
};

} // namespace trelmix
