#include "Platform/Graphics/Canvas.h"
#include "Platform/Graphics/UIBezierPath.h"
#include "support/NotFinite.h"
#include "support/Pixels.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <string>

namespace trelmix::canvas_test {

using Pixel = std::array<int, 4>;

constexpr Pixel kRed{255, 0, 0, 255};
constexpr Pixel kBlue{0, 0, 255, 255};
constexpr Pixel kWhite{255, 255, 255, 255};
constexpr Pixel kNothing{0, 0, 0, 0};

TEST(Canvas, coloursArriveInTheImagesOrderAndPremultiplied) {
    Canvas canvas(4, 1);
    canvas.fillRect({{0, 0}, {1, 1}}, {1, 0, 0, 1});
    canvas.fillRect({{1, 0}, {1, 1}}, {0, 0, 1, 1});
    canvas.fillRect({{2, 0}, {1, 1}}, {1, 0, 0, 0.4});
    const auto image = canvas.image();
    EXPECT_EQ(pixelAt(*image, 0, 0), kRed);
    EXPECT_EQ(pixelAt(*image, 1, 0), kBlue);
    EXPECT_EQ(pixelAt(*image, 2, 0), (Pixel{102, 0, 0, 102}));
    EXPECT_EQ(pixelAt(*image, 3, 0), kNothing);
    canvas.clear(UIColor::clearColor());
    EXPECT_EQ(pixelsOtherThan(kNothing, *canvas.image()), 0);
    canvas.clear(UIColor::whiteColor());
    canvas.fillRect({{0, 0}, {1, 1}}, {1, 0, 0, 0.6});
    EXPECT_EQ(pixelAt(*canvas.image(), 0, 0), (Pixel{255, 102, 102, 255})) << "clearing alone replaces";
    EXPECT_EQ(pixelAt(*image, 0, 0), kRed);
}

TEST(Canvas, countsInPointsWithItsScaleAndTransforms) {
    Canvas canvas(40, 20, 2);
    canvas.save();
    canvas.translate(10, 0);
    canvas.rotate(std::acos(0.0));
    canvas.scale(2, 1);
    // x goes down, y to the left: 2 x 3 points become 3 wide and 4 high, left of x = 10.
    canvas.fillRect({{0, 0}, {2, 3}}, UIColor::redColor());
    canvas.restore();
    const auto image = canvas.image();
    EXPECT_EQ(image->size(), (CGSize{20, 10}));
    EXPECT_EQ(pixelAt(*image, 14, 0), kRed);
    EXPECT_EQ(pixelAt(*image, 19, 7), kRed);
    EXPECT_EQ(pixelsOtherThan(kNothing, *image), 6 * 8);
}

TEST(Canvas, pathsAreFilledAndStroked) {
    Canvas canvas(20, 20);
    UIBezierPath line;
    line.moveToPoint({2, 10});
    line.addLineToPoint({18, 10});
    line.setLineWidth(4);
    canvas.strokePath(line, UIColor::blueColor());
    EXPECT_EQ(pixelsOtherThan(kNothing, *canvas.image()), 16 * 4);
    canvas.clear(UIColor::clearColor());
    UIBezierPath kite;
    kite.moveToPoint({10, 2});
    kite.addLineToPoint({18, 10});
    kite.addLineToPoint({2, 10});
    kite.closePath();
    canvas.fillPath(kite, UIColor::redColor());
    double covered = 0;
    for (int i = 0; i < 400; ++i) {
        covered += pixelAt(*canvas.image(), i % 20, i / 20)[3] / 255.0;
    }
    EXPECT_NEAR(covered, 64, 0.8);
    UIBezierPath none = line;
    none.setLineWidth(0);
    canvas.clear(UIColor::whiteColor());
    canvas.strokePath(none, UIColor::redColor());
    EXPECT_EQ(pixelsOtherThan(kWhite, *canvas.image()), 0);
}

TEST(Canvas, imagesFillTheirRectangleToTheEdgesAndShrinkByAveraging) {
    const auto board = painted(64, 64, [](int x, int y) {
        const int value = (x + y) % 2 * 255;
        return std::array{value, value, value};
    });
    Canvas canvas(10, 10);
    canvas.drawImage(*board, {{1, 1}, {8, 8}});
    const auto shrunk = canvas.image();
    for (int i = 0; i < 64; ++i) {
        const Pixel pixel = pixelAt(*shrunk, 1 + i % 8, 1 + i / 8);
        EXPECT_NEAR(pixel[0], 127.5, 8);
        EXPECT_EQ(pixel[3], 255);
    }
    EXPECT_EQ(pixelsOtherThan(kNothing, *shrunk), 64);

    const auto dot = plainImage(1, 1, std::array{255, 0, 0});
    Canvas grown(*plainImage(8, 8));
    grown.clipRect({{0, 0}, {8, 4}});
    grown.drawImage(*dot, {{0, 0}, {8, 8}}, 0.6);
    EXPECT_EQ(pixelAt(*grown.image(), 0, 0), (Pixel{255, 102, 102, 255}));
    EXPECT_EQ(pixelAt(*grown.image(), 7, 3), (Pixel{255, 102, 102, 255}));
    EXPECT_EQ(pixelsOtherThan(kWhite, *grown.image()), 32);
}

TEST(Canvas, textLeavesInkWithinItsWidthAndTheHaloAround) {
    Canvas canvas(200, 40);
    Canvas::TextStyle style;
    style.size = 20;
    canvas.clear(UIColor::whiteColor());
    canvas.drawText("Harbour 12", {10, 30}, style);
    const double width = canvas.textWidth("Harbour 12", 20);
    EXPECT_GT(width, 80);
    EXPECT_LT(width, canvas.textWidth("Harbour 12", 20, true));
    const auto image = canvas.image();
    EXPECT_GT(pixelsOtherThan(kWhite, *image), 300);
    for (int i = 0; i < 40; ++i) {
        EXPECT_EQ(pixelAt(*image, 8, i), kWhite);
        EXPECT_EQ(pixelAt(*image, static_cast<int>(10 + width) + 2, i), kWhite);
    }
    style.halo = UIColor::redColor();
    canvas.clear(UIColor::whiteColor());
    canvas.drawText("Harbour 12", {10, 30}, style);
    EXPECT_GT(pixelsOtherThan(kWhite, *canvas.image()), pixelsOtherThan(kWhite, *image) * 3 / 2);
}

TEST(Canvas, isStillUsableAfterCallsWithImpossibleArguments) {
    const auto dot = UIImage::withPixels(1, 1, {255, 0, 0, 255});
    Canvas canvas(16, 16);
    canvas.restore();
    for (const double bad : {std::nan(""), -kInfinity, 0.0, 1e308, 1e-300}) {
        canvas.save();
        canvas.translate(bad, 1);
        canvas.scale(bad, bad);
        canvas.rotate(bad);
        UIBezierPath path;
        path.addLineToPoint({bad, 1});
        path.addLineToPoint({1, bad});
        path.addLineToPoint({-bad, -bad});
        path.setLineWidth(std::abs(bad));
        canvas.strokePath(path, {bad, bad, bad, bad});
        canvas.fillPath(path, UIColor::redColor());
        canvas.fillRect({{bad, bad}, {bad, bad}}, UIColor::redColor());
        canvas.drawImage(*dot, {{bad, 0}, {bad, 5}}, bad);
        canvas.drawText("text", {bad, bad}, {bad, UIColor::redColor(), true, UIColor::blueColor()});
        EXPECT_TRUE(std::isfinite(canvas.textWidth("text", bad)));
        canvas.clipRect({{bad, bad}, {1, bad}});
        canvas.restore();
    }
    canvas.drawText("\xff\xED\xA0\x80 \xE2\x82", {2, 12}, {});
    canvas.drawText(std::string(100000, 'x') + '\0', {2, 12}, {});
    canvas.clear(UIColor::whiteColor());
    canvas.fillRect({{3, 3}, {1, 1}}, UIColor::redColor());
    EXPECT_EQ(pixelAt(*canvas.image(), 3, 3), kRed);
    EXPECT_EQ(pixelsOtherThan(kWhite, *canvas.image()), 1);
}

TEST(Canvas, sizesThatNoBitmapCanHaveGiveNoImage) {
    for (const auto& [width, height, scale] :
         {std::tuple{0, 5, 1.0}, {-1, 5, 1.0}, {32768, 1, 1.0}, {30000, 30000, 1.0}, {5, 5, std::nan("")}}) {
        Canvas canvas(width, height, scale);
        canvas.clear(UIColor::redColor());
        canvas.drawText("text", {0, 0}, {});
        canvas.save();
        canvas.restore();
        EXPECT_FALSE(canvas.isValid());
        EXPECT_FALSE(canvas.image());
    }
}

TEST(Canvas, anImageLongerThanCairoReadsIsDrawnFromASmallerLevel) {
    constexpr int kLength = 40000;
    const auto image = painted(kLength, 1, [](int x, int) {
        return std::array{x < kLength / 2 ? 0 : 255, 0, 0};
    });
    Canvas canvas(100, 2);
    canvas.drawImage(*image, {{0, 0}, {100, 2}});
    // Far too small to see, and no reason to wait.
    canvas.drawImage(*image, {{0, 0}, {1e-300, 1e-300}});
    const auto drawn = std::move(canvas).image();
    EXPECT_FALSE(canvas.isValid());
    EXPECT_EQ(pixelAt(*drawn, 48, 0), (Pixel{0, 0, 0, 255}));
    EXPECT_EQ(pixelAt(*drawn, 51, 1), (Pixel{255, 0, 0, 255}));
}

/// "M" starts a run, "L" goes on, "z" closes it.
std::string shapeOf(const UIBezierPath& path) {
    std::string shape;
    for (const UIBezierPath::Element& element : path.elements()) {
        shape += element.startsSubpath ? "M" : "L";
        shape += element.closesSubpath ? "z" : "";
    }
    return shape;
}

TEST(UIBezierPath, keepsItsRunsAndGoesOnFromTheStartOfAClosedOne) {
    UIBezierPath path;
    path.closePath();
    EXPECT_TRUE(path.isEmpty());
    path.moveToPoint({9, 9});
    path.moveToPoint({1, 2});
    path.addLineToPoint({3, 4});
    path.addLineToPoint({5, 6});
    path.closePath();
    path.addLineToPoint({7, 8});
    EXPECT_EQ(shapeOf(path), "MLLzML");
    EXPECT_EQ(path.elements()[0].point, (CGPoint{1, 2}));
    EXPECT_EQ(path.elements()[3].point, (CGPoint{1, 2}));
}

TEST(UIBezierPath, whatIsNotFiniteIsLeftOut) {
    UIBezierPath path;
    path.moveToPoint({std::nan(""), 0});
    path.addLineToPoint({0, HUGE_VAL});
    EXPECT_TRUE(path.isEmpty());
    path.setLineWidth(std::nan(""));
    EXPECT_EQ(path.lineWidth(), 0);
}

} // namespace trelmix::canvas_test
