#include "BarePicture.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace trelmix::bench {
namespace {

const char* const kImageVertex = R"(#version 100
attribute vec3 a_position; attribute vec2 a_place; uniform mat4 u_matrix; varying vec2 v_place;
void main() { gl_Position = u_matrix * vec4(a_position, 1.0); v_place = a_place; })";
const char* const kImageFragment = R"(#version 100
precision highp float; uniform sampler2D u_image; varying vec2 v_place;
void main() { gl_FragColor = texture2D(u_image, v_place); })";
const char* const kFillVertex = R"(#version 100
attribute vec3 a_position; attribute vec4 a_color; uniform mat4 u_matrix; varying vec4 v_color;
void main() { gl_Position = u_matrix * vec4(a_position, 1.0); v_color = a_color; })";
const char* const kFillFragment = R"(#version 100
precision mediump float; varying vec4 v_color; void main() { gl_FragColor = v_color; })";
const char* const kCircleVertex = R"(#version 100
attribute vec3 a_position; attribute vec2 a_place; uniform mat4 u_matrix; varying vec2 v_place;
void main() { gl_Position = u_matrix * vec4(a_position, 1.0); v_place = a_place; })";
const char* const kCircleFragment = R"(#version 100
precision highp float; uniform float u_radius; varying vec2 v_place;
void main() { float away = (1.0 - length(v_place)) * u_radius;
gl_FragColor = vec4(0.1, 0.2, 0.4, 0.5) * clamp(0.5 + away, 0.0, 1.0); })";

/// In view when one corner is, or the corners lie around it.
bool isInView(const std::array<Vector3d, 4>& corners, const Matrix4d& clip) {
    int outside[5] = {};
    for (const Vector3d& p : corners) {
        const auto row = [&](std::size_t r) {
            return clip.m[r] * p.x + clip.m[4 + r] * p.y + clip.m[8 + r] * p.z + clip.m[12 + r];
        };
        const double w = row(3);
        outside[0] += row(0) < -w;
        outside[1] += row(0) > w;
        outside[2] += row(1) < -w;
        outside[3] += row(1) > w;
        outside[4] += w < 0;
    }
    return std::none_of(std::begin(outside), std::end(outside), [](int n) { return n == 4; });
}

void appendVertex(std::vector<float>& out, Vector3d p, float s, float t) {
    out.insert(out.end(), {static_cast<float>(p.x), static_cast<float>(p.y), static_cast<float>(p.z), s, t});
}

void appendQuadIndices(std::vector<std::uint32_t>& out, std::uint32_t quad) {
    for (const std::uint32_t corner : {0U, 2U, 1U, 1U, 2U, 3U}) {
        out.push_back(quad * 4 + corner);
    }
}

void point(GLuint attribute, GLint size, int stride, int offset) {
    glEnableVertexAttribArray(attribute);
    glVertexAttribPointer(attribute, size, GL_FLOAT, GL_FALSE, stride * 4,
                          reinterpret_cast<const void*>(static_cast<std::size_t>(offset) * 4));
}

} // namespace

BarePicture::BarePicture(const GLContext& context, const Scene& scene, const RenderArea& window, int samples)
    : _graveyard(context.graveyard()), _capabilities(context.capabilities()), _window(window) {
    if (samples > 1) {
        _sampled = GLRenderbuffer::make(_graveyard);
        glBindRenderbuffer(GL_RENDERBUFFER, _sampled.name());
        _capabilities.renderbufferStorageMultisample(GL_RENDERBUFFER, samples, GL_RGBA8_OES, window.width,
                                                     window.height);
        _beside = GLFramebuffer::make(_graveyard);
        glBindFramebuffer(GL_FRAMEBUFFER, _beside.name());
        glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, _sampled.name());
    }
    _images = makeProgram(kImageVertex, kImageFragment);
    _fills = makeProgram(kFillVertex, kFillFragment);
    _lines = makeProgram(kLineVertexShader, kLineFragmentShader);
    _circles = makeProgram(kCircleVertex, kCircleFragment);
    addTiles(scene);
    addMarkers(scene);
    addMeshes(scene);
    addCircles(scene);
}

GLProgram BarePicture::makeProgram(const char* vertex, const char* fragment) const {
    const GLAttribute attributes[] = {
        {0, "a_position"}, {1, "a_place"}, {1, "a_color"}, {1, "a_normal"}, {2, "a_tagent"}};
    auto linked = linkProgram(_graveyard, vertex, fragment, attributes);
    if (!linked) {
        std::fprintf(stderr, "%s\n", linked.reason().c_str());
        std::exit(1);
    }
    return std::move(*linked);
}

GLTexture BarePicture::upload(const UIImage& image, bool usesLevels) const {
    auto texture = GLTexture::make(_graveyard);
    glBindTexture(GL_TEXTURE_2D, texture.name());
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, usesLevels ? GL_LINEAR_MIPMAP_LINEAR : GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    const std::size_t count = usesLevels ? image.levels().size() : 1;
    for (std::size_t i = 0; i < count; ++i) {
        const auto level = static_cast<GLint>(i);
        glTexImage2D(GL_TEXTURE_2D, level, GL_RGBA, std::max(1, image.pixelWidth() >> level),
                     std::max(1, image.pixelHeight() >> level), 0, GL_RGBA, GL_UNSIGNED_BYTE,
                     i == 0 ? image.pixels().data() : image.levels()[i].data());
    }
    return texture;
}

BarePicture::Mesh BarePicture::makeMesh(const std::vector<float>& vertices,
                                        const std::vector<std::uint32_t>& indices) const {
    Mesh mesh;
    mesh.vertices = GLBuffer::make(_graveyard);
    mesh.indices = GLBuffer::make(_graveyard);
    mesh.count = static_cast<GLsizei>(indices.size());
    glBindBuffer(GL_ARRAY_BUFFER, mesh.vertices.name());
    glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(vertices.size() * 4), vertices.data(),
                 GL_STATIC_DRAW);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, mesh.indices.name());
    glBufferData(GL_ELEMENT_ARRAY_BUFFER, static_cast<GLsizeiptr>(indices.size() * 4), indices.data(),
                 GL_STATIC_DRAW);
    return mesh;
}

void BarePicture::addTiles(const Scene& scene) {
    std::vector<float> vertices;
    for (const auto& item : scene.list->items) {
        if (item->kind == DrawKind::image && item->usesLevels) {
            _tiles.push_back({upload(*item->image, true), item->corners, vertices.size() / 5});
            for (std::size_t i = 0; i < 4; ++i) {
                appendVertex(vertices, item->corners[i], static_cast<float>(i % 2),
                             static_cast<float>(i / 2));
            }
        }
    }
    _tileVertices = GLBuffer::make(_graveyard);
    glBindBuffer(GL_ARRAY_BUFFER, _tileVertices.name());
    glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(vertices.size() * 4), vertices.data(),
                 GL_STATIC_DRAW);
}

void BarePicture::addMarkers(const Scene& scene) {
    std::vector<std::uint8_t> sheet;
    for (const auto& icon : scene.icons) {
        sheet.insert(sheet.end(), icon->pixels().begin(), icon->pixels().end());
    }
    _iconSheet = upload(*UIImage::withPixels(kIconSize, kIconSize * kIconCount, std::move(sheet)), false);
    writeMarkers(scene);
}

void BarePicture::writeMarkers(const Scene& scene) {
    std::vector<float> vertices;
    std::vector<std::uint32_t> indices;
    for (const auto& item : scene.list->items) {
        if (item->kind != DrawKind::image || item->usesLevels) {
            continue;
        }
        const auto quad = static_cast<std::uint32_t>(vertices.size() / 20);
        const auto icon = static_cast<float>(quad % kIconCount);
        for (std::size_t i = 0; i < 4; ++i) {
            appendVertex(vertices, item->corners[i], static_cast<float>(i % 2),
                         (icon + static_cast<float>(i / 2)) / kIconCount);
        }
        appendQuadIndices(indices, quad);
    }
    _markers = makeMesh(vertices, indices);
}

void BarePicture::addCircles(const Scene& scene) {
    std::vector<float> vertices;
    std::vector<std::uint32_t> indices;
    for (const auto& item : scene.list->items) {
        if (item->kind == DrawKind::disc) {
            appendQuadIndices(indices, static_cast<std::uint32_t>(vertices.size() / 20));
            for (std::size_t i = 0; i < 4; ++i) {
                appendVertex(vertices, item->corners[i], i % 2 == 0 ? -1.0F : 1.0F, i < 2 ? -1.0F : 1.0F);
            }
        }
    }
    _discs = makeMesh(vertices, indices);
}

void BarePicture::addMeshes(const Scene& scene) {
    std::vector<float> vertices[2];
    std::vector<std::uint32_t> indices[2];
    for (const auto& item : scene.list->items) {
        if (!item->mesh) {
            continue;
        }
        const bool isLine = item->kind == DrawKind::program;
        auto& out = vertices[isLine ? 1 : 0];
        const auto first = static_cast<std::uint32_t>(out.size() / (isLine ? 9 : 7));
        const SCNMesh& mesh = *item->mesh;
        for (std::size_t i = 0; i < mesh.vertices.size(); i += 3) {
            const SCNVector3 p =
                narrowed(item->meshPosition + Vector3d{mesh.vertices[i], mesh.vertices[i + 1], 0});
            out.insert(out.end(), {p.x, p.y, p.z});
            if (isLine) {
                out.insert(out.end(), mesh.normals.begin() + static_cast<std::ptrdiff_t>(i),
                           mesh.normals.begin() + static_cast<std::ptrdiff_t>(i + 3));
                out.insert(out.end(), mesh.tangents.begin() + static_cast<std::ptrdiff_t>(i),
                           mesh.tangents.begin() + static_cast<std::ptrdiff_t>(i + 3));
            } else {
                out.insert(out.end(), item->color.begin(), item->color.end());
            }
        }
        for (std::size_t i = 0; i < mesh.indexCount(); ++i) {
            indices[isLine ? 1 : 0].push_back(first + mesh.index(i));
        }
    }
    _polygons = makeMesh(vertices[0], indices[0]);
    _bands = makeMesh(vertices[1], indices[1]);
}

void BarePicture::drawTiles(const Matrix4d& clip) {
    glDisable(GL_BLEND);
    glBindBuffer(GL_ARRAY_BUFFER, _tileVertices.name());
    point(0, 3, 5, 0);
    point(1, 2, 5, 3);
    for (const Quad& tile : _tiles) {
        if (isInView(tile.corners, clip)) {
            glBindTexture(GL_TEXTURE_2D, tile.texture.name());
            glDrawArrays(GL_TRIANGLE_STRIP, static_cast<GLint>(tile.firstVertex), 4);
        }
    }
    glEnable(GL_BLEND);
}

void BarePicture::bindForDrawing() const {
    glBindFramebuffer(GL_FRAMEBUFFER, _beside ? _beside.name() : _window.framebuffer);
    glViewport(_window.x, _window.y, _window.width, _window.height);
}

void BarePicture::resolve() const {
    if (_beside) {
        const GLint right = _window.width;
        const GLint top = _window.height;
        glBindFramebuffer(GL_READ_FRAMEBUFFER_ANGLE, _beside.name());
        glBindFramebuffer(GL_DRAW_FRAMEBUFFER_ANGLE, _window.framebuffer);
        _capabilities.blitFramebuffer(0, 0, right, top, 0, 0, right, top, GL_COLOR_BUFFER_BIT, GL_NEAREST);
    }
}

void BarePicture::draw(const Matrix4d& clip) {
    bindForDrawing();
    glClearColor(1, 1, 1, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    const auto matrix = clip.narrowedValues();
    const auto use = [&](const GLProgram& program, const Mesh* mesh) {
        glUseProgram(program.name());
        glUniformMatrix4fv(glGetUniformLocation(program.name(), "u_matrix"), 1, GL_FALSE, matrix.data());
        if (mesh) {
            glBindBuffer(GL_ARRAY_BUFFER, mesh->vertices.name());
            glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, mesh->indices.name());
        }
        glDisableVertexAttribArray(2);
    };
    const auto drawMesh = [](const Mesh& mesh) {
        glDrawElements(GL_TRIANGLES, mesh.count, GL_UNSIGNED_INT, nullptr);
    };
    use(_images, nullptr);
    drawTiles(clip);
    if (_polygons.count > 0) {
        use(_fills, &_polygons);
        point(0, 3, 7, 0);
        point(1, 4, 7, 3);
        drawMesh(_polygons);
    }
    if (_discs.count > 0) {
        use(_circles, &_discs);
        glUniform1f(glGetUniformLocation(_circles.name(), "u_radius"), 14); // pixels, straight below
        point(0, 3, 5, 0);
        point(1, 2, 5, 3);
        drawMesh(_discs);
    }
    if (_bands.count > 0) {
        use(_lines, &_bands);
        glUniform1f(glGetUniformLocation(_lines.name(), "u_width"), 3);
        glUniform4f(glGetUniformLocation(_lines.name(), "u_color"), 0.5F, 0, 0, 0.7F);
        point(0, 3, 9, 0);
        point(1, 3, 9, 3);
        point(2, 3, 9, 6);
        drawMesh(_bands);
    }
    if (_markers.count > 0) {
        use(_images, &_markers);
        glBindTexture(GL_TEXTURE_2D, _iconSheet.name());
        point(0, 3, 5, 0);
        point(1, 2, 5, 3);
        drawMesh(_markers);
    }
    resolve();
}

} // namespace trelmix::bench
