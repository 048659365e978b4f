#include "support/DelegateLog.h"
#include "support/EngineFixture.h"
#include "support/TouchStory.h"

#include <cmath>

namespace trelmix::gesture_test {

constexpr CLLocationCoordinate2D kPlace{54.35, 11.2};

class Gesture : public EngineFixture {
protected:
    void SetUp() override {
        EngineFixture::SetUp();
        engine->setDelegate(log);
        engine->initialiseWithTarget(kPlace, 17);
        step();
        log->calls.clear();
    }
    CLLocationCoordinate2D under(CGPoint p) const { return engine->projection()->worldCoordinateFor(p); }
    CGPoint onScreen(CLLocationCoordinate2D c) const { return engine->projection()->screenCoordinateFor(c); }
    TouchStory story() { return TouchStory(engine->view()); }
    void finish() {
        step(1);
        step();
    }
    std::shared_ptr<DelegateLog> log = std::make_shared<DelegateLog>();
};

TEST_F(Gesture, whatWasUnderTheFingerStaysUnderItAlsoWhenTheGroundIsTilted) {
    // Ground beyond the middle is farther than it looks; to the first order of a short way, that is.
    for (const double tilt : {0.0, 30.0, 55.0}) {
        engine->setCameraWithRotation(200, tilt, 17, false);
        const CLLocationCoordinate2D grabbed = under({400, 300});
        story().down(1, {400, 300}).move(1, {400.25, 312}).up(1);
        EXPECT_NEAR(onScreen(grabbed).y, 312, 0.5) << tilt;
    }
    finish();
}

TEST_F(Gesture, aSpreadByTwoZoomsInByOneAndNothingMovesAfterAFingerLifts) {
    auto told = story();
    told.down(1, {300, 300}).down(2, {500, 300}).move({{1, {200, 300}}, {2, {600, 300}}});
    EXPECT_NEAR(engine->camera()->zoom(), 18, 1e-4);
    told.up(2).move(1, {10, 20}).up(1);
    EXPECT_NEAR(engine->camera()->zoom(), 18, 1e-4);
    engine->setEnableZoomGesture(false);
    story().down(1, {300, 300}).down(2, {500, 300}).move({{1, {200, 300}}, {2, {600, 300}}}).up(1).up(2);
    EXPECT_NEAR(engine->camera()->zoom(), 18, 1e-4);
    finish();
}

TEST_F(Gesture, turningTwoFingersClockwiseTurnsThePictureClockwise) {
    const CLLocationCoordinate2D east = under({700, 300});
    auto told = story();
    told.down(1, {400, 200}).down(2, {400, 400});
    for (int i = 1; i <= 9; ++i) {
        const double a = i * 10 * M_PI / 180;
        told.move({{1, {400 + 100 * std::sin(a), 300 - 100 * std::cos(a)}},
                   {2, {400 - 100 * std::sin(a), 300 + 100 * std::cos(a)}}});
    }
    told.up(1).up(2);
    EXPECT_NEAR(onScreen(east).x, 400, 1);
    EXPECT_NEAR(onScreen(east).y, 600, 1) << "what was right of the middle is now below it";
    EXPECT_NEAR(engine->camera()->rotation(), -90, 0.2);
    EXPECT_EQ(log->count("willMove"), 0U) << "a gesture says that it is one";
    finish();
}

TEST_F(Gesture, twoFingersUpTiltAndSidewaysScroll) {
    auto told = story();
    told.down(1, {300, 300}).down(2, {500, 300}).move({{1, {300, 280}}, {2, {500, 280}}});
    EXPECT_NEAR(engine->camera()->viewingAngle(), 20, 1e-3);
    told.move({{1, {300, 200}}, {2, {500, 200}}});
    EXPECT_NEAR(engine->camera()->viewingAngle(), 55, 1e-3);
    EXPECT_EQ(log->count("willMove"), 0U);
    told.up(1).up(2);
    engine->setCameraWithRotation(0, 0, 17, false);
    const double before = engine->camera()->target().longitude;
    story().down(1, {300, 300}).down(2, {500, 300}).move({{1, {200, 305}}, {2, {400, 305}}}).up(1).up(2);
    EXPECT_GT(engine->camera()->target().longitude, before);
    EXPECT_EQ(engine->camera()->viewingAngle(), 0);
    finish();
}

TEST_F(Gesture, aStepWithAnExactZeroAndWhatIsSwitchedOffDoNotMove) {
    story().down(1, {400, 300}).move(1, {450, 300}).up(1);
    EXPECT_NEAR(engine->camera()->target().longitude, kPlace.longitude, 1e-12);
    finish();
    log->calls.clear();
    engine->setEnableScrollGesture(false);
    engine->setEnableRotationGesture(false);
    story().down(1, {400, 300}).move(1, {500, 350}).up(1);
    EXPECT_NEAR(engine->camera()->target().longitude, kPlace.longitude, 1e-12);
    EXPECT_TRUE(log->calls.empty());
    finish();
}

TEST_F(Gesture, aDoubleTapZoomsInByOneWithAnAnimationAlsoAtTheHighestZoom) {
    story().tap({400, 300}).tap({402, 301});
    step(0.1);
    EXPECT_NEAR(engine->camera()->zoom(), 17.5, 0.2);
    step(0.2);
    step();
    EXPECT_NEAR(engine->camera()->zoom(), 18, 1e-4);
    EXPECT_EQ(log->count("willMove(gesture)"), 1U);
    engine->setCameraWithRotation(0, 0, 23, false);
    finish();
    log->calls.clear();
    story().tap({400, 300}).tap({402, 301});
    step(0.3);
    step();
    EXPECT_EQ(engine->camera()->zoom(), 23.0F);
    EXPECT_EQ(log->count("idle"), 1U);
}

TEST_F(Gesture, touchesBeforeTheFirstCameraAndOnAnEmptyViewDoNothing) {
    auto fresh = makeEngine();
    TouchStory(fresh->view()).down(1, {100, 100}).move(1, {150, 160}).up(1).tap({5, 5}).wait(1);
    EXPECT_FALSE(fresh->camera());
    auto empty = makeEngine(0, 0);
    empty->initialiseWithTarget(kPlace, 17);
    TouchStory(empty->view()).down(1, {0, 0}).move(1, {50, 60}).move(1, {51, 61}).up(1).wait(1);
    EXPECT_EQ(empty->camera()->target(), empty->camera()->target());
    EXPECT_NEAR(empty->camera()->target().latitude, kPlace.latitude, 1e-9);
    RunLoop::main().drain();
}

} // namespace trelmix::gesture_test
