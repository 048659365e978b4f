#include "Render/ImagePainter.h"

#include "Render/GLShader.h"
#include "Render/QuadIndices.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace trelmix {

namespace {

constexpr const char* kVertexShader = R"(#version 100
attribute vec3 a_position;
attribute vec2 a_place;
attribute float a_opacity;
attribute vec4 a_tint;
uniform mat4 u_matrix;
varying vec2 v_place;
#ifdef MULTIPLIED
varying vec4 v_tint;
#endif
void main() {
    gl_Position = u_matrix * vec4(a_position, 1.0);
    v_place = a_place;
#ifdef MULTIPLIED
    v_tint = a_tint * a_opacity;
#endif
}
)";

constexpr const char* kFragmentShader = R"(#version 100
#ifdef GL_FRAGMENT_PRECISION_HIGH
precision highp float;
#else
precision mediump float;
#endif
uniform sampler2D u_image;
varying vec2 v_place;
#ifdef MULTIPLIED
varying vec4 v_tint;
#endif
void main() {
    gl_FragColor = texture2D(u_image, v_place);
#ifdef MULTIPLIED
    gl_FragColor *= v_tint;
#endif
}
)";

std::string multiplied(std::string source) {
    return source.insert(source.find('\n') + 1, "#define MULTIPLIED\n");
}

/// The same expression for the same fractions, so that parts that meet share their corners to the last bit.
Vector3d between(const std::array<Vector3d, 4>& corners, double right, double down) {
    const Vector3d top = corners[0] * (1 - right) + corners[1] * right;
    const Vector3d bottom = corners[2] * (1 - right) + corners[3] * right;
    return top * (1 - down) + bottom * down;
}

} // namespace

ImagePainter::ImagePainter(std::shared_ptr<GLGraveyard> graveyard) : _slots(std::move(graveyard)) {}

std::string ImagePainter::prepare(bool isMultiplied, const std::shared_ptr<GLGraveyard>& graveyard) {
    Program& program = isMultiplied ? _multiplied : _plain;
    if (program.program) {
        return {};
    }
    const GLAttribute attributes[] = {{0, "a_position"}, {1, "a_place"}, {2, "a_opacity"}, {3, "a_tint"}};
    auto linked = linkProgram(graveyard, isMultiplied ? multiplied(kVertexShader) : kVertexShader,
                              isMultiplied ? multiplied(kFragmentShader) : kFragmentShader, attributes);
    if (!linked) {
        return linked.reason();
    }
    program.program = std::move(*linked);
    program.matrix = glGetUniformLocation(program.program.name(), "u_matrix");
    glUseProgram(program.program.name());
    glUniform1i(glGetUniformLocation(program.program.name(), "u_image"), 0);
    return {};
}

void ImagePainter::write(Placement& placement, const FrameView& view) {
    const DrawItem& item = *placement.item;
    if (placement.icon) {
        const IconAtlas::Icon& icon = *placement.icon;
        const auto width = static_cast<float>(icon.page->width);
        const auto height = static_cast<float>(icon.page->height);
        ImageTexture::Part whole;
        whole.s0 = static_cast<float>(icon.x) / width;
        whole.t0 = static_cast<float>(icon.y) / height;
        whole.s1 = static_cast<float>(icon.x + icon.width) / width;
        whole.t1 = static_cast<float>(icon.y + icon.height) / height;
        if (placement.slot == kNoSlot) {
            placement.slot = _slots.allocate();
        }
        writeQuad(placement.slot, item, view, whole);
        return;
    }
    const auto& parts = placement.texture->parts();
    if (placement.slot == kNoSlot) {
        for (std::size_t i = 0; i < parts.size(); ++i) {
            placement.slot = _slots.allocate(placement.slot);
        }
    }
    std::uint32_t slot = placement.slot;
    for (const ImageTexture::Part& part : parts) {
        writeQuad(slot, item, view, part);
        slot = _slots.next(slot);
    }
}

void ImagePainter::writeQuad(std::uint32_t slot, const DrawItem& item, const FrameView& view,
                             const ImageTexture::Part& part) {
    const bool isWhole = part.left == 0 && part.top == 0 && part.right == 1 && part.bottom == 1;
    const float opacity = fraction(item.opacity);
    std::array<std::uint8_t, 4> tint{};
    std::transform(item.color.begin(), item.color.end(), tint.begin(),
                   [](float c) { return static_cast<std::uint8_t>(std::lround(fraction(c) * 255)); });
    Vertex* vertices = _slots.edit(slot);
    float points[4][3];
    for (std::size_t i = 0; i < 4; ++i) {
        const bool isRight = i % 2 == 1;
        const bool isBottom = i >= 2;
        const Vector3d corner = isWhole ? item.corners[i]
                                        : between(item.corners, isRight ? part.right : part.left,
                                                  isBottom ? part.bottom : part.top);
        const auto position = view.relative(corner);
        std::copy(position.begin(), position.end(), points[i]);
        std::copy(position.begin(), position.end(), vertices[i].position);
        vertices[i].place[0] = isRight ? part.s1 : part.s0;
        vertices[i].place[1] = isBottom ? part.t1 : part.t0;
        vertices[i].opacity = opacity;
        vertices[i].tint = tint;
    }
    _slots.sphere(slot) = BoundingSphere::around(points, 4);
}

void ImagePainter::use(bool isMultiplied, const FrameView& view, VertexArrays& arrays) {
    Program& program = isMultiplied ? _multiplied : _plain;
    glUseProgram(program.program.name());
    if (!program.isCurrent) {
        program.isCurrent = true;
        glUniformMatrix4fv(program.matrix, 1, GL_FALSE, view.matrix().data());
    }
    arrays.enable(isMultiplied ? 0xF : 0x3);
    _slots.bind();
}

void ImagePainter::useUpright(VertexArrays& arrays) {
    constexpr GLfloat kIdentity[] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    glUseProgram(_plain.program.name());
    glUniformMatrix4fv(_plain.matrix, 1, GL_FALSE, kIdentity);
    arrays.enable(0x3);
}

void ImagePainter::pointAt(std::uint32_t chunk) {
    const std::size_t base = std::size_t{chunk} * QuadIndices::kChunk * 4 * sizeof(Vertex);
    constexpr GLsizei stride = sizeof(Vertex);
    glVertexAttribPointer(0, 3, GL_FLOAT, GL_FALSE, stride, bufferOffset(base + offsetof(Vertex, position)));
    glVertexAttribPointer(1, 2, GL_FLOAT, GL_FALSE, stride, bufferOffset(base + offsetof(Vertex, place)));
    glVertexAttribPointer(2, 1, GL_FLOAT, GL_FALSE, stride, bufferOffset(base + offsetof(Vertex, opacity)));
    glVertexAttribPointer(3, 4, GL_UNSIGNED_BYTE, GL_TRUE, stride,
                          bufferOffset(base + offsetof(Vertex, tint)));
}

} // namespace trelmix
