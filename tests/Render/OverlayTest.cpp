#include "Render/RenderFixture.h"
#include "support/TestWindow.h"

#include <limits>

namespace trelmix::render_test {
namespace {

TEST_F(RenderTest, thePictureStandsUprightInAWindowBesideWhatElseIsThere) {
    const auto red = plainImage(2, 2, {255, 0, 0, 255});
    draw(frameOf({imageItem(red, ground(-20, 0, 20, 20), 1)}, cameraAt({}, 32)), 32, 32);
    const TestWindow window(64, 40);
    window.fill(0, 0, 0, 0);
    renderer->blitTo(window.framebuffer(), 4, 2, 32, 32);
    const OverlayQuad side{plainImage(4, 4, {0, 64, 0, 128}), {{40, 1}, {20, 10}}};
    renderer->drawImagesTo(window.framebuffer(), 64, 40, {&side, 1});
    EXPECT_EQ(window.pixel(20, 9), (Rgba{255, 0, 0, 255}));
    EXPECT_EQ(window.pixel(20, 33), (Rgba{255, 255, 255, 255}));
    EXPECT_EQ(window.pixel(2, 9), (Rgba{0, 0, 0, 0}));
    EXPECT_EQ(window.pixel(45, 4), (Rgba{0, 64, 0, 128}));
    EXPECT_EQ(window.pixel(45, 14), (Rgba{0, 0, 0, 0}));
}

TEST_F(RenderTest, imagesOverThePictureAreSharpAndGoWithTheirImages) {
    draw(frameOf({}, cameraAt({}, 20)), 30, 20);
    std::vector<std::uint8_t> pixels;
    for (int i = 0; i < 35; ++i) {
        pixels.insert(pixels.end(),
                      {static_cast<std::uint8_t>(i * 7), 0, static_cast<std::uint8_t>(255 - i), 255});
    }
    auto label = UIImage::withPixels(7, 5, pixels);
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const std::vector<OverlayQuad> quads{
        {label, {{21, 14}, {7, 5}}}, {nullptr, {{0, 0}, {9, 9}}}, {label, {{nan, 0}, {9, 9}}}};
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

} // namespace
} // namespace trelmix::render_test
