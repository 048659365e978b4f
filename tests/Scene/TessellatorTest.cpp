#include "Platform/Scene/Tessellator.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <random>

namespace trelmix::tessellator_test {

using Points = std::vector<CGPoint>;
constexpr double kTurn = 2 * std::numbers::pi;

UIBezierPath pathOf(const std::vector<Points>& runs) {
    UIBezierPath path;
    for (const Points& run : runs) {
        for (std::size_t i = 0; i < run.size(); ++i) {
            i == 0 ? path.moveToPoint(run[i]) : path.addLineToPoint(run[i]);
        }
        path.closePath();
    }
    return path;
}

CGPoint corner(const SCNMesh& mesh, std::size_t i) {
    const std::size_t v = mesh.index(i) * 3;
    return {mesh.origin.x + static_cast<double>(mesh.vertices[v]),
            mesh.origin.y + static_cast<double>(mesh.vertices[v + 1])};
}

double cross(CGPoint a, CGPoint b, CGPoint p) {
    return (b.x - a.x) * (p.y - a.y) - (b.y - a.y) * (p.x - a.x);
}

double filledArea(const std::shared_ptr<const SCNMesh>& mesh) {
    double area = 0;
    for (std::size_t i = 0; mesh && i < mesh->indexCount(); i += 3) {
        area += std::abs(cross(corner(*mesh, i), corner(*mesh, i + 1), corner(*mesh, i + 2))) / 2;
    }
    return area;
}

double shoelace(const Points& run) {
    double sum = 0;
    for (std::size_t i = 0; i < run.size(); ++i) {
        const CGPoint& next = run[(i + 1) % run.size()];
        sum += run[i].x * next.y - next.x * run[i].y;
    }
    return std::abs(sum) / 2;
}

int windingNumber(const std::vector<Points>& runs, CGPoint p) {
    int winding = 0;
    for (const Points& run : runs) {
        for (std::size_t i = 0; i < run.size(); ++i) {
            const CGPoint a = run[i], b = run[(i + 1) % run.size()];
            if ((a.y <= p.y) != (b.y <= p.y)) {
                const bool isLeft = (cross(a, b, p) > 0) == (b.y > a.y);
                winding += isLeft ? (b.y > a.y ? 1 : -1) : 0;
            }
        }
    }
    return winding;
}

int coverCount(const SCNMesh& mesh, CGPoint p) {
    int count = 0;
    for (std::size_t i = 0; i < mesh.indexCount(); i += 3) {
        const CGPoint a = corner(mesh, i), b = corner(mesh, i + 1), c = corner(mesh, i + 2);
        const double s[] = {cross(a, b, p), cross(b, c, p), cross(c, a, p)};
        count += (s[0] > 0 && s[1] > 0 && s[2] > 0) || (s[0] < 0 && s[1] < 0 && s[2] < 0);
    }
    return count;
}

/// Random points are covered exactly once where the outlines turn around them, and else not at all.
void expectFilledOnce(const std::vector<Points>& runs, double reach) {
    const auto mesh = tessellate(pathOf(runs));
    ASSERT_TRUE(mesh);
    std::mt19937 random(3);
    std::uniform_real_distribution<double> place(-reach, reach);
    for (int i = 0; i < 3000; ++i) {
        const CGPoint p{place(random), place(random)};
        ASSERT_EQ(coverCount(*mesh, p), windingNumber(runs, p) != 0 ? 1 : 0) << p.x << ", " << p.y;
    }
}

Points star(int corners, int step, double radius) {
    Points points;
    for (int i = 0; i < corners; ++i) {
        const double angle = kTurn * i * step / corners + 0.1;
        points.push_back({radius * std::cos(angle), radius * std::sin(angle)});
    }
    return points;
}

TEST(Tessellator, fillsByTheNonZeroRule) {
    expectFilledOnce({star(5, 2, 900)}, 1000);                  // the middle of a pentagram is inside
    expectFilledOnce({star(7, 1, 900), star(4, 1, 400)}, 1000); // turning the same way
    auto hole = star(4, 1, 400);
    std::reverse(hole.begin(), hole.end());
    expectFilledOnce({star(7, 1, 900), hole}, 1000);
    expectFilledOnce({{{-900, -900}, {900, 900}, {900, -900}, {-900, 900}}}, 1000); // a bow tie
    auto tangle = star(300, 1, 900); // more vertices than a byte counts
    std::swap(tangle[10], tangle[30]);
    expectFilledOnce({tangle}, 1000);
    std::mt19937 random(5);
    std::uniform_real_distribution<double> place(-900, 900);
    for (int round = 0; round < 5; ++round) {
        Points scribble(25);
        std::generate(scribble.begin(), scribble.end(), [&] {
            return CGPoint{place(random), place(random)};
        });
        expectFilledOnce({scribble}, 1000);
    }
}

TEST(Tessellator, holesJoinedByABridgeOfNoWidthStayOpen) {
    // Along the bridge to the hole, around it the other way, and back.
    const Points run{{0, 0},     {900, 0},   {900, 900}, {0, 900},   {0, 0},
                     {300, 300}, {300, 600}, {600, 600}, {600, 300}, {300, 300}};
    EXPECT_NEAR(filledArea(tessellate(pathOf({run}))), 900.0 * 900 - 300.0 * 300, 0.5);
    expectFilledOnce({run}, 1000);
}

TEST(Tessellator, outlinesOfManyCornersKeepTheirAreaInBothDirections) {
    for (const int count : {3, 100, 10000}) {
        Points points;
        for (int i = 0; i < count; ++i) {
            const double angle = kTurn * i / count, radius = 1e4 * (1 + 0.3 * std::sin(40 * angle));
            points.push_back({radius * std::cos(angle), radius * std::sin(angle)});
        }
        const double area = shoelace(points);
        EXPECT_NEAR(filledArea(tessellate(pathOf({points}))), area, area * 1e-6);
        std::reverse(points.begin(), points.end());
        EXPECT_NEAR(filledArea(tessellate(pathOf({points}))), area, area * 1e-6);
    }
}

TEST(Tessellator, combsAreFilledAlongEveryAxis) {
    for (const double angle : {0.0, 0.7, std::numbers::pi / 2}) {
        Points points;
        for (int i = 0; i < 4000; ++i) {
            const double x = i % 2 == 0 ? 0 : 1e5;
            points.push_back(
                {x * std::cos(angle) - i * std::sin(angle), x * std::sin(angle) + i * std::cos(angle)});
        }
        // Home around the teeth's tips.
        points.push_back(
            {2e5 * std::cos(angle) - 4001 * std::sin(angle), 2e5 * std::sin(angle) + 4001 * std::cos(angle)});
        points.push_back(
            {2e5 * std::cos(angle) + 9 * std::sin(angle), 2e5 * std::sin(angle) - 9 * std::cos(angle)});
        const double area = shoelace(points);
        EXPECT_NEAR(filledArea(tessellate(pathOf({points}))), area, area * 1e-4) << angle;
    }
}

TEST(Tessellator, cornersKeepTheirPlaceFarFromTheOrigin) {
    constexpr double kFar = 5e8;
    const double reach = 262144; // 2^18 to either side of the middle
    const Points run{{kFar - reach, 0.123}, {kFar + reach, 7.77}, {kFar + 3.3, 2 * reach - 0.321}};
    const auto mesh = tessellate(pathOf({run}));
    ASSERT_EQ(mesh->vertexCount(), 3U);
    for (std::size_t i = 0; i < 3; ++i) {
        const CGPoint place = corner(*mesh, i);
        const bool isCorner = std::any_of(run.begin(), run.end(), [place](CGPoint p) {
            return std::abs(p.x - place.x) <= 0.01 && std::abs(p.y - place.y) <= 0.01;
        });
        EXPECT_TRUE(isCorner) << place.x << ", " << place.y;
    }
}

TEST(Tessellator, degenerateOutlinesEncloseNothingAndHopelessOnesAreLeftOut) {
    const std::vector<Points> nothing{{},
                                      {{1, 1}},
                                      {{1, 1}, {2, 2}},
                                      {{1, 1}, {1, 1}, {1, 1}, {1, 1}},
                                      {{0, 0}, {5, 5}, {9, 9}, {3, 3}},
                                      {{0, 0}, {1e300, 0}, {0, 1e300}}};
    for (const Points& run : nothing) {
        EXPECT_EQ(filledArea(tessellate(pathOf({run}))), 0);
    }
    const Points repeated{{0, 0}, {0, 0}, {9, 0}, {9, 0}, {9, 9}, {9, 9}, {4, 9}, {0, 9}, {0, 0}, {0, 0}};
    EXPECT_NEAR(filledArea(tessellate(pathOf({repeated}))), 81, 1e-4);
    EXPECT_EQ(tessellate(pathOf({star(20001, 10000, 1e5)})), nullptr); // 2e8 crossings
    std::vector<Points> needles;
    for (int i = 0; i < 220; ++i) {
        const double angle = kTurn * i / 440;
        const CGPoint tip{1e5 * std::cos(angle), 1e5 * std::sin(angle)};
        needles.push_back({{-tip.x, -tip.y}, {tip.x, tip.y}, {tip.x - 50 * tip.y / 1e5, tip.y + 50}});
    }
    EXPECT_EQ(tessellate(pathOf(needles)), nullptr); // closing edges cross as well as the others
    Points ragged;
    for (int i = 0; i < 400000; ++i) {
        const double angle = kTurn * i / 400000, radius = i % 2 == 0 ? 1e5 : 1e5 + 10;
        ragged.push_back({radius * std::cos(angle), radius * std::sin(angle)});
    }
    EXPECT_EQ(tessellate(pathOf({ragged})), nullptr); // would take minutes
}

} // namespace trelmix::tessellator_test
