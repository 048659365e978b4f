#include "BareScene.h"

#include <cmath>
#include <cstdint>
#include <random>

namespace trelmix::bench {

const char* const kLineVertexShader = R"(#version 100
attribute vec4 a_position; attribute vec4 a_normal; attribute vec4 a_tagent;
uniform mat4 u_matrix; uniform float u_width;
void main() { vec2 normal = normalize(a_normal.xy); vec2 miter = vec2(-a_tagent.y, a_tagent.x);
float size = u_width * 0.5 / dot(miter, normal);
gl_Position = u_matrix * vec4(a_position.xy + miter * size, a_position.zw); })";
const char* const kLineFragmentShader = R"(#version 100
uniform lowp vec4 u_color; void main() { gl_FragColor = u_color; })";

namespace {

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
    program->vertexShader = kLineVertexShader;
    program->fragmentShader = kLineFragmentShader;
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

} // namespace trelmix::bench
