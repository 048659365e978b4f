#include "Camera/ReferenceCamera.h"
#include "Render/FrameView.h"
#include "support/CaseCount.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace trelmix {
namespace {

constexpr int kUsualCases = 20000;

Vector3d scenePlaceOf(Coordinate place, const CameraProjection& projection) {
    const WorldMapPoint point = GeoUtils::scenePoint(place);
    const WorldMapPoint origin = projection.initialMapPoint();
    return {point.x - origin.x, origin.y - point.y, 0};
}

/// A pixel's place for a vertex, computed as a vertex shader does it: in floats.
std::array<double, 2> pixelOf(const std::array<float, 16>& m, const std::array<float, 3>& v, int width,
                              int height) {
    const auto row = [&](std::size_t i) {
        return m[i] * v[0] + m[4 + i] * v[1] + m[8 + i] * v[2] + m[12 + i];
    };
    return {(row(0) / row(3) + 1.0) * 0.5 * width, (row(1) / row(3) + 1.0) * 0.5 * height};
}

/// How far the vertices of one frame are from where the reference sees them.
struct Errors {
    double frameVertices = 0;
    double meshVertices = 0;
};

Errors errorsAt(RandomCamera& c, const CameraProjection& projection, FrameView& view,
                std::mt19937_64& random) {
    const int width = static_cast<int>(c.size.x), height = static_cast<int>(c.size.y);
    const ReferenceCamera reference(c);
    const DrawCamera camera{projection.exactCameraPosition(), {c.pose.viewingAngle, 0, c.pose.rotation}, {}};
    view.update(camera, width, height, true);
    EXPECT_TRUE(view.isFinite());
    Errors worst;
    std::uniform_real_distribution<double> share(0, 1);
    for (int i = 0; i < 4; ++i) {
        const auto ground = reference.groundUnder({share(random) * width, share(random) * height});
        const Coordinate place{static_cast<double>(ground[0]), static_cast<double>(ground[1])};
        const auto seen = reference.screenPointOf(place);
        const Vector3d vertex = scenePlaceOf(place, projection);
        const auto errorOf = [&](const std::array<double, 2>& pixel) {
            return std::hypot(pixel[0] - static_cast<double>(seen[0]),
                              pixel[1] - static_cast<double>(seen[1]));
        };
        worst.frameVertices = std::max(worst.frameVertices,
                                       errorOf(pixelOf(view.matrix(), view.relative(vertex), width, height)));
        // A mesh keeps its vertices relative to a place of its own, up to a view's width away.
        const double reach = projection.frame().distance() * projection.mapPointsPerMeterMax();
        const Vector3d origin =
            vertex + Vector3d{(share(random) - 0.5) * reach, (share(random) - 0.5) * reach, 0};
        const std::array<float, 3> relative{static_cast<float>(vertex.x - origin.x),
                                            static_cast<float>(vertex.y - origin.y), 0};
        worst.meshVertices =
            std::max(worst.meshVertices, errorOf(pixelOf(view.matrixFor(origin), relative, width, height)));
    }
    return worst;
}

TEST(VertexProperty, verticesInFloatsStandWhereAnIndependentComputationSeesThem) {
    std::mt19937_64 random(4);
    std::normal_distribution<double> step(0, 1);
    Errors worst;
    for (int i = 0; i < caseCount(kUsualCases); i += 4) {
        RandomCamera c(random);
        c.size = {std::floor(c.size.x), std::floor(c.size.y)};
        CameraProjection projection(c.origin, c.size);
        FrameView view;
        // It walks, so that the vertices' origin stays behind.
        for (int walked = 0; walked < 4; ++walked) {
            c.applyTo(projection);
            const Errors errors = errorsAt(c, projection, view, random);
            worst = {std::max(worst.frameVertices, errors.frameVertices),
                     std::max(worst.meshVertices, errors.meshVertices)};
            const double stride = 30 * projection.frame().distance() * projection.mapPointsPerMeterMax();
            c.pose.target = {c.pose.target.x + step(random) * stride,
                             c.pose.target.y + step(random) * stride};
            c.target = GeoUtils::coordinateOfScenePoint(c.pose.target);
            c.pose.latitude = c.target.lat;
        }
    }
    EXPECT_LT(worst.frameVertices, 0.05) << "pixels";
    EXPECT_LT(worst.meshVertices, 0.05) << "pixels";
    RecordProperty("worstFrameVertices", std::to_string(worst.frameVertices));
    RecordProperty("worstMeshVertices", std::to_string(worst.meshVertices));
}

} // namespace
} // namespace trelmix
