#pragma once

#include "Render/FrameView.h"
#include "Render/Placement.h"
#include "Render/SlotBuffer.h"
#include "Render/VertexArrays.h"

#include <array>
#include <cstdint>
#include <memory>
#include <string>

namespace trelmix {

/// Draws images on quads of the scene.
class ImagePainter {
public:
    struct Vertex {
        float position[3];
        float place[2];
        float opacity;
        /// Premultiplied, 0 to 255.
        std::array<std::uint8_t, 4> tint{255, 255, 255, 255};
    };
    using Slots = SlotBuffer<Vertex>;

    explicit ImagePainter(std::shared_ptr<GLGraveyard> graveyard);
    /// Compiles the shaders of one of the two programs, once; empty when it went well.
    std::string prepare(bool isMultiplied, const std::shared_ptr<GLGraveyard>& graveyard);

    Slots& slots() { return _slots; }
    const Slots& slots() const { return _slots; }
    /// Writes the item's quads, which it is given when it has none yet.
    void write(Placement& placement, const FrameView& view);

    /// Makes one of the two programs current, which is prepared: the one for images in their own
    /// colours and of full opacity costs less.
    void use(bool isMultiplied, const FrameView& view, VertexArrays& arrays);
    /// The same for quads of the caller's in clip coordinates, whose buffer is to be bound.
    void useUpright(VertexArrays& arrays);
    static void pointAt(std::uint32_t chunk);
    /// The matrix has to be given again.
    void startFrame() { _plain.isCurrent = _multiplied.isCurrent = false; }

private:
    struct Program {
        GLProgram program;
        GLint matrix = -1;
        bool isCurrent = false;
    };
    void writeQuad(std::uint32_t slot, const DrawItem& item, const FrameView& view,
                   const ImageTexture::Part& part);

    Slots _slots;
    Program _plain;
    Program _multiplied;
};

} // namespace trelmix
