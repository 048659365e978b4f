#include "Render/DiscPainter.h"

#include "Render/GLShader.h"
#include "Render/QuadIndices.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace trelmix {

namespace {

// Discs lie flat, and p is a place in the disc's own frame, where its rim is |p| = 1: as (X / W, Y / W) with
// X, Y and W linear on screen, because the ground's picture is a projective map. Half the change of p·p from
// a pixel to the next is (p·X' + p·Y' - (p·p) W') / W, and at the rim, where p·p = 1, that is linear on the
// ground but for W: so corners give it exactly to every pixel, `v_slope * v_depth`, without derivatives.
//
// Discs with a radius below a pixel are drawn with one of a pixel, and as much fainter. Quads grow by half a
// pixel and a little more; a disc seen from the side needs more of the scene for it.
constexpr const char* kVertexShader = R"(#version 100
attribute vec3 a_centre;
attribute vec3 a_diagonal;
attribute vec2 a_corner;
attribute vec4 a_color;
uniform mat4 u_matrix;
uniform vec3 u_eye;
uniform float u_pixelSize;
uniform vec2 u_halfSize;
varying vec2 v_place;
varying vec2 v_slope;
varying vec2 v_depth;
varying vec4 v_color;
void main() {
    vec2 axis = vec2(dot(a_diagonal.xy, a_corner), a_diagonal.y * a_corner.x - a_diagonal.x * a_corner.y) * 0.5;
    vec3 right = (u_matrix * vec4(axis, 0.0, 0.0)).xyw;
    vec3 up = (u_matrix * vec4(-axis.y, axis.x, 0.0, 0.0)).xyw;
    vec3 middle = (u_matrix * vec4(a_centre, 1.0)).xyw;
    right.xy *= u_halfSize;
    up.xy *= u_halfSize;
    middle.xy *= u_halfSize;
    // The middle may lie behind the camera.
    float usual = max(abs(middle.z), 0.01 * length(axis));
    float volume = max(abs(dot(cross(right, up), middle)), 1e-30);
    float size = sqrt(volume / (usual * usual * usual));
    v_color = a_color * min(size * size, 1.0);
    float enlarged = max(1.0, 1.0 / size);
    right *= enlarged;
    up *= enlarged;
    volume *= enlarged * enlarged;
    size *= enlarged;

    vec3 diagonal = a_diagonal * enlarged;
    vec3 corner = a_centre + diagonal;
    float depth = max((u_matrix * vec4(corner, 1.0)).w, 0.0);
    float cosine = abs(u_eye.z - corner.z) / max(distance(u_eye, corner), 0.001);
    float radius = max(length(axis) * enlarged, 0.000001);
    float grown = 1.0 + 0.75 * depth * u_pixelSize / (radius * max(cosine, 0.02));
    gl_Position = u_matrix * vec4(a_centre + diagonal * grown, 1.0);
    v_place = a_corner * grown;
    v_slope = (cross(up, middle) * v_place.x + cross(middle, right) * v_place.y - cross(right, up)).xy *
              (size * usual / volume);
    v_depth = vec2(gl_Position.w / usual, size);
}
)";

// The part of a pixel that the disc covers, as the distance to the rim; being linear in p·p it leaves the
// disc its area. Near the middle the slope vanishes, and only there the least of it counts.
constexpr const char* kFragmentShader = R"(#version 100
#ifdef GL_FRAGMENT_PRECISION_HIGH
precision highp float;
#else
precision mediump float;
#endif
varying vec2 v_place;
varying vec2 v_slope;
varying vec2 v_depth;
varying vec4 v_color;
void main() {
    float square = dot(v_place, v_place);
    float slope = dot(v_slope, v_slope) * v_depth.x * v_depth.x;
    float away = (1.0 - square) * sqrt(max(square, 0.001) / max(slope, 0.001));
    gl_FragColor = v_color * clamp(0.5 + 0.5 * v_depth.y * away, 0.0, 1.0);
}
)";

std::uint16_t narrowedColor(float value) {
    return static_cast<std::uint16_t>(std::lround(fraction(value) * 65535.0F));
}

} // namespace

DiscPainter::DiscPainter(std::shared_ptr<GLGraveyard> graveyard) : _slots(std::move(graveyard)) {}

std::string DiscPainter::prepare(const std::shared_ptr<GLGraveyard>& graveyard) {
    if (_program) {
        return {};
    }
    const GLAttribute attributes[] = {{0, "a_centre"}, {1, "a_diagonal"}, {2, "a_corner"}, {3, "a_color"}};
    auto linked = linkProgram(graveyard, kVertexShader, kFragmentShader, attributes);
    if (!linked) {
        return linked.reason();
    }
    _program = std::move(*linked);
    _matrix = glGetUniformLocation(_program.name(), "u_matrix");
    _eye = glGetUniformLocation(_program.name(), "u_eye");
    _pixelSize = glGetUniformLocation(_program.name(), "u_pixelSize");
    _halfSize = glGetUniformLocation(_program.name(), "u_halfSize");
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
        glUniform2f(_halfSize, view.halfSize()[0], view.halfSize()[1]);
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
