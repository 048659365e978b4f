#include "Render/RenderFixture.h"

#include <algorithm>

namespace trelmix::render_test::renderer_test {

using Color = std::array<std::uint8_t, 4>;

TEST_F(RenderTest, anImageOfThePicturesSizeComesBackTexelForTexel) {
    const auto image = painted(64, 48, [](int x, int y) {
        return std::array{x * 4 - y, y * 5, x * 7 + y * 3};
    });
    for (const bool usesLevels : {false, true}) {
        const auto shown = picture(
            frameOf({imageItem(image, ground(-32, -24, 32, 24), 1, usesLevels)}, cameraAt({}, 48)), 64, 48);
        EXPECT_EQ(largestDifference(shown->pixels(), image->pixels()), 0) << usesLevels;
    }
}

TEST_F(RenderTest, premultipliedColoursBlendOnceByOpacityTintAndCoverage) {
    struct Case {
        Color top;
        float opacity;
        std::array<float, 4> tint{1, 1, 1, 1};
    };
    const Color below{40, 80, 200, 255};
    for (const Case& c : {Case{{128, 0, 0, 128}, 1}, Case{{128, 0, 0, 128}, 0.5F},
                          Case{{255, 255, 255, 255}, 0.25F}, Case{{0, 0, 0, 0}, 1},
                          Case{{7, 30, 3, 31}, 0.999F}, Case{{255, 200, 0, 255}, 1, {0.2F, 1, 0.4F, 1}},
                          Case{{90, 60, 0, 120}, 0.5F, {0.8F, 0.2F, 0.4F, 0.8F}}}) {
        for (const bool usesLevels : {false, true}) {
            auto top = imageItem(plainImage(8, 8, c.top), ground(-20, -20, 20, 20), 2, usesLevels);
            top->opacity = c.opacity;
            top->color = c.tint;
            const auto shown = picture(
                frameOf({imageItem(plainImage(8, 8, below), ground(-20, -20, 20, 20), 1, usesLevels), top},
                        cameraAt({}, 32)),
                32, 32);
            for (std::size_t i = 0; i < 4; ++i) {
                const double alpha = c.top[3] / 255.0 * c.opacity * c.tint[3];
                EXPECT_NEAR(pixelAt(*shown, 16, 16)[i],
                            c.top[i] * c.opacity * c.tint[i] + below[i] * (1 - alpha), 1.0);
            }
        }
    }
}

TEST_F(RenderTest, laterItemsCoverEarlierOnesWhateverTheirKindAndHeight) {
    const auto all = ground(-20, -20, 20, 20);
    auto raised = imageItem(plainImage(4, 4, {255, 0, 0, 255}), all, 1);
    for (Vector3d& corner : raised->corners) {
        corner.z = 5;
    }
    const auto fill = fillItem(triangle({-20, -20, 0, 20, -20, 0, 0, 20, 0}), {0, 1, 0, 1}, 2);
    const auto disc = discItem({}, 10, {0, 0, 1, 1}, 3);
    const auto top = imageItem(plainImage(4, 4, {9, 9, 9, 255}), ground(-3, -3, 3, 3), 4);
    const DrawCamera camera = cameraAt({}, 40);
    EXPECT_EQ(pixelAt(*picture(frameOf({raised, fill}, camera), 40, 40), 20, 20), (Rgba{0, 255, 0, 255}));
    EXPECT_EQ(pixelAt(*picture(frameOf({raised, fill, disc}, camera), 40, 40), 20, 20),
              (Rgba{0, 0, 255, 255}));
    EXPECT_EQ(pixelAt(*picture(frameOf({raised, fill, disc, top}, camera), 40, 40), 20, 20),
              (Rgba{9, 9, 9, 255}));
    auto below = std::make_shared<DrawItem>(*top);
    below->renderingOrder = -1;
    EXPECT_EQ(pixelAt(*picture(frameOf({below, raised, fill, disc}, camera), 40, 40), 20, 20),
              (Rgba{0, 0, 255, 255}));
}

TEST_F(RenderTest, theSceneFadesOverItsBackground) {
    const Items items{imageItem(plainImage(4, 4, {0, 0, 0, 255}), ground(-9, -9, 9, 9), 1)};
    const UIColor background{0, 1, 0.2, 0.5};
    const Rgba bare{0, 128, 26, 128};
    for (const double alpha : {0.0, 0.25, 1.0, kNaN}) {
        DrawFrame frame = frameOf(items, cameraAt({}, 8), background);
        frame.alpha = alpha;
        const Rgba shown = pixelAt(*picture(frame, 8, 8), 4, 4);
        const double part = alpha > 0 ? alpha : 0;
        for (std::size_t i = 0; i < 4; ++i) {
            EXPECT_NEAR(shown[i], bare[i] * (1 - part) + (i == 3 ? 255 : 0) * part, 1.01) << alpha;
        }
    }
}

TEST_F(RenderTest, sizesThatCannotBeAreRefusedAndLeaveThePictureBefore) {
    EXPECT_FALSE(renderer->readBack(1));
    draw(frameOf({}, cameraAt({}, 8), UIColor::redColor()), 8, 8);
    const int beyond = capabilities.maximumTargetSize + 1;
    for (const auto& [width, height] : {std::pair{0, 8}, {8, 0}, {-3, 8}, {beyond, 8}, {8, 100000}}) {
        const auto report = renderer->draw(frameOf({}, cameraAt({}, 8)), width, height);
        EXPECT_FALSE(report);
        const bool isTooLarge = std::max(width, height) > 8;
        EXPECT_NE(report.reason().find(isTooLarge ? "larger than the driver's" : "one pixel"),
                  std::string::npos)
            << report.reason();
    }
    const auto kept = renderer->readBack(1);
    ASSERT_TRUE(kept);
    EXPECT_EQ(pixelAt(**kept, 7, 7), (Rgba{255, 0, 0, 255}));
    EXPECT_FALSE(renderer->readBack(0));
}

TEST_F(RenderTest, whatCannotBeDrawnIsLeftOut) {
    const auto image = plainImage(4, 4, {255, 0, 0, 255});
    Items items{nullptr, imageItem(nullptr, ground(-9, -9, 9, 9), 1)};
    for (const double bad : {kNaN, kInfinity, 1e300}) {
        items.push_back(imageItem(image, ground(bad, -9, 9, 9), items.size()));
        items.push_back(discItem({bad, 0, 0}, 5, {1, 0, 0, 1}, items.size()));
        items.push_back(discItem({}, bad, {1, 0, 0, 0}, items.size()));
    }
    items.push_back(imageItem(image, ground(0, 0, 0, 0), items.size()));
    items.push_back(discItem({}, 0, {1, 0, 0, 1}, items.size()));
    auto odd = discItem({1, 1, 0}, 2, {static_cast<float>(kNaN), 7, -3, 1}, items.size());
    odd->opacity = static_cast<float>(kNaN);
    items.push_back(odd);
    for (const DrawKind kind : {DrawKind::fill, DrawKind::program}) {
        items.push_back(itemOf(kind, items.size()));
    }
    const Rgba white{255, 255, 255, 255};
    EXPECT_EQ(pixelAt(*picture(frameOf(items, cameraAt({}, 16)), 16, 16), 12, 4), white);
    DrawCamera camera = cameraAt({}, 16);
    camera.position.x = kNaN;
    EXPECT_EQ(pixelAt(*picture(frameOf(items, camera), 16, 16), 12, 4), white);
    DrawFrame empty = frameOf({}, cameraAt({}, 16));
    empty.list = nullptr;
    EXPECT_EQ(pixelAt(*picture(empty, 16, 16), 8, 8), white);
}

} // namespace trelmix::render_test::renderer_test
