#include "Overlays/MarkerNode.h"
#include "Geo/GeoUtils.h"
#include "support/EngineFixture.h"
#include "support/Pixels.h"

namespace trelmix::marker_node_test {

constexpr CLLocationCoordinate2D kQuay{54.32, 10.14}, kPier{54.321, 10.142};

class MarkerNodeTest : public EngineFixture {
protected:
    void SetUp() override {
        EngineFixture::SetUp();
        engine->initialiseWithTarget(kQuay, 18);
        marker->setMarkerIcon(plainImage(40, 60));
        marker->setCoordinate(kQuay);
    }
    void show() {
        marker->setMap(engine);
        step();
    }
    double shownTurn() const { return marker->presentedEulerAngles().z / DEG_TO_RAD_CONST; }

    const CLLocationCoordinate2D middle{(kQuay.latitude + kPier.latitude) / 2,
                                        (kQuay.longitude + kPier.longitude) / 2};
    std::shared_ptr<MarkerNode> marker = MarkerNode::make();
};

TEST_F(MarkerNodeTest, standsUprightTowardsTheCameraOrLiesFlatWithItsOwnRotation) {
    show();
    engine->setCameraWithRotation(-40, 30, 18, false);
    step();
    EXPECT_NEAR(marker->eulerAngles().x, 30 * DEG_TO_RAD_CONST, 1e-6);
    EXPECT_FALSE(lastFrame.list->items.at(0)->usesLevels);
    EXPECT_NEAR(shownTurn(), 40, 1e-4);
    marker->setIsFlat(true);
    // On to -170 degrees and to 170 by the shorter ways, past half a turn and back over it.
    for (const auto& [rotation, turn] : {std::pair{90.0, -90.0}, {-170.0, -190.0}, {170.0, -170.0}}) {
        marker->setMarkerRotation(rotation);
        step();
        EXPECT_NEAR(shownTurn(), turn, 1e-4);
        EXPECT_EQ(marker->eulerAngles().x, 0);
    }
    for (const double bad : {kInfinity, kNaN, 1e300}) {
        marker->setMarkerRotation(bad);
        marker->setRotation(bad, true, 0.1);
        step();
        EXPECT_NEAR(shownTurn(), -170, 1e-4);
    }
}

TEST_F(MarkerNodeTest, anAssignedCoordinateIsReachedAfterTheCommonDuration) {
    show();
    marker->setCoordinate(kPier);
    EXPECT_EQ(marker->coordinate(), kPier);
    step(0.1);
    EXPECT_NEAR(marker->presentedCoordinate().latitude, middle.latitude, 1e-7);
    step(0.1);
    EXPECT_NEAR(marker->presentedCoordinate().latitude, kPier.latitude, 1e-9);
    TrelmixMapMarker::setMarkerAnimationDuration(2.0);
    marker->setCoordinate(kQuay);
    step(1.0);
    // A new place on the way: on from where it is, also in between.
    marker->setCoordinate(kPier);
    step(0);
    EXPECT_NEAR(marker->presentedCoordinate().longitude, middle.longitude, 1e-9);
    step(1.0);
    EXPECT_NEAR(marker->presentedCoordinate().longitude, (middle.longitude + kPier.longitude) / 2, 1e-9);
    TrelmixMapMarker::setMarkerAnimationDuration(kNaN);
    marker->setCoordinate(kPier);
    step(0);
    EXPECT_NEAR(marker->presentedCoordinate().latitude, kPier.latitude, 1e-9);
}

TEST_F(MarkerNodeTest, anAnimatedRotationHoldsTheAngleUntilItEnds) {
    marker->setIsFlat(true);
    marker->setMarkerRotation(10);
    show();
    marker->setRotation(100, true, 1.0);
    step(0.5);
    EXPECT_NEAR(shownTurn(), -55, 1e-4);
    // A move that replaces another does not end the rotation.
    marker->setCoordinate(kPier, true, 5);
    marker->setCoordinate(kQuay, true, 5);
    engine->setCameraWithRotation(30, 0, 18, false);
    step(0.25);
    EXPECT_NEAR(shownTurn(), -77.5, 1e-4);
    step(0.25);
    step();
    EXPECT_NEAR(shownTurn(), -100, 1e-4);
    EXPECT_EQ(marker->markerRotation(), 10);
    marker->setMarkerRotation(20);
    step();
    EXPECT_NEAR(shownTurn(), -20, 1e-4);
}

TEST_F(MarkerNodeTest, theEndOfAnOlderRotationDoesNotEndTheNewerOneNorDoesACutOneBlockLaterOnes) {
    marker->setIsFlat(true);
    show();
    marker->setRotation(90, true, 0.5);
    Clock::set(Clock::now() + 0.5);
    engine->sceneView()->nextFrame(Clock::now());
    marker->setRotation(0, true, 1.0); // before the main queue hears that the first has ended
    RunLoop::main().pump();
    step(0.5);
    EXPECT_NEAR(shownTurn(), -45, 1e-4);
    marker->setRotation(90, true, 10);
    step(1);
    marker->setMap(nullptr);
    show();
    marker->setMarkerRotation(30);
    step();
    EXPECT_NEAR(shownTurn(), -30, 1e-4);
}

TEST_F(MarkerNodeTest, anIconSetAgainShowsOnceTheMapIsSetAgain) {
    show();
    const auto shown = marker->geometry();
    marker->setGroundAnchor(marker->groundAnchor());
    marker->setGroundAnchor({kNaN, 0});
    EXPECT_EQ(marker->geometry(), shown);
    marker->setMarkerIcon(nullptr);
    step();
    EXPECT_TRUE(lastFrame.list->items.empty());
    marker->setMarkerIcon(plainImage(8, 8));
    step();
    EXPECT_TRUE(lastFrame.list->items.empty());
    show();
    EXPECT_EQ(lastFrame.list->items.size(), 1U);
}

TEST_F(MarkerNodeTest, dragsFollowTheFingerAndStopARunningMove) {
    show();
    marker->setCoordinate(kPier, true, 1);
    step(0.5);
    const OpenGlPoint goal = *marker->markerPosition();
    marker->dragBy({10, 20});
    marker->dragBy({kNaN, 0});
    step(1);
    EXPECT_EQ(marker->exactPosition(), (Vector3d{goal.x + 10, -(goal.y + 20), 0}));
    EXPECT_EQ(marker->coordinate(), kPier);
}

} // namespace trelmix::marker_node_test
