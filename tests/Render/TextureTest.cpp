#include "Render/RenderFixture.h"

#include <algorithm>
#include <cmath>

namespace trelmix::render_test::texture_test {

/// Coloured waves with fine and coarse detail in a black frame.
std::shared_ptr<const UIImage> waves(int width, int height) {
    return painted(width, height, [&](int x, int y) {
        const bool isFrame = std::min({x, y, width - 1 - x, height - 1 - y}) < 12;
        const auto wave = [&](double f) {
            return isFrame ? 0 : std::lround(127.5 + 127 * std::sin(x / f) * std::cos(y / (f * 1.3)));
        };
        return std::array{wave(3), wave(11), wave(60)};
    });
}

TEST_F(RenderTest, anImageBeyondTheLimitLooksAsItDoesInOnePiece) {
    const auto image = waves(704, 320);
    for (const bool usesLevels : {true, false}) {
        for (const double unitsPerPixel : {0.4, 1.0, 3.3, 9.0}) {
            const DrawFrame frame =
                frameOf({imageItem(image, ground(-352, -160, 352, 160), 1, usesLevels)},
                        cameraAt({}, 200, 0.6, 0.3, unitsPerPixel), UIColor::blackColor());
            makeRenderer();
            const auto whole = picture(frame, 300, 200);
            makeRenderer(withOption(&Renderer::Options::maximumTextureSize, 128));
            const auto parts = picture(frame, 300, 200);
            EXPECT_GT(draw(frame, 300, 200).drawCalls, 1);
            double sum = 0;
            for (std::size_t i = 0; i < whole->pixels().size(); ++i) {
                sum += std::abs(int{whole->pixels()[i]} - int{parts->pixels()[i]});
            }
            EXPECT_LE(largestDifference(whole->pixels(), parts->pixels()), unitsPerPixel > 5 ? 24 : 6)
                << unitsPerPixel << " levels " << usesLevels;
            EXPECT_LT(sum / static_cast<double>(whole->pixels().size()), 0.3) << unitsPerPixel;
        }
    }
}

TEST_F(RenderTest, imagesOfAnySizeWorkWithoutTheExtensionForIt) {
    capabilities.hasLevelsOfAnySize = false;
    makeRenderer();
    const auto image = imageItem(waves(97, 41), ground(-50, -50, 50, 50), 1, true);
    const auto shown = picture(frameOf({image}, cameraAt({}, 32)), 32, 32);
    EXPECT_NE(pixelAt(*shown, 16, 16), (Rgba{255, 255, 255, 255}));
}

TEST_F(RenderTest, texturesGoWithTheNodesThatShowThem) {
    const auto all = ground(-9, -9, 9, 9);
    auto tile = waves(256, 256);
    const auto icon = plainImage(32, 32, {255, 0, 0, 255});
    const DrawCamera camera = cameraAt({}, 32);
    EXPECT_EQ(renderer->textureBytes(), 0U);
    draw(frameOf({imageItem(tile, all, 1, true), imageItem(tile, all, 2, true), imageItem(icon, all, 3)},
                 camera),
         32, 32);
    const std::size_t both = renderer->textureBytes();
    // The node is another, the image is not: nothing is uploaded again.
    EXPECT_EQ(
        draw(frameOf({imageItem(tile, all, 7, true), imageItem(icon, all, 9)}, camera), 32, 32).uploadedBytes,
        0U);
    EXPECT_EQ(renderer->textureBytes(), both);
    draw(frameOf({imageItem(icon, all, 9)}, camera), 32, 32);
    EXPECT_LT(renderer->textureBytes(), both);
    draw(frameOf({}, camera), 32, 32);
    EXPECT_EQ(renderer->textureBytes(), 0U);
    std::weak_ptr<const UIImage> gone = tile;
    tile.reset();
    EXPECT_TRUE(gone.expired());
}

TEST_F(RenderTest, uploadsAreSpreadOverFramesAndTheRestIsDrawnMeanwhile) {
    makeRenderer(withOption(&Renderer::Options::uploadSecondsPerFrame, 0.0));
    const auto all = ground(-9, -9, 9, 9);
    const DrawFrame frame = frameOf({imageItem(plainImage(300, 300, {255, 0, 0, 255}), all, 1, true),
                                     imageItem(plainImage(1000, 1000, {0, 0, 255, 255}), all, 2, true)},
                                    cameraAt({}, 8));
    FrameReport report = draw(frame, 8, 8);
    EXPECT_EQ(report.uploadsLeft, 1);
    EXPECT_EQ(pixelAt(**renderer->readBack(1), 4, 4), (Rgba{255, 0, 0, 255}));
    int frames = 1;
    while (report.uploadsLeft > 0 && frames < 20) {
        report = draw(frame, 8, 8);
        ++frames;
    }
    EXPECT_GT(frames, 4); // the large one comes in pieces of a megabyte
    EXPECT_LT(frames, 20);
    EXPECT_EQ(pixelAt(**renderer->readBack(1), 4, 4), (Rgba{0, 0, 255, 255}));
    EXPECT_EQ(draw(frame, 8, 8).uploadedBytes, 0U);
}

TEST_F(RenderTest, whatIsInViewIsUploadedFirst) {
    makeRenderer(withOption(&Renderer::Options::uploadSecondsPerFrame, 0.0));
    const auto red = plainImage(300, 300, {255, 0, 0, 255});
    const auto blue = plainImage(300, 300, {0, 0, 255, 255});
    const Items items{imageItem(red, ground(500, 500, 510, 510), 1, true),
                      imageItem(blue, ground(-9, -9, 9, 9), 2, true)};
    FrameReport report = draw(frameOf(items, cameraAt({}, 8)), 8, 8);
    EXPECT_EQ(pixelAt(**renderer->readBack(1), 4, 4), (Rgba{0, 0, 255, 255}));
    // The other waits for a frame that is drawn for another reason.
    EXPECT_EQ(report.uploadsLeft, 0);
    EXPECT_GT(draw(frameOf(items, cameraAt({}, 8)), 8, 8).uploadedBytes, 0U);
    report = draw(frameOf(items, cameraAt({505, 505, 0}, 8)), 8, 8);
    EXPECT_EQ(report.uploadedBytes, 0U);
    EXPECT_EQ(pixelAt(**renderer->readBack(1), 4, 4), (Rgba{255, 0, 0, 255}));
}

} // namespace trelmix::render_test::texture_test
