#include "BarePicture.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <random>

namespace trelmix::bench {
namespace {

constexpr int kIconCount = 64;
constexpr int kIconSize = 32;

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
const char* const kLineVertex = R"(#version 100
attribute vec4 a_position; attribute vec4 a_normal; attribute vec4 a_tagent;
uniform mat4 u_matrix; uniform float u_width;
void main() { vec2 normal = normalize(a_normal.xy); vec2 miter = vec2(-a_tagent.y, a_tagent.x);
float size = u_width * 0.5 / dot(miter, normal);
gl_Position = u_matrix * vec4(a_position.xy + miter * size, a_position.zw); })";
const char* const kLineFragment = R"(#version 100
uniform lowp vec4 u_color; void main() { gl_FragColor = u_color; })";
const char* const kCircleVertex = R"(#version 100
attribute vec3 a_position; attribute vec2 a_place; uniform mat4 u_matrix; varying vec2 v_place;
void main() { gl_Position = u_matrix * vec4(a_position, 1.0); v_place = a_place; })";
const char* const kCircleFragment = R"(#version 100
#extension GL_OES_standard_derivatives : enable
precision highp float; varying vec2 v_place;
void main() { float f = length(v_place) - 1.0;
gl_FragColor = vec4(0.1, 0.2, 0.4, 0.5) * clamp(0.5 - f / fwidth(f), 0.0, 1.0); })";

std::shared_ptr<const UIImage> noise(int size, std::uint32_t seed, std::uint8_t alpha) {
    std::mt19937 random(seed);
    std::vector<std::uint8_t> pixels(static_cast<std::size_t>(size * size) * 4);
    for (std::size_t i = 0; i < pixels.size(); ++i) {
        pixels[i] = i % 4 == 3 ? alpha : static_cast<std::uint8_t>(random() % (alpha + 1U));
    }
    return UIImage::withPixels(size, size, std::move(pixels));
}

std::array<Vector3d, 4> square(double x, double y, double size) {
    return {{{x, y + size, 0}, {x + size, y + size, 0}, {x, y, 0}, {x + size, y, 0}}};
}

std::shared_ptr<DrawItem> meshItem(DrawKind kind, Vector3d at) {
    auto item = std::make_shared<DrawItem>();
    item->kind = kind;
    item->meshPosition = at;
    return item;
}

/// A star of 24 corners as a fan.
std::shared_ptr<const DrawItem> polygon(Vector3d at) {
    auto item = meshItem(DrawKind::fill, at);
    auto mesh = std::make_shared<SCNMesh>();
    std::vector<std::uint8_t> indices;
    mesh->vertices = {0, 0, 0};
    for (int i = 0; i < 24; ++i) {
        const double radius = i % 2 == 0 ? 14 : 8;
        const double angle = i * 3.14159265358979 / 12;
        mesh->vertices.insert(mesh->vertices.end(), {static_cast<float>(radius * std::cos(angle)),
                                                     static_cast<float>(radius * std::sin(angle)), 0});
        indices.insert(indices.end(),
                       {0, static_cast<std::uint8_t>(1 + i), static_cast<std::uint8_t>(1 + (i + 1) % 24)});
    }
    mesh->indices = indices;
    item->mesh = mesh;
    item->color = {0.2F, 0.1F, 0.3F, 0.5F};
    return item;
}

/// A winding line of 20 points.
std::shared_ptr<const DrawItem> line(Vector3d at, const std::shared_ptr<const SCNProgram>& program) {
    auto item = meshItem(DrawKind::program, at);
    auto mesh = std::make_shared<SCNMesh>();
    std::vector<std::uint8_t> indices;
    for (int i = 0; i < 20; ++i) {
        const auto slope = static_cast<float>(std::cos(i * 0.7) * 0.7);
        const float length = std::hypot(1.0F, slope);
        for (const float side : {-1.0F, 1.0F}) {
            mesh->vertices.insert(mesh->vertices.end(),
                                  {static_cast<float>(i) * 4, static_cast<float>(std::sin(i * 0.7) * 4), 0});
            mesh->normals.insert(mesh->normals.end(), {-slope * side, side, 0});
            mesh->tangents.insert(mesh->tangents.end(), {1 / length, slope / length, 0});
        }
        const int n = i * 2;
        if (i < 19) {
            for (const int k : {n + 1, n, n + 2, n + 1, n + 2, n + 3}) {
                indices.push_back(static_cast<std::uint8_t>(k));
            }
        }
    }
    mesh->indices = indices;
    item->mesh = mesh;
    item->program = program;
    auto bindings = std::make_shared<std::map<std::string, SCNBindingHandler>>();
    (*bindings)["u_width"] = [](UniformWriter& gl, int location) { gl.glUniform1f(location, 3); };
    (*bindings)["u_color"] = [](UniformWriter& gl, int location) {
        const float color[] = {0.5F, 0, 0, 0.7F};
        gl.glUniform4fv(location, 1, color);
    };
    item->bindings = bindings;
    return item;
}

std::shared_ptr<const DrawItem> withOrder(const std::shared_ptr<const DrawItem>& item,
                                          std::uint64_t sequence) {
    auto ordered = std::make_shared<DrawItem>(*item);
    ordered->sequence = sequence;
    return ordered;
}

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

Scene makeScene(const SceneSize& size) {
    Scene scene;
    std::mt19937 random(5);
    const auto number = [&](double low, double high) {
        return std::uniform_real_distribution(low, high)(random);
    };
    auto list = std::make_shared<DrawList>();
    const auto add = [&](const std::shared_ptr<const DrawItem>& item) {
        list->items.push_back(withOrder(item, list->items.size()));
    };
    for (int i = 0; i < 40; ++i) {
        auto tile = std::make_shared<DrawItem>();
        tile->usesLevels = true;
        tile->image = noise(256, static_cast<std::uint32_t>(i), 255);
        tile->image->prepareLevels();
        tile->corners = square((i % 8 - 4) * 128.0, (i / 8 - 2) * 128.0, 128);
        add(tile);
    }
    const auto place = [&] { return Vector3d{number(-230, 200), number(-180, 160), 0}; };
    for (int i = 0; i < size.polygons; ++i) {
        add(polygon(place()));
    }
    for (int i = 0; i < size.circles; ++i) {
        const Vector3d at = place();
        auto circle = std::make_shared<DrawItem>();
        circle->kind = DrawKind::disc;
        circle->corners = square(at.x, at.y, 20);
        circle->color = {0.1F, 0.2F, 0.4F, 0.5F};
        add(circle);
    }
    auto program = std::make_shared<SCNProgram>();
    program->vertexShader = kLineVertex;
    program->fragmentShader = kLineFragment;
    program->symbols = {{"a_position", SCNSemantic::vertex},
                        {"a_normal", SCNSemantic::normal},
                        {"a_tagent", SCNSemantic::tangent},
                        {"u_matrix", SCNSemantic::modelViewProjection}};
    for (int i = 0; i < size.lines; ++i) {
        add(line(place(), program));
    }
    for (int i = 0; i < kIconCount; ++i) {
        scene.icons.push_back(noise(kIconSize, static_cast<std::uint32_t>(1000 + i), 180));
    }
    for (int i = 0; i < size.markers; ++i) {
        auto marker = std::make_shared<DrawItem>();
        marker->image = scene.icons[static_cast<std::size_t>(i % kIconCount)];
        const Vector3d at = place();
        marker->corners = square(at.x, at.y, 12);
        add(marker);
    }
    scene.list = list;
    return scene;
}

void moveMarkers(Scene& scene, int frame) {
    auto list = std::make_shared<DrawList>(*scene.list);
    for (auto& item : list->items) {
        if (item->kind == DrawKind::image && !item->usesLevels) {
            auto moved = std::make_shared<DrawItem>(*item);
            for (Vector3d& corner : moved->corners) {
                corner.x += frame % 2 == 0 ? 0.5 : -0.5;
            }
            item = moved;
        }
    }
    scene.list = list;
}

BarePicture::BarePicture(const GLContext& context, const Scene& scene, int width, int height, int samples)
    : _graveyard(context.graveyard()), _target(context.capabilities(), _graveyard) {
    if (!_target.resize(width, height, samples).empty()) {
        std::exit(1);
    }
    _images = makeProgram(kImageVertex, kImageFragment);
    _fills = makeProgram(kFillVertex, kFillFragment);
    _lines = makeProgram(kLineVertex, kLineFragment);
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

void BarePicture::draw(const Matrix4d& clip) {
    _target.bindForDrawing();
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
    _target.resolve();
}

} // namespace trelmix::bench
