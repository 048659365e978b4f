#include "View/GestureStage.h"

#include <cmath>

namespace trelmix::touch_fault_test {

using TouchFaults = GestureStage;

TEST_F(TouchFaults, aCancelledTouchCancelsWhatItBegan) {
    story.down(1, {100, 300}).move(1, {150, 300}).cancel(1);
    EXPECT_EQ(takeLog(), "pan began; pan cancelled; ");
    story.down(1, {100, 300}).cancel(1).wait(1);
    EXPECT_EQ(takeLog(), "") << "no tap";
    story.tap({10, 10}).cancelAll().wait(1);
    EXPECT_EQ(takeLog(), "") << "not even one that waited";
    story.down(1, {100, 300}).down(2, {200, 300}).move(2, {300, 300}).cancelAll().up(1).up(2);
    EXPECT_EQ(takeLog(), "pinch began; pinch cancelled; ");
    EXPECT_TRUE(allAtRest());
    EXPECT_EQ(story.dispatcher()->touchCount(), 0U);
}

TEST_F(TouchFaults, anIdentifierThatComesTwiceCancelsItsOldTouch) {
    story.down(1, {100, 300}).move(1, {150, 300}).down(1, {10, 10});
    EXPECT_EQ(takeLog(), "pan began; pan cancelled; ");
    EXPECT_EQ(story.dispatcher()->touchCount(), 1U);
    story.move(1, {10, 40}).up(1);
    EXPECT_EQ(takeLog(), "pan began; pan ended; ");
}

TEST_F(TouchFaults, touchesThatMakeNoSenseChangeNothing) {
    story.move(7, {1, 1}).up(7).cancel(8).down(1, {kNaN, 3}).down(2, {-5, 10}).down(4, {1e300, 0});
    EXPECT_EQ(story.dispatcher()->touchCount(), 0U);
    story.down(1, {100, 300}).move(1, {kInfinity, 300}).move(1, {100, kNaN}).move(1, {1e9, 0});
    EXPECT_EQ(takeLog(), "");
    story.move(1, {120, 300}).up(1, {kNaN, kNaN});
    EXPECT_EQ(takeLog(), "pan began; pan ended; ");
    EXPECT_EQ(pan->locationInView(view), (CGPoint{120, 300}));
}

TEST_F(TouchFaults, timeThatRunsBackwardsStandsStill) {
    TouchDispatcher& dispatcher = *story.dispatcher();
    dispatcher.handle({1, TouchPhase::began, {50, 50}, 2000});
    dispatcher.handle({1, TouchPhase::moved, {80, 50}, 1});
    dispatcher.handle({1, TouchPhase::moved, {90, 50}, kNaN});
    EXPECT_TRUE(std::isfinite(pan->velocity(view).x));
    EXPECT_GT(pan->velocity(view).x, 0);
    dispatcher.handle({1, TouchPhase::ended, {90, 50}, -kInfinity});
    EXPECT_TRUE(allAtRest());
    takeLog();
    dispatcher.handle({1, TouchPhase::began, {50, 50}, 5});
    dispatcher.handle({1, TouchPhase::ended, {50, 50}, 5.1});
    story.wait(0.36);
    EXPECT_EQ(takeLog(), "tap ended; ")
        << "the waiting is that of the run loop's clock, whatever the touches' says";
}

TEST_F(TouchFaults, aRecogniserMayBeDisabledOrRemovedByAnyAction) {
    onAction = [&](UIGestureRecognizer&) { pan->setIsEnabled(false); };
    story.down(1, {100, 300}).move(1, {150, 300}).move(1, {160, 300}).up(1);
    EXPECT_EQ(takeLog(), "pan began; pan cancelled; ");
    onAction = [&](UIGestureRecognizer&) { view->removeGestureRecognizer(pan); };
    pan->setIsEnabled(true);
    story.down(1, {100, 300}).move(1, {150, 300}).move(1, {170, 300}).up(1);
    EXPECT_EQ(takeLog(), "pan began; pan cancelled; ");
    EXPECT_EQ(pan->state(), UIGestureRecognizerState::possible);
    onAction = nullptr;
    story.tap({50, 50});
    view->removeGestureRecognizer(doubleTap);
    EXPECT_EQ(takeLog(), "tap ended; ") << "nothing is left to wait for";
}

TEST_F(TouchFaults, whatATapWaitsForMayVanishUnderItsHands) {
    const auto other = ViewNode::make({{0, 0}, {100, 100}});
    auto triple = std::make_shared<UITapGestureRecognizer>();
    triple->setNumberOfTapsRequired(3);
    doubleTap->setIsEnabled(false);
    singleTap->requireGestureRecognizerToFail(triple);
    other->addGestureRecognizer(triple);
    view->addSubview(other);
    story.tap({50, 50});
    triple.reset();
    other->removeFromSuperview();
    const std::weak_ptr<UIGestureRecognizer> gone = other->gestureRecognizers().front();
    other->removeGestureRecognizer(gone.lock());
    EXPECT_TRUE(gone.expired());
    story.wait(0.01);
    EXPECT_EQ(takeLog(), "tap ended; ");
}

TEST_F(TouchFaults, viewsRecognisersAndTheDispatcherMayEndInsideAnAction) {
    for (const bool isDispatcherFirst : {false, true}) {
        const auto root = ViewNode::make({{0, 0}, {100, 100}});
        auto child = ViewNode::make({{0, 0}, {100, 100}});
        const std::weak_ptr<UIView> childGone = child;
        root->addSubview(child);
        const auto childPan = std::make_shared<UIPanGestureRecognizer>();
        int calls = 0;
        childPan->addTarget([&, weak = std::weak_ptr(childPan)](UIGestureRecognizer&) {
            ++calls;
            if (isDispatcherFirst) {
                story.dispatcher().reset();
            }
            if (const auto owner = childGone.lock()) {
                owner->removeFromSuperview();
            }
            child.reset();
        });
        child->addGestureRecognizer(childPan);
        story.dispatcher() = std::make_shared<TouchDispatcher>(root);
        const std::shared_ptr<TouchDispatcher> dispatcher = isDispatcherFirst ? nullptr : story.dispatcher();
        TouchDispatcher* const raw = story.dispatcher().get();
        raw->handle({1, TouchPhase::began, {50, 50}, 0});
        raw->handle({1, TouchPhase::moved, {90, 50}, 0.1});
        EXPECT_GE(calls, 1);
        EXPECT_TRUE(childGone.expired());
        EXPECT_EQ(childPan->state(), UIGestureRecognizerState::possible);
    }
}

TEST_F(TouchFaults, touchesFedInsideAnActionComeAfterIt) {
    bool isFed = false;
    onAction = [&](UIGestureRecognizer& sender) {
        if (&sender == pan.get() && !std::exchange(isFed, true)) {
            story.dispatcher()->handle({1, TouchPhase::ended, {150, 300}, Clock::now()});
            story.dispatcher()->cancelAll();
            log += "back; ";
        }
    };
    story.down(1, {100, 300}).move(1, {150, 300});
    EXPECT_EQ(takeLog(), "pan began; back; pan ended; ");
    EXPECT_TRUE(allAtRest());
}

TEST_F(TouchFaults, aViewTakenOutOfTheTreeCancelsItsGesture) {
    const auto window = ViewNode::make({{0, 0}, {400, 800}});
    window->addSubview(view);
    TouchStory outer(window);
    outer.down(1, {100, 300}).move(1, {150, 300});
    view->removeFromSuperview();
    outer.move(1, {170, 300}).up(1);
    EXPECT_EQ(takeLog(), "pan began; pan cancelled; ");
    EXPECT_TRUE(allAtRest());
}

} // namespace trelmix::touch_fault_test
