#include "Render/RenderFixture.h"

#include <algorithm>

namespace trelmix::render_test {
namespace {

TEST_F(RenderTest, anImageOfThePicturesSizeComesBackTexelForTexel) {
    std::vector<std::uint8_t> pixels;
    for (int i = 0; i < 64 * 48; ++i) {
        pixels.insert(pixels.end(),
                      {static_cast<std::uint8_t>(i % 251), static_cast<std::uint8_t>(i / 64 * 5),
                       static_cast<std::uint8_t>(i * 7 % 256), 255});
    }
    const auto image = UIImage::withPixels(64, 48, pixels);
    for (const bool usesLevels : {false, true}) {
        const auto shown = picture(
            frameOf({imageItem(image, ground(-32, -24, 32, 24), 1, usesLevels)}, cameraAt({}, 48)), 64, 48);
        EXPECT_TRUE(std::ranges::equal(shown->pixels(), image->pixels())) << usesLevels;
    }
}

} // namespace
} // namespace trelmix::render_test
