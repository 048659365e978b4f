#include "Pictures/Picture.h"
#include "Render/RenderFixture.h"

#include <cmath>

namespace trelmix::render_test::disc_test {

using pictures::Blob;

Blob blobIn(const std::shared_ptr<const UIImage>& shown) {
    return pictures::blobIn(pictures::Picture(shown), {0, 0, shown->pixelWidth(), shown->pixelHeight()},
                            {0, 0, 0}, {255, 255, 255});
}

/// Of the polygon through the projections of points on the rim.
Blob projectedRim(const DrawCamera& camera, Vector3d centre, double radius, int width, int height) {
    pictures::Outline rim;
    for (int i = 0; i < 720; ++i) {
        const double angle = std::numbers::pi * i / 360;
        rim.push_back(projected(
            camera, centre + Vector3d{std::cos(angle) * radius, std::sin(angle) * radius, 0}, width, height));
    }
    return pictures::blobOf(rim);
}

struct DiscCase {
    double radius, tilt;
    double rotation, unitsPerPixel;
};

TEST_F(RenderTest, discsHaveThePlaceAndTheAreaOfTheirProjectionWithAndWithoutSamples) {
    for (const int samples : {1, 4}) {
        makeRenderer(withOption(&Renderer::Options::samples, samples));
        for (const DiscCase& c :
             {DiscCase{0.6, 0, 0, 1}, DiscCase{1.3, 0, 0, 1}, DiscCase{2, 30, 37, 1}, DiscCase{5, 55, 123, 1},
              DiscCase{40, 55, 270, 1}, DiscCase{45, 30, 37, 0.7}, DiscCase{3000, 55, 37, 60}}) {
            SCOPED_TRACE(testing::Message() << c.radius << " tilt " << c.tilt << " samples " << samples);
            const DrawCamera camera =
                cameraAt({}, 200, c.tilt * kDegree, c.rotation * kDegree, c.unitsPerPixel);
            const Vector3d centre{7.3 * c.unitsPerPixel, -11.6 * c.unitsPerPixel, 0.05};
            const auto shown = picture(frameOf({discItem(centre, c.radius, {0, 0, 0, 1})}, camera), 260, 200);
            const Blob drawn = blobIn(shown);
            const Blob expected = projectedRim(camera, centre, c.radius, 260, 200);
            EXPECT_NEAR(drawn.area / expected.area, 1, 0.03);
            EXPECT_NEAR(drawn.centre.x, expected.centre.x, 0.15);
            EXPECT_NEAR(drawn.centre.y, expected.centre.y, 0.15);
        }
    }
}

TEST_F(RenderTest, theRimOfAHugeDiscIsSmoothAndInItsPlace) {
    constexpr double kRadius = 300000;
    const DrawCamera camera = cameraAt({kRadius, 0, 0}, 100);
    const auto shown = picture(frameOf({discItem({}, kRadius, {0, 0, 0, 1})}, camera), 100, 100);
    for (const int y : {3, 50, 96}) {
        double covered = 0;
        for (int x = 0; x < 100; ++x) {
            covered += 1 - pixelAt(*shown, x, y)[0] / 255.0;
        }
        EXPECT_NEAR(covered, 50, 0.25);
    }
}

TEST_F(RenderTest, aTranslucentDiscBlendsOnceAndItsEdgeHasManyGreys) {
    makeRenderer(withOption(&Renderer::Options::samples, 1));
    auto disc = discItem({}, 40, {0, 0, 0, 0.5F});
    disc->opacity = 0.5F;
    const auto shown = picture(frameOf({disc}, cameraAt({}, 100)), 100, 100);
    EXPECT_NEAR(pixelAt(*shown, 50, 50)[0], 191, 1);
    EXPECT_GT(levelsIn(*shown).size(), 16U);
}

TEST_F(RenderTest, discsBeyondWhatNarrowIndicesReachStandInTheirPlaces) {
    capabilities.has32BitIndices = false;
    makeRenderer({});
    Items discs;
    for (std::uint64_t i = 0; i < 20000; ++i) {
        discs.push_back(discItem({i < 19999 ? -20.0 : 20.0, 0, 0}, 5, {0, 0, 0, 1}, i));
    }
    const auto shown = picture(frameOf(discs, cameraAt({}, 100)), 100, 100);
    EXPECT_EQ(pixelAt(*shown, 30, 50)[0], 0);
    EXPECT_EQ(pixelAt(*shown, 70, 50)[0], 0);
    EXPECT_EQ(pixelAt(*shown, 50, 50)[0], 255);
}

} // namespace trelmix::render_test::disc_test
