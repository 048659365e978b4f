#include "Platform/Render/OverlayPainter.h"

#include "Platform/Render/ImagePainter.h"

#include "Platform/Render/GLShader.h"

namespace trelmix {

namespace {

constexpr const char* kVertexShader = R"(#version 100
attribute vec2 a_position;
attribute vec2 a_place;
varying vec2 v_place;
void main() {
    gl_Position = vec4(a_position, 0.0, 1.0);
    v_place = a_place;
}
)";

} // namespace

std::string OverlayPainter::prepare(const std::shared_ptr<GLGraveyard>& graveyard) {
    const GLAttribute attributes[] = {{0, "a_position"}, {1, "a_place"}};
    auto linked = linkProgram(graveyard, kVertexShader, ImagePainter::kFragmentShader, attributes);
    if (!linked) {
        return linked.reason();
    }
    _program = std::move(*linked);
    glUseProgram(_program.name());
    glUniform1i(glGetUniformLocation(_program.name(), "u_image"), 0);
    _vertices = GLBuffer::make(graveyard);
    return {};
}

void OverlayPainter::draw(const Rectangle& r, GLuint texture, VertexArrays& arrays) {
    const float corners[] = {r.left,  r.top, r.s0, r.t0, r.left,  r.bottom, r.s0, r.t1,
                             r.right, r.top, r.s1, r.t0, r.right, r.bottom, r.s1, r.t1};
    glUseProgram(_program.name());
    glBindBuffer(GL_ARRAY_BUFFER, _vertices.name());
    glBufferData(GL_ARRAY_BUFFER, sizeof(corners), corners, GL_STREAM_DRAW);
    arrays.enable(0x3);
    constexpr GLsizei stride = 4 * sizeof(float);
    glVertexAttribPointer(0, 2, GL_FLOAT, GL_FALSE, stride, bufferOffset(0));
    glVertexAttribPointer(1, 2, GL_FLOAT, GL_FALSE, stride, bufferOffset(2 * sizeof(float)));
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
