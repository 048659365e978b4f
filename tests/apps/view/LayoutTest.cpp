#include "view/ScreenLayout.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>

namespace trelmix::apps::layout_test {

TEST(ScreenLayout, mapAndSideViewShareTheWindowInWholePixels) {
    for (const double scale : {1.0, 1.5, 2.0}) {
        for (const CGSize window : {CGSize{1280, 800}, {333, 777}, {2000, 41}, {90, 2}}) {
            const ScreenLayout layout = layoutFor(window, scale, CGSize{640, 150});
            EXPECT_EQ(layout.side.origin.y, layout.map.size.height);
            EXPECT_DOUBLE_EQ(layout.side.origin.y * scale, std::round(layout.side.origin.y * scale));
            EXPECT_GE(std::min(layout.side.size.height, layout.map.size.height) * scale, 1);
            EXPECT_LE(layout.side.size.height, std::max(0.45 * layout.window.height, 1 / scale));
        }
    }
    EXPECT_EQ(layoutFor({320, 800}, 1, CGSize{640, 150}).side.size.height, 75) << "shrunk with its width";
    EXPECT_EQ(layoutFor({1280, 800}, 1, CGSize{640, 150}).side.size.height, 150) << "but never enlarged";
    EXPECT_EQ(layoutFor({1280, 800}, 1, std::nullopt).map.size.height, 800);
    EXPECT_EQ(layoutFor({-5, 0}, 1, CGSize{640, 150}).map.size.height, 1) << "neither vanishes";
}

} // namespace trelmix::apps::layout_test
