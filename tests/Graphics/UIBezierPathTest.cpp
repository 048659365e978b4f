#include "Platform/Graphics/UIBezierPath.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

namespace trelmix::ui_bezier_path_test {

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

} // namespace trelmix::ui_bezier_path_test
