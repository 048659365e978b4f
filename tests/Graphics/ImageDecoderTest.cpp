#include "Graphics/ImageFiles.h"
#include "support/Pixels.h"

#include <Trelmix/Platform/UIImage.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <string>
#include <vector>

namespace trelmix::image_decoder_test {

using Samples = std::vector<std::uint8_t>;

Samples pixelsOf(const FileBytes& file) {
    std::string reason;
    const auto image = UIImage::withData(file, 1, &reason);
    EXPECT_TRUE(image) << reason;
    return image ? Samples(image->pixels().begin(), image->pixels().end()) : Samples();
}

/// Smooth, so that a lossy file comes back close.
Samples gradient(int width, int height, int channels) {
    Samples samples;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const int values[] = {100 + x, 50 + 2 * y, 200 - x, 255 - 4 * y};
            for (int c = 0; c < channels; ++c) {
                samples.push_back(static_cast<std::uint8_t>(values[c]));
            }
        }
    }
    return samples;
}

Samples premultiplied(Samples rgba) {
    for (std::size_t i = 0; i < rgba.size(); ++i) {
        if (i % 4 != 3) {
            const int product = rgba[i] * rgba[i - i % 4 + 3];
            rgba[i] = static_cast<std::uint8_t>((product + 127) / 255);
        }
    }
    return rgba;
}

std::vector<FileBytes> oneFileOfEachKind() {
    PngSpec interlaced{19, 13};
    interlaced.isInterlaced = true;
    const auto image = UIImage::withPixels(19, 13, premultiplied(gradient(19, 13, 4)));
    return {pngFile({19, 13}, gradient(19, 13, 4)),
            pngFile(interlaced, gradient(19, 13, 4)),
            image->jpegData(),
            progressiveJpegFile(19, 13, gradient(19, 13, 3)),
            inkJpegFile(19, 13, gradient(19, 13, 4)),
            image->webpData()};
}

TEST(ImageDecoder, pngOfEveryLayoutGivesPremultipliedPixels) {
    const Samples rgba = gradient(19, 13, 4);
    Samples wide;
    for (const std::uint8_t value : rgba) {
        // The machine's order has the lower byte first; only the upper one counts.
        wide.insert(wide.end(), {77, value});
    }
    PngSpec interlaced{19, 13};
    interlaced.hasGamma = true;
    interlaced.isInterlaced = true;
    PngSpec grey{3, 1, 8, 0};
    grey.transparentGrey = 9;
    PngSpec palette{2, 1, 2, 3};
    palette.palette = {0xFF0000FF, 0x00FF0080};
    const struct {
        PngSpec spec;
        Samples stored, shown;
    } cases[] = {
        {{19, 13}, rgba, premultiplied(rgba)},
        {interlaced, rgba, premultiplied(rgba)},
        {{19, 13, 16, 6}, wide, premultiplied(rgba)},
        {{2, 1, 8, 4}, {200, 255, 100, 51}, {200, 200, 200, 255, 20, 20, 20, 51}},
        {grey, {0, 9, 255}, {0, 0, 0, 255, 0, 0, 0, 0, 255, 255, 255, 255}},
        {{3, 1, 1, 0}, {0b10100000}, {255, 255, 255, 255, 0, 0, 0, 255, 255, 255, 255, 255}},
        {palette, {0b00010000}, {255, 0, 0, 255, 0, 128, 0, 128}},
    };
    for (const auto& [spec, stored, shown] : cases) {
        EXPECT_EQ(pixelsOf(pngFile(spec, stored)), shown)
            << int{spec.bitDepth} << " bits, colour type " << int{spec.colorType};
    }
}

TEST(ImageDecoder, aJpegThatComesInPassesIsDecodedWhole) {
    Samples opaque = gradient(19, 13, 4);
    for (std::size_t i = 3; i < opaque.size(); i += 4) {
        opaque[i] = 255;
    }
    const FileBytes file = progressiveJpegFile(19, 13, gradient(19, 13, 3));
    EXPECT_LT(largestDifference(pixelsOf(file), opaque), 8);
    EXPECT_TRUE(UIImage::withData(file)->isOpaque());
}

TEST(ImageDecoder, inksBecomeTheColoursTheyLeave) {
    // Of one colour: cyan, magenta and yellow leave 200 of 255, black leaves 102.
    Samples inks;
    for (int i = 0; i < 16 * 16; ++i) {
        inks.insert(inks.end(), {200, 200, 200, 102});
    }
    const FileBytes marked = inkJpegFile(16, 16, inks);
    const std::string mark = "Adobe";
    const auto bytes = std::as_bytes(std::span(mark));
    const auto found = std::search(marked.begin(), marked.end(), bytes.begin(), bytes.end());
    ASSERT_NE(found, marked.end());
    const auto at = static_cast<std::size_t>(found - marked.begin());
    // The mark's last byte says that cyan, magenta and yellow are stored as brightness and two differences;
    // without it they are read as they stand: 55, 128 and 128.
    FileBytes plain = marked;
    plain.at(at + 11) = std::byte{0};
    FileBytes unmarked = marked;
    unmarked.at(at) = std::byte{'a'};
    const std::pair<FileBytes, Samples> cases[] = {
        {marked, {80, 80, 80, 255}},    // 200 * 102 / 255
        {plain, {22, 51, 51, 255}},     // 55 * 102 / 255, 128 * 102 / 255
        {unmarked, {120, 76, 76, 255}}, // (255 - 55) * (255 - 102) / 255, (255 - 128) * ...
    };
    for (const auto& [file, color] : cases) {
        Samples first = pixelsOf(file);
        first.resize(4);
        EXPECT_LE(largestDifference(first, color), 2) << int{first[0]} << ", " << int{first[1]};
    }
}

TEST(ImageDecoder, everyCutIsRefusedWithAReason) {
    for (const FileBytes& file : oneFileOfEachKind()) {
        ASSERT_TRUE(UIImage::withData(file));
        for (std::size_t length = 0; length < file.size(); ++length) {
            // A copy of its own, so that the sanitizer sees a read beyond the end.
            const FileBytes cut(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(length));
            std::string reason;
            EXPECT_FALSE(UIImage::withData(cut, 1, &reason)) << length << " of " << file.size();
            EXPECT_NE(reason, "");
        }
    }
}

TEST(ImageDecoder, anEnormousSizeInAHeaderIsRefusedBeforeAnythingIsAllocated) {
    // Only the header is written: 60000 x 60000 pixels are never there.
    using namespace std::string_literals;
    const std::string header =
        "\x89PNG\r\n\x1A\n\0\0\0\rIHDR\0\0\xEA\x60\0\0\xEA\x60\x08\x06\0\0\0\xBA\xDE\xFE\x5F"s;
    const auto png = std::as_bytes(std::span(header));
    FileBytes jpeg = UIImage::withPixels(19, 13, gradient(19, 13, 4))->jpegData();
    const std::byte startOfFrame[] = {std::byte{0xFF}, std::byte{0xC0}};
    const auto frame =
        std::search(jpeg.begin(), jpeg.end(), std::begin(startOfFrame), std::end(startOfFrame));
    const auto at = static_cast<std::size_t>(frame - jpeg.begin());
    for (const std::size_t side : {at + 5, at + 7}) {
        jpeg.at(side) = std::byte{60000 >> 8};
        jpeg.at(side + 1) = std::byte{60000 & 0xff};
    }
    for (const FileBytes& file : {FileBytes(png.begin(), png.end()), jpeg}) {
        std::string reason;
        EXPECT_FALSE(UIImage::withData(file, 1, &reason));
        EXPECT_TRUE(reason.starts_with("60000 x 60000 pixels")) << reason;
    }
}

TEST(ImageDecoder, whatIsNoImageIsNamedAsSuch) {
    for (const std::string text : {"", "<html>503</html>", "\x89PNG", "RIFF\x10\0\0\0WAVE"}) {
        std::string reason;
        EXPECT_FALSE(UIImage::withData(std::as_bytes(std::span(text)), 1, &reason));
        EXPECT_NE(reason, "");
    }
    const FileBytes file = pngFile({1, 1}, {1, 2, 3, 4});
    for (const double scale : {0.0, -2.0, std::nan(""), HUGE_VAL}) {
        EXPECT_FALSE(UIImage::withData(file, scale));
    }
    EXPECT_EQ(UIImage::withData(pngFile({3, 5}, gradient(3, 5, 4)), 2)->size(), (CGSize{1.5, 2.5}));
}

} // namespace trelmix::image_decoder_test
