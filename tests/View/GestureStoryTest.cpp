#include "View/GestureStage.h"

#include <cmath>
#include <numbers>

namespace trelmix::gesture_story_test {

constexpr double kDegree = std::numbers::pi / 180;

using TapStory = GestureStage;
using PressStory = GestureStage;
using PanStory = GestureStage;
using PairStory = GestureStage;

CGPoint around(CGPoint middle, double radius, double angle) {
    return {middle.x + radius * std::cos(angle), middle.y + radius * std::sin(angle)};
}

TEST_F(TapStory, aSingleTapWaitsUntilNoSecondOneCanCome) {
    longPress->requireGestureRecognizerToFail(singleTap); // closes a circle and is refused
    story.tap({50, 60}).wait(0.34);
    EXPECT_EQ(takeLog(), "");
    story.wait(0.02);
    EXPECT_EQ(takeLog(), "tap ended; ");
    EXPECT_EQ(singleTap->locationInView(view), (CGPoint{50, 60}));
    story.tap({50, 60}).wait(0.3).tap({80, 60});
    EXPECT_EQ(takeLog(), "double ended; ");
    story.wait(1).tap({50, 60}).tap({100, 60});
    EXPECT_EQ(takeLog(), "tap ended; ") << "certain as soon as the second lands elsewhere";
    story.wait(0.4);
    EXPECT_EQ(takeLog(), "tap ended; ");
    EXPECT_EQ(singleTap->locationInView(view), (CGPoint{100, 60}));
    EXPECT_TRUE(allAtRest());
}

TEST_F(TapStory, aSecondTapThatIsTooLateStartsAnew) {
    // The time stamps tell, even where the run loop had no chance to.
    const double start = Clock::now();
    TouchDispatcher& dispatcher = *story.dispatcher();
    dispatcher.handle({1, TouchPhase::began, {50, 60}, start});
    dispatcher.handle({1, TouchPhase::ended, {50, 60}, start + 0.05});
    dispatcher.handle({1, TouchPhase::began, {50, 60}, start + 0.45});
    EXPECT_EQ(takeLog(), "tap ended; ");
    dispatcher.handle({1, TouchPhase::ended, {50, 60}, start + 0.5});
    story.wait(0.4);
    EXPECT_EQ(takeLog(), "tap ended; ");
}

TEST_F(TapStory, tapsThatMoveLastTooLongOrHaveTwoFingersAreNone) {
    longPress->setIsEnabled(false);
    pan->setIsEnabled(false);
    story.down(1, {50, 50}).move(1, {61, 50}).up(1).wait(1);
    story.down(1, {50, 50}).wait(0.55).up(1).wait(1);
    story.down(1, {50, 50}).down(2, {90, 50}).up(2).up(1).wait(1);
    EXPECT_EQ(takeLog(), "");
    story.down(1, {50, 50}).move(1, {59, 50}).up(1).wait(1);
    EXPECT_EQ(takeLog(), "tap ended; ");
}

TEST_F(PressStory, aRestingFingerBeginsAndThenMayMove) {
    story.down(1, {50, 50}).move(1, {55, 50}).wait(0.4);
    EXPECT_EQ(takeLog(), "");
    story.wait(0.1);
    EXPECT_EQ(takeLog(), "long began; ");
    EXPECT_EQ(longPress->locationInView(view), (CGPoint{55, 50}));
    story.move(1, {200, 90}).move(1, {200, 90}).down(2, {10, 10}).up(2).up(1);
    EXPECT_EQ(takeLog(), "long changed; long ended; ")
        << "no report without a movement, other fingers ignored";
    EXPECT_EQ(longPress->locationInView(view), (CGPoint{200, 90}));
    story.down(1, {50, 50}).down(2, {60, 50}).wait(1).up(1).up(2);
    EXPECT_EQ(takeLog(), "") << "two fingers press nothing";
    EXPECT_TRUE(allAtRest());
}

TEST_F(PanStory, theTranslationCountsFromTheFirstTouch) {
    story.down(1, {100, 300}).move(1, {109, 300});
    EXPECT_EQ(takeLog(), "");
    story.move(1, {110, 300});
    EXPECT_EQ(takeLog(), "pan began; ");
    EXPECT_EQ(pan->translation(view), (CGPoint{10, 0}));
    pan->setTranslation({0, 0}, view);
    story.move(1, {110, 290}).up(1, {110, 280});
    EXPECT_EQ(pan->translation(view), (CGPoint{0, 0})) << "at rest again";
    EXPECT_EQ(takeLog(), "pan changed; pan changed; pan ended; ") << "lifting elsewhere is a movement too";
}

TEST_F(PanStory, fingersThatComeAndGoDoNotMoveIt) {
    double total = 0;
    onAction = [&](UIGestureRecognizer& sender) {
        if (&sender == pan.get()) {
            total += pan->translation(view).x;
            pan->setTranslation({0, 0}, view);
        }
    };
    story.down(1, {100, 300}).move(1, {120, 300});
    EXPECT_EQ(total, 20);
    story.down(2, {300, 700}).move(1, {130, 300});
    EXPECT_EQ(total, 25) << "the middle of two";
    EXPECT_EQ(pan->numberOfTouches(), 2U);
    story.up(1).move(2, {310, 700}).down(3, {5, 5}).up(2).move(3, {6, 5}).up(3);
    EXPECT_EQ(total, 36);
    EXPECT_TRUE(allAtRest());
}

TEST_F(PanStory, velocityIsThatOfTheLastMoments) {
    story.down(1, {100, 300});
    for (int i = 1; i <= 12; ++i) {
        story.move(1, {100 + 5.0 * i, 300 - 10.0 * i});
    }
    EXPECT_NEAR(pan->velocity(view).x, 300, 1e-6);
    EXPECT_NEAR(pan->velocity(view).y, -600, 1e-6);
    story.wait(0.3);
    story.move(1, {160, 180});
    EXPECT_EQ(pan->velocity(view), (CGPoint{0, 0})) << "the finger rested";
}

TEST_F(PairStory, aPinchMeasuresFromTheSecondTouchAndKeepsThePanOut) {
    story.down(1, {100, 300}).down(2, {200, 300}).move(2, {207, 300});
    EXPECT_EQ(takeLog(), "");
    story.move(2, {300, 300});
    EXPECT_EQ(takeLog(), "pinch began; ");
    EXPECT_DOUBLE_EQ(pinch->scale(), 2.0);
    EXPECT_EQ(pinch->locationInView(view), (CGPoint{200, 300}));
    pinch->setScale(1);
    story.move(2, {500, 300});
    EXPECT_DOUBLE_EQ(pinch->scale(), 2.0);
    story.up(2);
    EXPECT_EQ(takeLog(), "pinch changed; pinch ended; ");
    story.move(1, {0, 0});
    EXPECT_EQ(takeLog(), "") << "the finger that stays moves nothing";
    story.down(3, {0, 100}).move(3, {0, 50});
    EXPECT_EQ(takeLog(), "pinch began; ") << "until another one comes";
    EXPECT_DOUBLE_EQ(pinch->scale(), 0.5);
    story.up(1).up(3).wait(1);
    EXPECT_TRUE(allAtRest());
}

TEST_F(PairStory, aThirdFingerIsIgnoredUntilItTakesAPlaceWithoutAJump) {
    story.down(1, {100, 300}).down(2, {200, 300}).move(2, {300, 300}).down(3, {100, 700}).move(3, {100, 701});
    EXPECT_DOUBLE_EQ(pinch->scale(), 2.0);
    story.up(1);
    EXPECT_DOUBLE_EQ(pinch->scale(), 2.0);
    const double span = std::hypot(200, 401);
    story.move(3, {300 - 100, 300 + 200.5});
    EXPECT_NEAR(pinch->scale(), 2.0 * std::hypot(100, 200.5) / span, 1e-12);
}

TEST_F(PairStory, turningClockwiseOnScreenIsPositiveThroughWholeTurns) {
    double total = 0;
    onAction = [&](UIGestureRecognizer& sender) {
        if (&sender == rotation.get()) {
            total += rotation->rotation();
            rotation->setRotation(0);
        }
    };
    const CGPoint middle{200, 300};
    story.down(1, around(middle, 100, std::numbers::pi)).down(2, around(middle, 100, 0));
    for (int degrees = 1; degrees <= 400; ++degrees) {
        const double angle = (degrees - 0.01) * kDegree;
        story.move({{1, around(middle, 100, angle + std::numbers::pi)}, {2, around(middle, 100, angle)}});
        EXPECT_NEAR(total, degrees <= 5 ? 0 : angle, 1e-9) << degrees;
    }
    EXPECT_EQ(takeLog().find("p"), std::string::npos) << "neither pinch nor pan";
}

TEST_F(PairStory, fingersThatMoveTogetherInOneEventOnlyPan) {
    story.down(1, {100, 300}).down(2, {200, 300}).move({{1, {100, 260}}, {2, {200, 260}}});
    EXPECT_EQ(takeLog(), "pan began; ");
    EXPECT_EQ(pan->translation(view), (CGPoint{0, -40}));
    EXPECT_EQ(pan->numberOfTouches(), 2U);
}

TEST_F(PairStory, ofTwoThatQualifyAtOnceTheFirstAddedWinsUnlessTheyMayRunTogether) {
    story.down(1, {100, 300}).down(2, {200, 300}).move(2, {250, 350}).up(2).up(1);
    EXPECT_EQ(takeLog(), "pinch began; pinch ended; ");
    // Either order of asking counts.
    delegate->runTogether = [&](UIGestureRecognizer& a, UIGestureRecognizer& b) {
        return &a == rotation.get() && &b == pinch.get();
    };
    story.down(1, {100, 300}).down(2, {200, 300}).move(2, {250, 350}).up(2).up(1);
    EXPECT_EQ(takeLog(), "pinch began; rotation began; pinch ended; rotation ended; ");
    EXPECT_TRUE(allAtRest());
}

TEST_F(PanStory, fingersOnDifferentViewsDoNotDisturbEachOther) {
    const auto left = ViewNode::make({{0, 0}, {200, 400}});
    const auto inner = ViewNode::make({{50, 100}, {100, 100}});
    left->addSubview(inner);
    view->addSubview(left);
    const auto ownPan = std::make_shared<UIPanGestureRecognizer>();
    inner->addGestureRecognizer(ownPan);
    pinch->setIsEnabled(false);
    rotation->setIsEnabled(false);
    story.down(1, {100, 150}).move(1, {120, 150});
    EXPECT_EQ(ownPan->state(), UIGestureRecognizerState::began) << "the deepest view's comes first";
    EXPECT_EQ(ownPan->locationInView(inner), (CGPoint{70, 50}));
    EXPECT_EQ(takeLog(), "");
    story.down(2, {300, 600}).move(2, {300, 650});
    EXPECT_EQ(ownPan->translation(inner), (CGPoint{20, 0}));
    story.up(1).up(2).down(2, {300, 600}).move(2, {300, 650});
    EXPECT_EQ(takeLog(), "pan began; ");
}

} // namespace trelmix::gesture_story_test
