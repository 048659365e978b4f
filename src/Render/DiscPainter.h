#pragma once

#include "Render/FrameView.h"
#include "Render/Placement.h"
#include "Render/SlotBuffer.h"
#include "Render/VertexArrays.h"

#include <cstdint>
#include <memory>
#include <string>

namespace trelmix {

/// Draws discs: quads whose fragments tell how much of their pixel the disc covers, so that edges are smooth
/// without samples and round at every size. The quads grow by a pixel or so, for the outer half of the edge.
class DiscPainter {
public:
    struct Vertex {
        float centre[3];
        /// From the centre to the corner.
        float diagonal[3];
        /// The corner in units of the radius; 1 or -1.
        std::int8_t corner[4];
        /// Premultiplied, opacity included.
        std::uint16_t color[4];
    };
    using Slots = SlotBuffer<Vertex>;

    explicit DiscPainter(std::shared_ptr<GLGraveyard> graveyard);
    /// Compiles the shaders, once; empty when it went well. Without derivatives edges of tilted discs are
    /// less even.
    std::string prepare(const std::shared_ptr<GLGraveyard>& graveyard);

    Slots& slots() { return _slots; }
    const Slots& slots() const { return _slots; }
    /// Writes the item's quad, which it is given when it has none yet.
    void write(Placement& placement, const FrameView& view);

    void use(const FrameView& view, VertexArrays& arrays);
    void pointAt(std::uint32_t chunk) const;
    void startFrame() { _isCurrent = false; }

private:
    Slots _slots;
    GLProgram _program;
    GLint _matrix = -1;
    GLint _eye = -1;
    GLint _pixelSize = -1;
    GLint _halfSize = -1;
    bool _isCurrent = false;
};

} // namespace trelmix
