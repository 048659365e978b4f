#include "common/picture/Drawing.h"

#include "common/picture/AttributionText.h"
#include "support/Pixels.h"

#include <gtest/gtest.h>

#include <array>

using namespace trelmix;
using namespace trelmix::apps;

TEST(Attribution, isPlainTextOnceForEachSource) {
    EXPECT_EQ(joinedAttributions({"&copy; <a href=\"x\">Some &amp; others</a>", "", "  second\n line ",
                                  "\xC2\xA9 Some & others", "bad \xff\xc0\xaf byte"}),
              "\xC2\xA9 Some & others | second line | bad byte");
    EXPECT_EQ(joinedAttributions({"<b></b>"}), "");
}

TEST(Attribution, staysInsideThePictureHoweverSmallThatIs) {
    const std::string text = "One rather long name of a source | and another one";
    EXPECT_GT(attributionImage(text, 2, 80)->pixelHeight(), attributionImage(text, 2, 800)->pixelHeight());
    EXPECT_LE(attributionImage(text, 2, 80)->pixelWidth(), 160);
    EXPECT_FALSE(attributionImage("", 1, 100));
    EXPECT_FALSE(attributionImage(text, 1, -7));
    for (const int side : {1, 9, 60, 500}) {
        const auto marked = withAttribution(plainImage(side, side), attributionImage(text, 1, side - 8));
        ASSERT_TRUE(marked);
        EXPECT_EQ(marked->pixelWidth(), side);
        EXPECT_TRUE(marked->isOpaque());
    }
}

TEST(Attribution, leavesAsMuchRoomOnBothSidesOfItsText) {
    const auto image = attributionImage("HHHHHH", 1, 800);
    const auto isInk = [&](int x) { return pixelAt(*image, x, image->pixelHeight() / 2)[0] < 120; };
    int left = 0, right = image->pixelWidth() - 1;
    for (; !isInk(left); ++left) {
    }
    for (; !isInk(right); --right) {
    }
    EXPECT_NEAR(left, image->pixelWidth() - 1 - right, 1);
}

TEST(Pin, isCutOutWithAnOpenEyeAndStandsOnItsTip) {
    const auto pin = pinImage();
    ASSERT_EQ(pin->size(), (CGSize{24, 32}));
    EXPECT_EQ(pixelAt(*pin, 0, 0)[3], 0);
    EXPECT_EQ(pixelAt(*pin, 24, 24)[3], 0);
    EXPECT_EQ(pixelAt(*pin, 9, 24), (std::array{255, 255, 255, 255}));
    EXPECT_GT(pixelAt(*pin, 23, 62)[3] + pixelAt(*pin, 24, 62)[3], 0);
}
