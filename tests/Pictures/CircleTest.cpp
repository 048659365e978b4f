#include "Pictures/Stage.h"

#include <gtest/gtest.h>

using namespace trelmix;
using namespace trelmix::pictures;

namespace {

struct Disc {
    double east; ///< metres from the target
    double north;
    double radius; ///< metres
    UIColor color;
};

// At zoom 18 a pixel of the target takes 0.34 m; the discs are 12 to 80 pixels wide and nowhere touch.
constexpr Disc kDiscs[] = {
    {0, 0, 13.7, {1, 0, 0, 1}},        {58, 4, 9.2, {0, 0, 1, 1}},    {-50, 21, 11.3, {0, 0.5, 0, 1}},
    {17, 55, 7.9, {0.6, 0, 0.6, 1}},   {-21, -51, 8.6, {0, 0, 0, 1}}, {38, -42, 5.1, {1, 0.5, 0, 1}},
    {-62, -34, 2.1, {0, 0.5, 0.5, 1}},
};

Outline projectedCircle(const Stage& stage, CLLocationCoordinate2D centre, double radius) {
    Outline outline;
    for (int i = 0; i < 720; ++i) {
        const double bearing = i * 0.5 * kDegree;
        outline.push_back(
            stage.project(metresFrom(centre, radius * std::sin(bearing), radius * std::cos(bearing))));
    }
    return outline;
}

} // namespace

TEST(Circles, lieWithinHalfAPixelOfTheirProjectedEllipseAndHaveItsArea) {
    for (const int samples : {1, 4}) {
        OffscreenHost::Options options;
        options.samples = samples;
        Stage stage({}, options);
        for (const Disc& disc : kDiscs) {
            stage
                .add(TrelmixMapEngineFactory::createMapCircleWithCoordinate(
                    metresFrom(kPlace, disc.east, disc.north), disc.radius))
                ->setColor(disc.color);
        }
        for (const double tilt : {0.0, 30.0, 55.0}) {
            for (const double rotation : {0.0, 37.0, 123.0, 270.0}) {
                const Look look{rotation, tilt};
                stage.look(look);
                const Picture picture = stage.draw();
                for (const Disc& disc : kDiscs) {
                    SCOPED_TRACE(testing::Message()
                                 << look << " radius " << disc.radius << " samples " << samples);
                    const Outline outline =
                        projectedCircle(stage, metresFrom(kPlace, disc.east, disc.north), disc.radius);
                    const Blob expected = blobOf(outline);
                    const Blob drawn =
                        blobIn(picture, windowAround(outline, 3, 800, 600), rgb(disc.color), {255, 255, 255});
                    EXPECT_NEAR(drawn.centre.x, expected.centre.x, 0.5);
                    EXPECT_NEAR(drawn.centre.y, expected.centre.y, 0.5);
                    EXPECT_NEAR(drawn.area / expected.area, 1, 0.03);
                }
                if (HasFailure()) {
                    picture.save("circles.png");
                    return;
                }
            }
        }
    }
}
