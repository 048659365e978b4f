#include "Overlays/CircleNode.h"
#include "Geo/GeoUtils.h"
#include "support/EngineFixture.h"

#include <cmath>

namespace trelmix::circle_node_test {

constexpr CLLocationCoordinate2D kHere{54.32, 10.14}, kThere{54.33, 10.16};

class CircleNodeTest : public EngineFixture {
protected:
    void SetUp() override {
        EngineFixture::SetUp();
        engine->initialiseWithTarget(kHere, 16);
        circle->setColor(UIColor{1, 0, 0, 0.5});
        circle->setCoordinate(kHere);
    }
    double diameterOf(double radius) const {
        return 2 * radius / GeoUtils::metersPerMapPoint(kHere.latitude, ZOOMLEVEL_MAX);
    }

    std::shared_ptr<CircleNode> circle = CircleNode::make();
};

TEST_F(CircleNodeTest, isARoundDiscOfItsDiameterOnTheGround) {
    circle->setRadius(100);
    circle->setMap(engine);
    step();
    const DrawItem& item = *lastFrame.list->items.at(0);
    EXPECT_EQ(item.kind, DrawKind::disc);
    EXPECT_EQ(item.color, (std::array<float, 4>{0.5F, 0, 0, 0.5F}));
    EXPECT_NEAR(item.corners[1].x - item.corners[0].x, diameterOf(100), 0.01);
    EXPECT_NEAR(item.corners[0].y - item.corners[2].y, diameterOf(100), 0.01);
    EXPECT_FLOAT_EQ(circle->position().z, 0.05F);
}

TEST_F(CircleNodeTest, movesAndGrowsTogetherAndCutShortEndsWhereItWasGoing) {
    circle->setRadius(10);
    circle->setMap(engine);
    circle->updateCircleWithCoordinate(kThere, 30, true, 1.0);
    EXPECT_EQ(circle->coordinate(), kThere);
    step(0.5);
    EXPECT_NEAR(circle->presentedScale().x, diameterOf(20), 0.01);
    EXPECT_NEAR(circle->presentedCoordinate().longitude, 10.15, 1e-9);
    step(0.5);
    EXPECT_NEAR(circle->presentedScale().x, diameterOf(30), 0.01);
    EXPECT_NEAR(circle->presentedCoordinate().latitude, kThere.latitude, 1e-9);
    EXPECT_EQ(circle->position().z, 0);
    circle->updateCircleWithCoordinate(kHere, 10, true, 1.0);
    step(0.5);
    circle->setMap(engine);
    step();
    EXPECT_NEAR(circle->presentedCoordinate().latitude, kHere.latitude, 1e-9);
    EXPECT_NEAR(circle->presentedScale().x, diameterOf(10), 0.01);
}

TEST_F(CircleNodeTest, withoutAMapOnlyTheSettersStore) {
    circle->setRadius(7);
    circle->updateCircleWithCoordinate(kThere, 30, false, 0);
    EXPECT_EQ(circle->coordinate(), kHere);
    EXPECT_EQ(circle->radius(), 7);
    EXPECT_FALSE(CLLocationCoordinate2DIsValid(circle->presentedCoordinate()));
}

TEST_F(CircleNodeTest, radiiThatAreNoLengthShowNothingAndEndlessOnesSomethingFinite) {
    circle->setMap(engine);
    for (const double radius : {-5.0, 0.0, -kInfinity, kNaN}) {
        circle->setRadius(radius);
        EXPECT_EQ(circle->scale().x, 0) << radius;
    }
    circle->setRadius(kInfinity);
    EXPECT_TRUE(std::isfinite(circle->scale().x));
}

} // namespace trelmix::circle_node_test
