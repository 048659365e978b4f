#include "Render/RenderFixture.h"
#include "support/TestWindow.h"

#include <algorithm>

namespace trelmix::render_test::overlay_test {

TEST_F(RenderTest, thePictureStandsUprightInAWindowBesideWhatElseIsThere) {
    // Grown beyond every side of the map, tilted: what is drawn past its rectangle would show.
    const auto red = imageItem(plainImage(2, 2, {255, 0, 0, 255}), ground(-99, 0, 99, 99), 1);
    DrawFrame frame =
        frameOf({red, discItem({3, -6, 0}, 8, {0, 0, 0.5F, 0.5F}, 2)}, cameraAt({}, 32, 0.4, 0.2));
    frame.alpha = 0.9;
    const TestWindow window(64, 40);
    for (const int samples : {1, 4}) {
        window.fill(0, 0, 0, 0);
        renderer->setSamples(samples);
        const auto report = renderer->drawInto(frame, {window.framebuffer(), 4, 2, 32, 32});
        ASSERT_TRUE(report) << report.reason();
        EXPECT_EQ(report->samples, std::min(samples, capabilities.maximumSamples));
        EXPECT_EQ(renderer->hasPicture(), report->samples > 1) << "one sample needs no copy";
        const OverlayQuad side{plainImage(4, 4, {0, 64, 0, 128}), {{40, 1}, {20, 10}}};
        renderer->drawImagesTo(window.framebuffer(), 64, 40, {&side, 1});
        EXPECT_EQ(window.pixel(45, 4), (Rgba{0, 64, 0, 128}));
        const auto expected = picture(frame, 32, 32);
        for (int y = 0; y < 40; ++y) {
            for (int x = 0; x < 40; ++x) {
                const bool isMap = x >= 4 && x < 36 && y >= 6 && y < 38;
                const Rgba there = isMap ? pixelAt(*expected, x - 4, y - 6) : Rgba{};
                const Rgba shown = window.pixel(x, y);
                for (std::size_t i = 0; i < 4; ++i) {
                    ASSERT_NEAR(shown[i], there[i], 1) << x << ' ' << y << ' ' << samples;
                }
            }
        }
    }
    EXPECT_FALSE(renderer->drawInto(frame, {window.framebuffer(), 0, 0, 0, 4}));
}

TEST_F(RenderTest, imagesOverThePictureAreSharpAndGoWithTheirImages) {
    draw(frameOf({}, cameraAt({}, 20)), 30, 20);
    const auto label = painted(7, 5, [](int x, int y) {
        return std::array{(x + 7 * y) * 7, 0, 255 - x - 7 * y};
    });
    const std::vector<OverlayQuad> quads{
        {label, {{21, 14}, {7, 5}}}, {nullptr, {{0, 0}, {9, 9}}}, {label, {{kNaN, 0}, {9, 9}}}};
    renderer->drawImages(quads);
    const auto shown = renderer->readBack(2);
    ASSERT_TRUE(shown);
    EXPECT_EQ((*shown)->size(), (CGSize{15, 10}));
    for (int i = 0; i < 35; ++i) {
        EXPECT_EQ(pixelAt(**shown, 21 + i % 7, 14 + i / 7), pixelAt(*label, i % 7, i / 7));
    }
    EXPECT_EQ(pixelAt(**shown, 20, 14), (Rgba{255, 255, 255, 255}));
    EXPECT_GT(renderer->textureBytes(), 0U);
}

} // namespace trelmix::render_test::overlay_test
