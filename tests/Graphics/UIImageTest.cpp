#include "support/Pixels.h"

#include <Trelmix/Platform/UIColor.h>
#include <Trelmix/Platform/UIImage.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <thread>
#include <vector>

namespace trelmix::ui_image_test {

using Samples = std::vector<std::uint8_t>;

Samples noise(int width, int height) {
    std::minstd_rand random;
    Samples samples(static_cast<std::size_t>(width * height) * 4);
    for (std::size_t i = 0; i < samples.size(); i += 4) {
        samples[i + 3] = static_cast<std::uint8_t>(random() % 256);
        for (std::size_t c = i; c < i + 3; ++c) {
            samples[c] = static_cast<std::uint8_t>(random() % (samples[i + 3] + 1U));
        }
    }
    return samples;
}

/// The mean of the source over [x0, x1) x [y0, y1), whose borders may cut pixels.
double areaMean(const Samples& source, int width, int channel, double x0, double x1, double y0, double y1) {
    double sum = 0;
    for (int y = static_cast<int>(y0); y < y1 - 1e-9; ++y) {
        for (int x = static_cast<int>(x0); x < x1 - 1e-9; ++x) {
            const double part = (std::min(x1, x + 1.0) - std::max(x0, static_cast<double>(x))) *
                                (std::min(y1, y + 1.0) - std::max(y0, static_cast<double>(y)));
            sum += part * source[static_cast<std::size_t>((y * width + x) * 4 + channel)];
        }
    }
    return sum / ((x1 - x0) * (y1 - y0));
}

TEST(UIImage, everyPixelOfALevelIsTheMeanOfTheAreaItCovers) {
    const int sizes[][2] = {{16, 8}, {7, 5}, {6, 5}, {9, 1}, {1, 2}, {1, 1}, {3, 64}};
    for (const auto& [startWidth, startHeight] : sizes) {
        int width = startWidth, height = startHeight;
        const auto image = UIImage::withPixels(width, height, noise(width, height));
        const auto levels = image->levels();
        for (std::size_t level = 1; level < levels.size(); ++level) {
            const Samples above(levels[level - 1].begin(), levels[level - 1].end());
            const int smallWidth = std::max(width / 2, 1), smallHeight = std::max(height / 2, 1);
            ASSERT_EQ(levels[level].size(), static_cast<std::size_t>(smallWidth * smallHeight * 4));
            const double stepX = static_cast<double>(width) / smallWidth;
            const double stepY = static_cast<double>(height) / smallHeight;
            for (int i = 0; i < smallWidth * smallHeight * 4; ++i) {
                const int x = i / 4 % smallWidth, y = i / 4 / smallWidth;
                const double mean =
                    areaMean(above, width, i % 4, x * stepX, (x + 1) * stepX, y * stepY, (y + 1) * stepY);
                ASSERT_LE(std::abs(levels[level][static_cast<std::size_t>(i)] - mean), 0.5 + 1e-9)
                    << startWidth << " x " << startHeight << " level " << level << " at " << i;
            }
            width = smallWidth;
            height = smallHeight;
        }
        EXPECT_EQ(width * height, 1);
    }
}

TEST(UIImage, levelsAreMadeOnceWhenManyThreadsAsk) {
    const auto image = UIImage::withPixels(256, 256, Samples(256 * 256 * 4, 200));
    const std::size_t before = image->byteCount();
    std::vector<const std::uint8_t*> seen(4);
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < seen.size(); ++i) {
        threads.emplace_back([&, i] { seen[i] = image->levels()[3].data(); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(std::count(seen.begin(), seen.end(), seen[0]), 4);
    EXPECT_EQ(image->levels().size(), 9U);
    EXPECT_EQ(image->byteCount() - before, (before - 4) / 3);
}

TEST(UIImage, everyPremultipliedPixelSurvivesThePngFile) {
    // All pairs of a colour and an alpha that is not below it.
    Samples all;
    for (int alpha = 0; alpha < 256; ++alpha) {
        for (int color = 0; color < 256; ++color) {
            const auto value = static_cast<std::uint8_t>(std::min(color, alpha));
            all.insert(all.end(), {value, static_cast<std::uint8_t>(alpha - value), 0,
                                   static_cast<std::uint8_t>(alpha)});
        }
    }
    const auto image = UIImage::withPixels(256, 256, all);
    const auto back = UIImage::withData(image->pngData());
    ASSERT_TRUE(back);
    EXPECT_EQ(Samples(back->pixels().begin(), back->pixels().end()), all);
    EXPECT_FALSE(back->isOpaque());

    Samples opaque(33 * 7 * 4, 255);
    opaque[5] = 17;
    const auto opaqueBack = UIImage::withData(UIImage::withPixels(33, 7, opaque)->pngData());
    ASSERT_TRUE(opaqueBack);
    EXPECT_EQ(Samples(opaqueBack->pixels().begin(), opaqueBack->pixels().end()), opaque);
    EXPECT_TRUE(opaqueBack->isOpaque());
}

TEST(UIImage, lossyFilesComeBackCloseAndJpegLiesOnWhite) {
    const int side = 64;
    Samples sheer, solid, onWhite;
    for (int i = 0; i < side * side; ++i) {
        const auto alpha = static_cast<std::uint8_t>(i / side * 4);
        const auto red = static_cast<std::uint8_t>(alpha / 2);
        sheer.insert(sheer.end(), {red, 0, alpha, alpha});
        const auto white = static_cast<std::uint8_t>(255 - alpha);
        onWhite.insert(onWhite.end(), {static_cast<std::uint8_t>(red + white), white, 255, 255});
        solid.insert(solid.end(), {alpha, red, 90, 255});
    }
    const auto worst = [](const std::vector<std::byte>& file, const Samples& wanted) {
        const auto image = UIImage::withData(file);
        return image ? largestDifference(image->pixels(), wanted) : 256;
    };
    const auto make = [](const Samples& pixels) { return UIImage::withPixels(side, side, pixels); };
    EXPECT_LE(worst(make(sheer)->jpegData(), onWhite), 12);
    EXPECT_LE(worst(make(sheer)->webpData(), sheer), 12);
    EXPECT_LE(worst(make(solid)->jpegData(), solid), 8);
    EXPECT_LE(worst(make(solid)->webpData(), solid), 8);
    const auto rough = make(noise(side, side));
    EXPECT_LT(rough->jpegData(-5).size(), rough->jpegData().size());
    EXPECT_LT(rough->webpData(1).size(), rough->webpData(1000).size());
    const auto wide = UIImage::withPixels(65501, 1, Samples(65501 * 4, 255));
    EXPECT_TRUE(wide->jpegData().empty() && wide->webpData().empty());
}

TEST(UIImage, pixelsThatDoNotFitAreRefused) {
    EXPECT_FALSE(UIImage::withPixels(2, 2, Samples(15)));
    EXPECT_FALSE(UIImage::withPixels(0, 2, {}));
    EXPECT_FALSE(UIImage::withPixels(-1, -1, Samples(4)));
    EXPECT_FALSE(UIImage::withPixels(1 << 16, 1 << 16, {}));
    EXPECT_FALSE(UIImage::withPixels(1, 1, Samples(4), std::nan("")));
    EXPECT_FALSE(UIImage::withPixels(1, 1, Samples(4), -1));
}

TEST(UIColor, componentsAreLimitedAndNoNumberIsNothing) {
    EXPECT_EQ((UIColor{-1, 2, std::nan(""), HUGE_VAL}).limited(), (UIColor{0, 1, 0, 1}));
    EXPECT_EQ((UIColor{0.25, 0.5, 1, 0}).limited(), (UIColor{0.25, 0.5, 1, 0}));
}

} // namespace trelmix::ui_image_test
