#include "SideviewStage.h"

namespace trelmix::sideview_gesture_test {

class SideviewGestures : public SideviewStage {
protected:
    void SetUp() override {
        SideviewStage::SetUp();
        setUp();
        connect();
        // Room to pan in both directions.
        sideview->scrollView()->setZoomScale(0.8, false);
        start = targetLongitude();
    }

    bool isScrolling() const { return sideview->scrollView()->isScrollEnabled(); }
    double footprintX() const { return sideview->sideviewCameraRectangle()->frame().origin.x; }
    bool cameraMoved() {
        rest();
        const bool moved = targetLongitude() != start;
        start = targetLongitude();
        return moved;
    }
    CGPoint takeOffsetChange() {
        const CGPoint now = sideview->scrollView()->contentOffset();
        const CGPoint before = std::exchange(offset, now);
        return {now.x - before.x, now.y - before.y};
    }
    void enterDragMode(CGPoint at = {150, 50}) {
        story->down(1, at).wait(0.6);
        ASSERT_FALSE(isScrolling());
    }
    void drag(CGPoint from, CGPoint to) {
        story->down(1, from).move(1, {(from.x + to.x) / 2, from.y}).move(1, to).up(1);
    }

    double start = 0;
    CGPoint offset;
};

TEST_F(SideviewGestures, normallyATapMovesTheCameraAndAPanThePicture) {
    const double footprint = footprintX();
    story->tap({60, 50});
    EXPECT_EQ(takeLog(), "tap; ");
    RunLoop::main().drain();
    EXPECT_EQ(footprintX(), footprint) << "the camera is on its way and reports when it rests";
    EXPECT_TRUE(cameraMoved());
    EXPECT_NE(footprintX(), footprint);

    takeOffsetChange();
    drag({200, 80}, {140, 80});
    EXPECT_EQ(takeLog(), "");
    EXPECT_FALSE(cameraMoved());
    EXPECT_GT(takeOffsetChange().x, 40);
    EXPECT_TRUE(isScrolling());
}

TEST_F(SideviewGestures, aLongPressTurnsThePanThatFollowsIntoADragOfTheCamera) {
    takeOffsetChange();
    const double footprint = footprintX();
    enterDragMode();
    story->move(1, {200, 50}).move(1, {220, 50});
    EXPECT_EQ(takeLog(), "scroll; scroll; ");
    RunLoop::main().drain();
    EXPECT_NE(footprintX(), footprint) << "not animated: the camera is there at once";
    EXPECT_FALSE(isScrolling());
    story->up(1);
    EXPECT_TRUE(isScrolling());
    EXPECT_TRUE(cameraMoved());
    EXPECT_EQ(takeOffsetChange(), CGPoint{}) << "the picture stayed where it was";
}

TEST_F(SideviewGestures, aLongPressWithoutAPanNeverSticks) {
    const auto wake = [&](const char* how, auto tellStory) {
        enterDragMode();
        story->up(1);
        story->tap({60, 50});
        story->down(1, {60, 50}).wait(0.6).up(1);
        EXPECT_FALSE(isScrolling()) << "the mode lasts until a pan finishes";
        EXPECT_EQ(takeLog(), "") << "and in it neither a tap nor a press does anything";
        tellStory();
        EXPECT_TRUE(isScrolling()) << how;
        takeLog();
        story->tap({60, 50});
        EXPECT_EQ(takeLog(), "tap; ") << how;
        rest();
    };
    wake("a later pan ends", [&] { drag({60, 50}, {120, 50}); });
    wake("a later pan is cancelled", [&] { story->down(1, {60, 50}).move(1, {120, 50}).cancel(1); });
    wake("the pan has no engine to move", [&] {
        sideview->setDisplayedLevel(0, nullptr);
        drag({60, 50}, {120, 50});
        sideview->setDisplayedLevel(0, engine);
    });
    wake("zooming is enabled again", [&] { sideview->setEnableZooming(true); });
    wake("the behaviour changes", [&] { sideview->setBehaviour(SideviewBehaviour::natural()); });
    enterDragMode();
    story->up(1);
    EXPECT_TRUE(isScrolling()) << "naturally the press ends with the finger";
    enterDragMode();
    story->move(1, {200, 50});
    EXPECT_EQ(takeLog(), "scroll; ");
    const double there = targetLongitude();
    sideview->setBehaviour({});
    story->move(1, {260, 50}).up(1);
    EXPECT_TRUE(isScrolling());
    EXPECT_EQ(targetLongitude(), there) << "another behaviour ends the drag";
    rest();
}

TEST_F(SideviewGestures, withoutZoomingATapMovesTheCameraAndEveryPanDragsIt) {
    sideview->setEnableZooming(false);
    setUp();
    const auto expectHeld = [&] {
        EXPECT_FALSE(isScrolling());
        EXPECT_EQ(sideview->scrollView()->zoomScale(), 0.25);
        EXPECT_EQ(sideview->scrollView()->maximumZoomScale(), 0.25);
    };
    expectHeld();
    sideview->setEnableZooming(true);
    EXPECT_EQ(sideview->scrollView()->maximumZoomScale(), 1.0);
    sideview->scrollView()->setZoomScale(0.7, false);
    sideview->setEnableZooming(false);
    expectHeld();
    takeOffsetChange();
    story->tap({60, 50});
    EXPECT_EQ(takeLog(), "tap; ");
    EXPECT_TRUE(cameraMoved());
    drag({200, 50}, {240, 50});
    EXPECT_EQ(takeLog(), "scroll; scroll; ");
    EXPECT_TRUE(cameraMoved());
    EXPECT_FALSE(isScrolling());
    EXPECT_EQ(takeOffsetChange(), CGPoint{});
}

TEST_F(SideviewGestures, aLiveFootprintFollowsTheMapOnItsWayAndNoLongerThanItMoves) {
    float zoom = 19;
    for (const bool live : {false, true}) {
        SideviewBehaviour behaviour;
        behaviour.footprintIsLive = live;
        sideview->setBehaviour(behaviour);
        const double before = footprintX();
        engine->setCameraWithRotation(0, 0, ++zoom, true);
        step();
        step(0.05);
        step(0.05);
        EXPECT_EQ(footprintX() != before, live);
        rest();
        EXPECT_NEAR(footprintX(), seenExtent().first, 1e-4);
        step(0.6);
        step(0.6);
        Clock::set(Clock::now() + 1);
        EXPECT_FALSE(RunLoop::main().pump()) << "it does not look at a map that stands";
    }
}

TEST_F(SideviewGestures, withNothingToMoveTouchesDoNothing) {
    const auto touchAll = [&] {
        story->tap({60, 50});
        enterDragMode();
        story->move(1, {220, 50}).up(1);
        EXPECT_EQ(takeLog(), "");
        EXPECT_TRUE(isScrolling());
    };
    sideview->setDisplayedLevel(0, nullptr);
    touchAll();
    sideview->setDisplayedLevel(0, makeEngine()); // has no camera yet
    touchAll();
}

TEST_F(SideviewGestures, theApplicationMayDoAnythingInsideACall) {
    listener->onCall = [&] { setUp(); };
    story->tap({60, 50});
    EXPECT_EQ(takeLog(), "tap; ");
    EXPECT_FALSE(cameraMoved()) << "the tap was on a picture that is gone";

    listener->onCall = [&] { sideview->setDisplayedLevel(0, nullptr); };
    story->tap({60, 50});
    EXPECT_FALSE(cameraMoved());
    connect();

    listener->onCall = [&] { sideview.reset(); };
    const std::weak_ptr<UIView> weak = sideview;
    story->tap({60, 50});
    EXPECT_TRUE(weak.expired());
    EXPECT_EQ(takeLog(), "tap; tap; ");
}

} // namespace trelmix::sideview_gesture_test
