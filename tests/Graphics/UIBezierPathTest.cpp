#include "Platform/Graphics/UIBezierPath.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

namespace trelmix {
namespace {

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
    path.removeAllPoints();
    path.addLineToPoint({1, 1});
    EXPECT_EQ(shapeOf(path), "M");
}

TEST(UIBezierPath, pointsAndOvalsThatAreNotFiniteAreLeftOut) {
    UIBezierPath path;
    path.moveToPoint({std::nan(""), 0});
    path.addLineToPoint({0, HUGE_VAL});
    path.appendOval({{0, 0}, {HUGE_VAL, 1}});
    path.appendOval({{0, 0}, {0, 1}});
    path.appendOval({{std::nan(""), 0}, {1, 1}});
    EXPECT_TRUE(path.isEmpty());
    path.setLineWidth(std::nan(""));
    EXPECT_EQ(path.lineWidth(), 0);
}

TEST(UIBezierPath, anOvalStaysWithinAFiftiethOfItsEllipse) {
    for (const double radius : {0.5, 10.0, 1000.0}) {
        UIBezierPath path;
        path.appendOval({{-radius, -radius}, {2 * radius, 2 * radius}});
        const auto& points = path.elements();
        for (std::size_t i = 0; i + 1 < points.size(); ++i) {
            const double x = (points[i].point.x + points[i + 1].point.x) / 2;
            const double y = (points[i].point.y + points[i + 1].point.y) / 2;
            EXPECT_NEAR(std::hypot(x, y), radius, 0.0201);
        }
        EXPECT_TRUE(points.back().closesSubpath);
    }
}

} // namespace
} // namespace trelmix
