#include "Render/OverlayPainter.h"

namespace trelmix {

std::string OverlayPainter::prepare(const std::shared_ptr<GLGraveyard>& graveyard) {
    if (!_vertices) {
        _vertices = GLBuffer::make(graveyard);
    }
    return _images.prepare(false, graveyard);
}

void OverlayPainter::draw(const Rectangle& r, GLuint texture, VertexArrays& arrays) {
    const ImagePainter::Vertex corners[] = {{{r.left, r.top, 0}, {r.s0, r.t0}, 1},
                                            {{r.left, r.bottom, 0}, {r.s0, r.t1}, 1},
                                            {{r.right, r.top, 0}, {r.s1, r.t0}, 1},
                                            {{r.right, r.bottom, 0}, {r.s1, r.t1}, 1}};
    _images.useUpright(arrays);
    glBindBuffer(GL_ARRAY_BUFFER, _vertices.name());
    glBufferData(GL_ARRAY_BUFFER, sizeof(corners), corners, GL_STREAM_DRAW);
    ImagePainter::pointAt(0);
    glActiveTexture(GL_TEXTURE0);
    glBindTexture(GL_TEXTURE_2D, texture);
    glDrawArrays(GL_TRIANGLE_STRIP, 0, 4);
}

void OverlayPainter::draw(const ImageTexture& image, CGRect pixels, int width, int height, bool rowsRunDown,
                          VertexArrays& arrays) {
    const auto clipX = [&](double fraction) {
        return static_cast<float>((pixels.origin.x + fraction * pixels.size.width) / width * 2 - 1);
    };
    const auto clipY = [&](double fraction) {
        const double down = (pixels.origin.y + fraction * pixels.size.height) / height * 2 - 1;
        return static_cast<float>(rowsRunDown ? down : -down);
    };
    for (const ImageTexture::Part& part : image.parts()) {
        draw({clipX(part.left), clipY(part.top), clipX(part.right), clipY(part.bottom), part.s0, part.t0,
              part.s1, part.t1},
             part.texture.name(), arrays);
    }
}

} // namespace trelmix
