#include "Overlays/LineMesh.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace trelmix::line_mesh_test {

using Floats = std::vector<float>;

std::shared_ptr<const SCNMesh> meshOf(const std::vector<LineVector>& points) {
    const auto mesh = LineMesh::between(points);
    return mesh ? mesh->data({}) : nullptr;
}

/// How far the shader moves each vertex for a width of 2, and in which direction.
std::vector<LineVector> offsets(const SCNMesh& mesh) {
    std::vector<LineVector> result;
    for (std::size_t i = 0; i < mesh.vertexCount(); ++i) {
        const float nx = mesh.normals[3 * i], ny = mesh.normals[3 * i + 1], n = std::hypot(nx, ny);
        const LineVector miter{-mesh.tangents[3 * i + 1], mesh.tangents[3 * i]};
        const float length = 1.0F / ((miter.x * nx + miter.y * ny) / n);
        result.push_back({miter.x * length, miter.y * length});
    }
    return result;
}

TEST(LineMesh, twoPointsGiveABandOfTwoTriangles) {
    const auto mesh = meshOf({{0, 0}, {10, 0}});
    EXPECT_EQ(mesh->vertices, (Floats{0, 0, 0, 0, 0, 0, 10, 0, 0, 10, 0, 0}));
    EXPECT_EQ(mesh->normals, (Floats{0, -10, 0, 0, 10, 0, 0, -10, 0, 0, 10, 0}));
    EXPECT_EQ(mesh->tangents, (Floats{1, 0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 0}));
    EXPECT_EQ(std::get<0>(mesh->indices), (std::vector<std::uint8_t>{1, 0, 2, 1, 2, 3}));
}

TEST(LineMesh, aCornerIsMiteredAndTheSharpestThatIsLeftToo) {
    const auto corner = meshOf({{0, 0}, {10, 0}, {10, 10}});
    EXPECT_EQ(corner->vertexCount(), 6U);
    EXPECT_EQ(corner->indexCount(), 12U);
    const auto moved = offsets(*corner);
    EXPECT_NEAR(std::hypot(moved[2].x, moved[2].y), std::sqrt(2.0), 1e-5);
    EXPECT_NEAR(moved[2].x, 1, 1e-5); // to the right of the way: outwards
    EXPECT_NEAR(moved[3].x, -1, 1e-5);
    // What the clean-up of vertices leaves: 23 half widths.
    const float turn = 174.9F * 0.017453292F;
    const auto sharp = meshOf({{0, 0}, {10, 0}, {10 + 10 * std::cos(turn), 10 * std::sin(turn)}});
    EXPECT_NEAR(std::hypot(offsets(*sharp)[2].x, offsets(*sharp)[2].y), 22.47, 0.05);
}

TEST(LineMesh, nothingThatPointsAreGivenAsMakesItSpike) {
    constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    const std::vector<std::vector<LineVector>> lists{{{0, 0}, {0, 0}, {10, 0}, {10, 0}},
                                                     {{0, 0}, {10, 0}, {0, 0}},
                                                     {{0, 0}, {10, 0}, {0, 1e-4F}, {10, 0}},
                                                     {{0, 0}, {kNan, 0}, {10, 0}},
                                                     {{0, 0}, {1e8F, 0}, {1e8F, kInfinity}, {5, 5}},
                                                     {{1e8F, 0}, {1e8F + 8, 0}, {1e8F, 8}, {1e8F + 8, 0}}};
    for (const auto& list : lists) {
        const auto mesh = meshOf(list);
        ASSERT_TRUE(mesh);
        for (const LineVector& offset : offsets(*mesh)) {
            EXPECT_LE(std::hypot(offset.x, offset.y), 25.1F);
        }
    }
    EXPECT_EQ(meshOf({}), nullptr);
    EXPECT_EQ(meshOf({{3, 3}}), nullptr);
    EXPECT_EQ(meshOf({{3, 3}, {3, 3}, {3.0005F, 3}}), nullptr);
}

TEST(LineMesh, aFullReversalEndsTheBandAndStartsAnew) {
    const auto mesh = meshOf({{0, 0}, {10, 0}, {0, 0}});
    EXPECT_EQ(mesh->vertexCount(), 8U);
    EXPECT_EQ(std::get<0>(mesh->indices), (std::vector<std::uint8_t>{1, 0, 2, 1, 2, 3, 5, 4, 6, 5, 6, 7}));
}

} // namespace trelmix::line_mesh_test
