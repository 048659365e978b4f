#pragma once

#include "Render/GLObjects.h"
#include "Render/ImagePainter.h"
#include "Render/TextureStore.h"
#include "Render/VertexArrays.h"

#include <Trelmix/Platform/CGGeometry.h>

#include <memory>
#include <string>

namespace trelmix {

/// Draws textures upright on rectangles of the bound framebuffer, by the program and the layout of the
/// scene's images: the driver has compiled those already.
class OverlayPainter {
public:
    /// A rectangle in clip coordinates and what it shows in texture coordinates, corner to corner.
    struct Rectangle {
        float left, top, right, bottom;
        float s0, t0, s1, t1;
    };

    explicit OverlayPainter(ImagePainter& images) : _images(images) {}
    /// Compiles the shaders, once; empty when it went well.
    std::string prepare(const std::shared_ptr<GLGraveyard>& graveyard);
    void draw(const Rectangle& rectangle, GLuint texture, VertexArrays& arrays);
    /// Draws the parts of an image on a rectangle of a framebuffer of this size in pixels; `rowsRunDown` when
    /// its first row is the top one.
    void draw(const ImageTexture& image, CGRect pixels, int width, int height, bool rowsRunDown,
              VertexArrays& arrays);

private:
    ImagePainter& _images;
    GLBuffer _vertices;
};

} // namespace trelmix
