#include "Render/RenderFixture.h"

#include <algorithm>
#include <random>

namespace trelmix::render_test::sprite_test {

using Color = std::array<std::uint8_t, 4>;

std::vector<std::shared_ptr<const UIImage>> icons(int count, int size) {
    std::vector<std::shared_ptr<const UIImage>> result;
    for (int i = 0; i < count; ++i) {
        result.push_back(
            plainImage(size - i % 5, size,
                       Color{static_cast<std::uint8_t>(i * 4), static_cast<std::uint8_t>(255 - i * 3),
                             static_cast<std::uint8_t>(i * 37 % 256), 255}));
    }
    return result;
}

TEST_F(RenderTest, tenThousandMarkersWithSixtyFourIconsAreOneDrawCall) {
    for (const bool has32BitIndices : {true, false}) {
        capabilities.has32BitIndices = has32BitIndices;
        makeRenderer();
        const auto images = icons(64, 30);
        Items items;
        for (std::uint64_t i = 0; i < 10000; ++i) {
            const double x = static_cast<double>(i % 100) - 50;
            const double y = static_cast<double>(i / 100) - 50;
            items.push_back(imageItem(images[i * 7 % 64], ground(x, y, x + 3, y + 3), i));
        }
        EXPECT_EQ(draw(frameOf(items, cameraAt({}, 120)), 120, 120).drawCalls, 1);
    }
}

TEST_F(RenderTest, everyIconOfAnAtlasShowsItsOwnColoursToItsEdges) {
    // With their edges, eight rows of eight fill a page that has grown four times.
    const auto images = icons(64, 252);
    Items items;
    for (std::uint64_t i = 0; i < 64; ++i) {
        const double x = static_cast<double>(i % 8) * 24 - 96;
        const double y = 96 - static_cast<double>(i / 8) * 24;
        items.push_back(imageItem(images[i], ground(x, y - 24, x + 24, y), i));
    }
    const auto shown = picture(frameOf(items, cameraAt({}, 192)), 192, 192);
    for (int i = 0; i < 192 * 192; ++i) {
        const int number = i / 192 / 24 * 8 + i % 192 / 24;
        const Rgba expected = pixelAt(*images[static_cast<std::size_t>(number)], 0, 0);
        ASSERT_EQ(pixelAt(*shown, i % 192, i / 192), expected) << number;
    }
    EXPECT_LE(renderer->textureBytes(), 4U * 2048 * 2048) << "as much as they need";
}

TEST_F(RenderTest, iconsThatAreNoLongerUsedMakeRoomForOthers) {
    // Together more than a page holds.
    const DrawCamera camera = cameraAt({}, 16);
    std::size_t most = 0;
    for (int i = 0; i < 400; ++i) {
        const Color color{static_cast<std::uint8_t>(i % 256), 7, static_cast<std::uint8_t>(i / 2), 255};
        const auto shown = picture(
            frameOf({imageItem(plainImage(250, 250, color), ground(-20, -20, 20, 20), 1)}, camera), 16, 16);
        ASSERT_EQ(pixelAt(*shown, 8, 8), (Rgba{color[0], color[1], color[2], 255})) << i;
        most = std::max(most, renderer->textureBytes());
    }
    EXPECT_LE(most, 4U * 2048 * 4096);
}

/// A random item; some of the kinds share images.
std::shared_ptr<const DrawItem> randomItem(std::mt19937& random, std::uint64_t sequence,
                                           const std::vector<std::shared_ptr<const UIImage>>& images) {
    const auto number = [&](double low, double high) {
        return std::uniform_real_distribution(low, high)(random);
    };
    const double x = number(-40, 40), y = number(-40, 40), size = number(4, 30);
    std::shared_ptr<DrawItem> item;
    switch (random() % 4) {
    case 0:
        item =
            discItem({x, y, 0.05}, size / 2, {0, static_cast<float>(number(0, 0.5)), 0.3F, 0.6F}, sequence);
        break;
    case 1: {
        const auto s = static_cast<float>(size);
        item = fillItem(triangle({0, 0, 0, s, 0, 0, 0, s, 0}),
                        {0.2F, 0, static_cast<float>(number(0, 0.7)), 0.7F}, sequence);
        item->meshPosition = {x, y, 0};
        break;
    }
    default:
        item = imageItem(images[random() % images.size()], ground(x, y, x + size, y + size), sequence,
                         random() % 2 == 0);
        item->opacity = random() % 2 == 0 ? 1.0F : 0.5F;
        break;
    }
    item->renderingOrder = static_cast<std::int64_t>(sequence % 3);
    return item;
}

TEST_F(RenderTest, aLongLifeOfChangesEndsInThePictureOfAFreshStart) {
    std::mt19937 random(20);
    Items items;
    for (int step = 0; step < 60; ++step) {
        const auto images = icons(6, 20 + step);
        for (int change = 0; change < 8; ++change) {
            const std::size_t at = items.empty() ? 0 : random() % items.size();
            if (random() % 3 == 0 && !items.empty()) {
                items.erase(items.begin() + static_cast<std::ptrdiff_t>(at));
            } else if (random() % 2 == 0 && !items.empty()) {
                items[at] = randomItem(random, items[at]->sequence, images);
            } else {
                items.push_back(
                    randomItem(random, static_cast<std::uint64_t>(step) * 8 + random() % 8, images));
            }
        }
        std::stable_sort(items.begin(), items.end(), [](const auto& a, const auto& b) {
            return std::tie(a->renderingOrder, a->sequence) < std::tie(b->renderingOrder, b->sequence);
        });
        const DrawFrame frame = frameOf(items, cameraAt({step * 3.0, 0, 0}, 64, 0.3, step));
        const auto shown = picture(frame, 64, 64);
        Renderer fresh(capabilities, context->graveyard(), {});
        ASSERT_TRUE(fresh.draw(frame, 64, 64));
        const auto expected = fresh.readBack(1);
        ASSERT_TRUE(expected);
        // The origin is another, so that an edge may fall on the other side of a sample.
        ASSERT_LE(largestDifference(shown->pixels(), (*expected)->pixels()), 96) << step;
        const auto whites = [](std::span<const std::uint8_t> pixels) {
            return static_cast<double>(std::count(pixels.begin(), pixels.end(), 255));
        };
        EXPECT_NEAR(whites(shown->pixels()), whites((*expected)->pixels()), 16);
    }
}

} // namespace trelmix::render_test::sprite_test
