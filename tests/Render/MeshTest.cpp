#include "Render/GLShader.h"
#include "Render/RenderFixture.h"

#include <string>
#include <tuple>

namespace trelmix::render_test::mesh_test {

const char* const kWideningShader = R"(#version 100
    attribute vec4 a_position, a_side;
    attribute vec2 unused;
    uniform mat4 u_matrix;
    uniform float u_width;
    varying vec2 v_unused;
    void main() {
        gl_Position = u_matrix * vec4(a_position.xy + normalize(a_side.xy) * u_width * 0.5, a_position.zw);
        v_unused = unused;
    })";
const char* const kColorShader = R"(#version 100
    uniform lowp vec4 u_color, u_forgotten;
    void main() { gl_FragColor = u_color; })";

/// A band along a line, widened by its program.
std::shared_ptr<DrawItem> bandItem(const std::vector<Vector3d>& line, float width,
                                   std::array<float, 4> color) {
    auto mesh = std::make_shared<SCNMesh>();
    mesh->origin = line.front();
    std::vector<std::uint32_t> indices;
    for (std::size_t i = 0; i < line.size(); ++i) {
        const SCNVector3 p = narrowed(line[i] - mesh->origin);
        const SCNVector3 d = narrowed(i + 1 < line.size() ? line[i + 1] - line[i] : line[i] - line[i - 1]);
        for (const float side : {-1.0F, 1.0F}) {
            mesh->vertices.insert(mesh->vertices.end(), {p.x, p.y, p.z});
            mesh->normals.insert(mesh->normals.end(), {-d.y * side, d.x * side, 0});
        }
        const auto n = static_cast<std::uint32_t>(i) * 2;
        if (i + 1 < line.size()) {
            indices.insert(indices.end(), {n + 1, n, n + 2, n + 1, n + 2, n + 3});
        }
    }
    if (mesh->vertexCount() <= 256) {
        mesh->indices = std::vector<std::uint8_t>(indices.begin(), indices.end());
    } else {
        mesh->indices = indices;
    }
    auto program = std::make_shared<SCNProgram>();
    program->vertexShader = kWideningShader;
    program->fragmentShader = kColorShader;
    program->symbols = {{"a_position", SCNSemantic::vertex},
                        {"a_side", SCNSemantic::normal},
                        {"unused", SCNSemantic::texcoord},
                        {"u_matrix", SCNSemantic::modelViewProjection}};
    auto bindings = std::make_shared<std::map<std::string, SCNBindingHandler>>();
    (*bindings)["u_width"] = [width](UniformWriter& gl, int location) { gl.glUniform1f(location, width); };
    (*bindings)["u_color"] = [color](UniformWriter& gl, int location) {
        gl.glUniform4fv(location, 1, color.data());
    };
    (*bindings)["u_forgotten"] = [](UniformWriter&, int) {
        ADD_FAILURE() << "the program has no such uniform";
    };
    (*bindings)["u_unknown"] = nullptr;
    auto item = itemOf(DrawKind::program, 0);
    item->meshPosition = mesh->origin;
    item->mesh = mesh;
    item->program = program;
    item->bindings = bindings;
    return item;
}

TEST_F(RenderTest, linesOfAnyLengthAreDrawnWholeFarAwayAndWithOrWithoutWideIndices) {
    const Vector3d at{3000000.3, -2000000.7, 0};
    for (const bool has32BitIndices : {true, false}) {
        capabilities.has32BitIndices = has32BitIndices;
        makeRenderer();
        for (const int count : {2, 128, 129, 33000, 50000}) {
            std::vector<Vector3d> line;
            for (int i = 0; i < count; ++i) {
                line.push_back(at + Vector3d{-60 + 120.0 * i / (count - 1), 0.25, 0});
            }
            const auto shown =
                picture(frameOf({bandItem(line, 10, {0, 0, 0, 1})}, cameraAt(at, 40)), 100, 40);
            for (int x = 0; x < 100; ++x) {
                double darkness = 0;
                for (int y = 0; y < 40; ++y) {
                    darkness += 1 - pixelAt(*shown, x, y)[0] / 255.0;
                }
                ASSERT_NEAR(darkness, 10, 0.3) << count << " at " << x;
            }
        }
    }
}

TEST_F(RenderTest, aProgramThatTheDriverRefusesFailsEachFrameThatNeedsItInTheDriversWords) {
    const auto broken = [](const char* fragment) {
        auto item = bandItem({{-9, 0, 0}, {9, 0, 0}}, 6, {0, 0, 0, 1});
        auto program = std::make_shared<SCNProgram>(*item->program);
        program->fragmentShader = fragment;
        item->program = program;
        return item;
    };
    // Of the same vertex shader.
    const auto good = bandItem({{-9, 0, 0}, {9, 0, 0}}, 6, {0, 0, 1, 1});
    const DrawCamera camera = cameraAt({}, 16);
    for (const char* fragment :
         {"#version 100 \nnonsense", "",
          "#version 100 \nvarying lowp vec4 missing; void main() { gl_FragColor = missing; }"}) {
        for (int frame = 0; frame < 2; ++frame) {
            const auto report = renderer->draw(frameOf({broken(fragment), good}, camera), 16, 16);
            ASSERT_FALSE(report);
            EXPECT_GT(report.reason().size(), 60U) << report.reason();
        }
        EXPECT_EQ(pixelAt(*picture(frameOf({good}, camera), 16, 16), 8, 8), (Rgba{0, 0, 255, 255}));
    }
}

TEST_F(RenderTest, aProgramHasMediumPrecisionWhereFragmentsHaveNoOther) {
    EXPECT_EQ(withMediumPrecision("varying highp vec2 highp_place; // highp"),
              "varying mediump vec2 highp_place; // mediump");
    // Does not compile as it is.
    auto line = bandItem({{-9, 0, 0}, {9, 0, 0}}, 9, {0, 0, 0, 1});
    auto program = std::make_shared<SCNProgram>(*line->program);
    program->fragmentShader = "#version 100 \n#define mediump \nuniform highp lowp vec4 u_color; \n"
                              "void main() { gl_FragColor = u_color; }";
    line->program = program;
    capabilities.hasHighPrecision = true;
    makeRenderer();
    EXPECT_FALSE(renderer->draw(frameOf({line}, cameraAt({}, 16)), 16, 16));
    capabilities.hasHighPrecision = false;
    makeRenderer();
    EXPECT_EQ(pixelAt(*picture(frameOf({line}, cameraAt({}, 16)), 16, 16), 8, 8), (Rgba{0, 0, 0, 255}));
}

/// A square of `rows` x `rows` cells around its origin.
std::shared_ptr<const SCNMesh> gridMesh(int rows, double size, Vector3d origin) {
    auto mesh = std::make_shared<SCNMesh>();
    mesh->origin = origin;
    std::vector<std::uint32_t> indices;
    const int side = rows + 1;
    for (int i = 0; i < side * side; ++i) {
        const auto at = [&](int n) { return static_cast<float>(size * n / rows - size / 2); };
        mesh->vertices.insert(mesh->vertices.end(), {at(i % side), at(i / side), 0});
        if (i % side < rows && i / side < rows) {
            const auto n = static_cast<std::uint32_t>(i);
            const auto s = static_cast<std::uint32_t>(side);
            indices.insert(indices.end(), {n, n + 1, n + s, n + 1, n + 1 + s, n + s});
        }
    }
    mesh->indices = indices;
    return mesh;
}

TEST_F(RenderTest, fillsOfEverySizeCoverTheirPlaceOnce) {
    for (const bool has32BitIndices : {true, false}) {
        capabilities.has32BitIndices = has32BitIndices;
        makeRenderer();
        for (const int rows : {1, 20, 100, 320}) {
            const Vector3d origin{900000.5, 700000.25, 0};
            auto item = fillItem(gridMesh(rows, 40, origin), {0, 0, 0, 0.5F}, 1);
            item->opacity = 0.5F;
            const auto shown = picture(frameOf({item}, cameraAt(origin, 60)), 60, 60);
            double darkness = 0;
            for (int i = 0; i < 3600; ++i) {
                const int value = pixelAt(*shown, i % 60, i / 60)[0];
                ASSERT_GE(value, 190) << rows;
                darkness += (255 - value) / 64.0;
            }
            EXPECT_NEAR(darkness, 1600, 10) << rows;
        }
    }
}

TEST_F(RenderTest, neighbouringFillsAreDrawnTogetherInTheirOrderAndEachInItsPlace) {
    // 63,525 vertices, which 16-bit indices reach, and 4.7 times as many.
    for (const auto& [rows, count, calls] : {std::tuple{10, 525, 1}, {54, 99, 5}}) {
        Items items;
        for (int i = 0; i < count; ++i) {
            // Black and white in turn; the last ones stand aside, each its own grey.
            const bool isAside = i >= count - 4;
            const auto value = isAside ? static_cast<float>(i % 4 + 1) * 0.2F : static_cast<float>(i % 2);
            const Vector3d place{isAside ? (i % 4) * 10 - 15.0 : 0, isAside ? 15.0 : 0, 0};
            items.push_back(fillItem(gridMesh(rows, isAside ? 8 : 10, place), {value, value, value, 1},
                                     static_cast<std::uint64_t>(i)));
        }
        const DrawFrame frame = frameOf(items, cameraAt({}, 40), UIColor::redColor());
        EXPECT_EQ(draw(frame, 40, 40).drawCalls, calls);
        const auto shown = picture(frame, 40, 40);
        const int top = (count - 5) % 2 * 255;
        EXPECT_EQ(pixelAt(*shown, 20, 20), (Rgba{top, top, top, 255})) << count;
        for (int i = count - 4; i < count; ++i) {
            const int grey = (i % 4 + 1) * 51;
            EXPECT_EQ(pixelAt(*shown, 5 + i % 4 * 10, 5), (Rgba{grey, grey, grey, 255})) << count;
        }
        // Nothing of one batch is drawn from the vertices of another.
        EXPECT_EQ(pixelsOtherThan({255, 0, 0, 255}, *shown), 100 + 4 * 64) << count;
        items.pop_back();
        EXPECT_EQ(pixelAt(*picture(frameOf(items, frame.camera), 40, 40), 5 + (count - 1) % 4 * 10, 5),
                  (Rgba{255, 255, 255, 255}));
    }
}

TEST_F(RenderTest, indicesThatPointNowhereAreLeftOut) {
    auto mesh = std::make_shared<SCNMesh>(*gridMesh(1, 20, {}));
    mesh->indices = std::vector<std::uint32_t>{0, 1, 900000000, 0, 1, 2, 3};
    auto band = bandItem({{-9, 0, 0}, {9, 0, 0}}, 6, {0, 0, 0, 1});
    band->mesh = mesh;
    const auto shown = picture(frameOf({fillItem(mesh, {0, 0, 0, 1}, 1), band}, cameraAt({}, 40)), 40, 40);
    EXPECT_EQ(pixelAt(*shown, 35, 5), (Rgba{255, 255, 255, 255}));
    EXPECT_EQ(pixelAt(*shown, 14, 25), (Rgba{0, 0, 0, 255}));
}

} // namespace trelmix::render_test::mesh_test
