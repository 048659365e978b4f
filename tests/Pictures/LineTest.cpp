#include "Pictures/Stage.h"

#include <gtest/gtest.h>

using namespace trelmix;
using namespace trelmix::pictures;

namespace {

constexpr Rgb kBlack{0, 0, 0}, kWhite{255, 255, 255};

/// Through the target, as seen at the angle from the picture's x axis (clockwise), 300 points to each side.
std::shared_ptr<TrelmixMapPolyline> lineAt(const Stage& stage, double angle, float width) {
    const double x = 300 * std::cos(angle * kDegree), y = 250 * std::sin(angle * kDegree);
    auto line = TrelmixMapEngineFactory::createMapPolylineWithVertices(
        {CLLocation(stage.ground({400 - x, 300 - y})), CLLocation(stage.ground({400 + x, 300 + y}))});
    line->setColor(UIColor::blackColor());
    line->setWidth(width);
    return line;
}

/// Mean width of what is covered around the middle of the picture, across a line from `from` to `to`.
double widthAcross(const Picture& picture, CGPoint from, CGPoint to) {
    const double dx = to.x - from.x, dy = to.y - from.y;
    const bool isFlat = std::abs(dx) > std::abs(dy);
    const int reach = 24;
    Window window{400 - reach, 0, 400 + reach, 600};
    if (!isFlat) {
        window = {0, 300 - reach, 800, 300 + reach};
    }
    const double covered = blobIn(picture, window, kBlack, kWhite).area / (2 * reach);
    return covered * std::max(std::abs(dx), std::abs(dy)) / std::hypot(dx, dy);
}

double drawnWidth(Stage& stage, double angle, float width) {
    const auto line = stage.add(lineAt(stage, angle, width));
    const auto vertices = line->polylineVertices();
    const Picture picture = stage.draw();
    const double drawn = widthAcross(picture, stage.project(vertices.front().coordinate()),
                                     stage.project(vertices.back().coordinate()));
    line->setMap(nullptr);
    return drawn;
}

} // namespace

TEST(Lines, areAsWideAsAskedAtEveryZoom) {
    for (const int samples : {1, 4}) {
        OffscreenHost::Options options;
        options.samples = samples;
        Stage stage({}, options);
        for (const float zoom : {15.0F, 18.3F, 23.0F}) {
            stage.look({20, 0, zoom});
            for (const double angle : {0.0, 23.0, 45.0, 90.0, 151.0}) {
                for (const float width : {2.0F, 5.0F, 13.0F}) {
                    EXPECT_NEAR(drawnWidth(stage, angle, width), width,
                                samples == 4 ? edgeTolerance(0.35) : 0.5)
                        << "zoom " << zoom << " angle " << angle << " samples " << samples;
                }
            }
        }
    }
}

TEST(Lines, lieOnTheGroundOfATiltedView) {
    Stage stage({});
    for (const float zoom : {15.0F, 18.3F, 23.0F}) {
        for (const double tilt : {30.0, 55.0}) {
            SCOPED_TRACE(testing::Message() << "zoom " << zoom << " tilt " << tilt);
            stage.look({123, tilt, zoom});
            for (const float width : {5.0F, 13.0F}) {
                EXPECT_NEAR(drawnWidth(stage, 90, width), width, edgeTolerance(0.35)) << "into the picture";
                EXPECT_NEAR(drawnWidth(stage, 0, width), width * std::cos(tilt * kDegree),
                            edgeTolerance(0.35))
                    << "across it";
            }
        }
    }
}
