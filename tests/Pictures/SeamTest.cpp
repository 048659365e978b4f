#include "Pictures/Stage.h"

#include <gtest/gtest.h>

using namespace trelmix;
using namespace trelmix::pictures;

TEST(Seams, noDarkPixelShowsBetweenNeighbouringTiles) {
    for (const float zoom : {16.6F, 19.0F, 22.4F}) {
        Stage stage({0, 0, zoom});
        stage.engine->setBackgroundColor(UIColor::blackColor());
        const auto tile = plain(256, 256, {255, 255, 255});
        stage.addTiles(std::make_shared<TilePainter>([&](std::int64_t, std::int64_t) { return tile; }));
        for (int i = 0; i < 14; ++i) {
            const Look look{i * 26.3, i % 5 * 13.75, zoom};
            SCOPED_TRACE(testing::Message() << look);
            stage.look(look);
            const Picture picture = stage.draw();
            int dark = 0;
            int rows = 0;
            for (int y = 0; y < 600; ++y) {
                const bool hasTiles = isWithinTileReach(y, look.tilt);
                rows += hasTiles;
                for (int x = 0; hasTiles && x < 800; ++x) {
                    dark += picture.at(x, y) != Rgb{255, 255, 255};
                }
            }
            EXPECT_EQ(dark, 0);
            EXPECT_GT(rows, 400);
            if (HasFailure()) {
                picture.save("seams.png");
                return;
            }
        }
    }
}
