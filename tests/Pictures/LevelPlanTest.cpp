#include "Pictures/Stage.h"

#include <gtest/gtest.h>

using namespace trelmix;
using namespace trelmix::pictures;

namespace {

constexpr Rgb kQuarters[] = {{255, 0, 0}, {0, 128, 0}, {0, 0, 255}, {255, 128, 0}};

/// Top left, top right, bottom left, bottom right in colours of their own.
std::shared_ptr<const UIImage> quarters(int width, int height) {
    return painted(width, height, [&](int x, int y) {
        return kQuarters[(x < width / 2 ? 0 : 1) + (y < height / 2 ? 0 : 2)];
    });
}

const CLLocationCoordinate2D kSouthWest = metresFrom(kPlace, -60, -35);
const CLLocationCoordinate2D kNorthEast = metresFrom(kPlace, 60, 35);

/// A place on the plan, fractions of its size from the top left, seen on screen: the rectangle has the length
/// of its northern and western edge, measured on the ground, and turns about its centre towards the north.
CGPoint planPoint(const Stage& stage, double u, double v, double turn) {
    constexpr int zoom = 22;
    const CLLocationCoordinate2D middle{(kSouthWest.latitude + kNorthEast.latitude) / 2,
                                        (kSouthWest.longitude + kNorthEast.longitude) / 2};
    // Of the ground, at the plan's middle.
    const double perRadian =
        256 * std::ldexp(1.0, zoom) / (360 * kDegree) / std::cos(middle.latitude * kDegree);
    const double half = (kNorthEast.longitude - kSouthWest.longitude) / 2 * kDegree;
    const double width = 2 * std::asin(std::cos(kNorthEast.latitude * kDegree) * std::sin(half)) * perRadian;
    const double height = (kNorthEast.latitude - kSouthWest.latitude) * kDegree * perRadian;
    const double x = (u - 0.5) * width, y = (v - 0.5) * height, c = std::cos(turn * kDegree);
    const double s = std::sin(turn * kDegree);
    const MapPixel centre = mapPixel(middle, zoom);
    return stage.project(coordinateOf({centre.x + x * c + y * s, centre.y - x * s + y * c}, zoom));
}

std::shared_ptr<TrelmixLevelPlanNode> plan(std::shared_ptr<const UIImage> image) {
    return TrelmixMapEngineFactory::createLevelPlanNodeWith(std::move(image), kSouthWest, kNorthEast);
}

} // namespace

TEST(LevelPlan, coversTheTilesInEveryPixelBetweenItsProjectedCorners) {
    Stage stage({});
    constexpr Rgb tiles{0, 255, 255};
    stage.addTiles(std::make_shared<TilePainter>(
        [&](std::int64_t, std::int64_t) { return plainImage(256, 256, tiles); }));
    const auto node = stage.add(plan(quarters(500, 300)));
    for (const auto& [turn, rotation, tilt] : {std::tuple{0.0, 0.0, 0.0},
                                               {30.0, 0.0, 0.0},
                                               {0.0, 37.0, 55.0},
                                               {-65.0, 123.0, 55.0},
                                               {200.0, 270.0, 30.0}}) {
        const Look look{rotation, tilt, 18.2F};
        SCOPED_TRACE(testing::Message() << look << " plan turned by " << turn);
        node->setLevelPlanRotation(turn);
        stage.look(look);
        const Picture picture = stage.draw();
        const Outline outline{planPoint(stage, 0, 0, turn), planPoint(stage, 1, 0, turn),
                              planPoint(stage, 1, 1, turn), planPoint(stage, 0, 1, turn)};
        const Window window = windowAround(outline, 4, 800, 600);
        int wrong = 0;
        for (int y = window.top; y < window.bottom; ++y) {
            for (int x = window.left; x < window.right; ++x) {
                const Rgb color = picture.at(x, y);
                // Half a pixel for the edge's own blending and half a pixel of tolerance.
                const double depth = depthInside(outline, {x + 0.5, y + 0.5});
                wrong += (depth < -1 && color != tiles) || (depth > 1 && color[1] > 200);
            }
        }
        for (std::size_t i = 0; i < 4; ++i) {
            const CGPoint middle = planPoint(stage, i % 2 == 0 ? 0.25 : 0.75, i < 2 ? 0.25 : 0.75, turn);
            EXPECT_EQ(picture.at(static_cast<int>(middle.x), static_cast<int>(middle.y)), kQuarters[i]) << i;
        }
        EXPECT_EQ(wrong, 0);
        if (HasFailure()) {
            picture.save("level-plan.png");
            return;
        }
    }
}
