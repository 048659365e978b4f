#include "Render/DiscPainter.h"

#include "Render/GLShader.h"
#include "Render/QuadIndices.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace trelmix {

namespace {

// Discs lie flat: the cosine is that between the view and the upright. The last 1.5 is the pixel and a half
// by which a quad grows; a disc seen from the side needs more of the scene for it.
constexpr const char* kVertexShader = R"(#version 100
attribute vec3 a_centre;
attribute vec3 a_diagonal;
attribute vec2 a_corner;
attribute vec4 a_color;
uniform mat4 u_matrix;
uniform vec3 u_eye;
uniform float u_pixelSize;
varying vec2 v_place;
varying vec4 v_color;
varying float v_pixel;
void main() {
    vec3 corner = a_centre + a_diagonal;
    float depth = max((u_matrix * vec4(corner, 1.0)).w, 0.0);
    float cosine = abs(u_eye.z - corner.z) / max(distance(u_eye, corner), 0.001);
    float radius = max(length(a_diagonal) * 0.70710678, 0.000001);
    float pixel = depth * u_pixelSize / radius;
    float grown = 1.0 + 1.5 * pixel / max(cosine, 0.02);
    gl_Position = u_matrix * vec4(a_centre + a_diagonal * grown, 1.0);
    v_place = a_corner * grown;
    v_color = a_color;
    v_pixel = pixel / max(sqrt(cosine), 0.15);
}
)";

// `change` is by how much the distance from the centre changes from one pixel to the next across the edge.
// The ramp of one pixel makes a disc larger by a twelfth of a square pixel in the square of its radius, which
// is taken off; one smaller than a pixel fades instead.
constexpr const char* kFragmentShader = R"(#version 100
#ifdef DERIVATIVES
#extension GL_OES_standard_derivatives : enable
#endif
#ifdef GL_FRAGMENT_PRECISION_HIGH
precision highp float;
#else
precision mediump float;
#endif
varying vec2 v_place;
varying vec4 v_color;
varying float v_pixel;
void main() {
    float away = length(v_place);
#ifdef DERIVATIVES
    vec2 outward = v_place / max(away, 0.000001);
    float change = length(vec2(dot(outward, dFdx(v_place)), dot(outward, dFdy(v_place))));
#else
    float change = v_pixel;
#endif
    float radius = 1.0 / max(change, 0.0000001);
    float area = radius * radius - 0.08333333;
    float shown = sqrt(max(area, 0.25));
    float fade = min(1.0, 3.0 * radius * radius);
    gl_FragColor = v_color * (fade * clamp(0.5 + shown - away * radius, 0.0, 1.0));
}
)";

std::uint16_t narrowedColor(float value) {
    return static_cast<std::uint16_t>(std::lround(fraction(value) * 65535.0F));
}

} // namespace

DiscPainter::DiscPainter(std::shared_ptr<GLGraveyard> graveyard) : _slots(std::move(graveyard)) {}

std::string DiscPainter::prepare(const std::shared_ptr<GLGraveyard>& graveyard, bool hasDerivatives) {
    if (_program) {
        return {};
    }
    const GLAttribute attributes[] = {{0, "a_centre"}, {1, "a_diagonal"}, {2, "a_corner"}, {3, "a_color"}};
    std::string fragment = kFragmentShader;
    if (hasDerivatives) {
        fragment.insert(fragment.find('\n') + 1, "#define DERIVATIVES\n");
    }
    auto linked = linkProgram(graveyard, kVertexShader, fragment, attributes);
    if (!linked) {
        return linked.reason();
    }
    _program = std::move(*linked);
    _matrix = glGetUniformLocation(_program.name(), "u_matrix");
    _eye = glGetUniformLocation(_program.name(), "u_eye");
    _pixelSize = glGetUniformLocation(_program.name(), "u_pixelSize");
    return {};
}

void DiscPainter::write(Placement& placement, const FrameView& view) {
    if (placement.slot == kNoSlot) {
        placement.slot = _slots.allocate();
    }
    const DrawItem& item = *placement.item;
    const auto& corners = item.corners;
    const Vector3d middle = (corners[0] + corners[1] + corners[2] + corners[3]) * 0.25;
    const auto centre = view.relative(middle);
    Vertex* vertices = _slots.edit(placement.slot);
    float points[4][3];
    for (std::size_t i = 0; i < 4; ++i) {
        Vertex& vertex = vertices[i];
        const SCNVector3 diagonal = narrowed(corners[i] - middle);
        std::copy(centre.begin(), centre.end(), vertex.centre);
        vertex.diagonal[0] = diagonal.x;
        vertex.diagonal[1] = diagonal.y;
        vertex.diagonal[2] = diagonal.z;
        vertex.corner[0] = i % 2 == 1 ? 1 : -1;
        vertex.corner[1] = i >= 2 ? -1 : 1;
        vertex.corner[2] = vertex.corner[3] = 0;
        for (std::size_t c = 0; c < 4; ++c) {
            vertex.color[c] = narrowedColor(item.color[c] * fraction(item.opacity));
            if (c < 3) {
                points[i][c] = vertex.centre[c] + vertex.diagonal[c];
            }
        }
    }
    _slots.sphere(placement.slot) = BoundingSphere::around(points, 4);
}

void DiscPainter::use(const FrameView& view, VertexArrays& arrays) {
    glUseProgram(_program.name());
    if (!_isCurrent) {
        _isCurrent = true;
        glUniformMatrix4fv(_matrix, 1, GL_FALSE, view.matrix().data());
        glUniform3fv(_eye, 1, view.eye().data());
        glUniform1f(_pixelSize, view.pixelSize());
    }
    arrays.enable(0xF);
    _slots.bind();
}

void DiscPainter::pointAt(std::uint32_t chunk) const {
    const std::size_t base = std::size_t{chunk} * QuadIndices::kChunk * 4 * sizeof(Vertex);
    constexpr GLsizei stride = sizeof(Vertex);
    glVertexAttribPointer(0, 3, GL_FLOAT, GL_FALSE, stride, bufferOffset(base + offsetof(Vertex, centre)));
    glVertexAttribPointer(1, 3, GL_FLOAT, GL_FALSE, stride, bufferOffset(base + offsetof(Vertex, diagonal)));
    glVertexAttribPointer(2, 2, GL_BYTE, GL_FALSE, stride, bufferOffset(base + offsetof(Vertex, corner)));
    glVertexAttribPointer(3, 4, GL_UNSIGNED_SHORT, GL_TRUE, stride,
                          bufferOffset(base + offsetof(Vertex, color)));
}

} // namespace trelmix
