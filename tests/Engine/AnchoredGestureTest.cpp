#include "support/CaseCount.h"
#include "support/DelegateLog.h"
#include "support/EngineFixture.h"
#include "support/TouchStory.h"

#include <cmath>
#include <random>

namespace trelmix::gesture_test {

/// A map of 800 x 600 whose ground follows the fingers.
class AnchoredGesture : public EngineFixture {
protected:
    void SetUp() override {
        EngineFixture::SetUp();
        engine->setBehaviour(MapBehaviour::natural());
        engine->setDelegate(log);
        engine->initialiseWithTarget({54.35, 11.2}, 18);
        step();
        log->calls.clear();
    }
    CLLocationCoordinate2D under(CGPoint p) const { return engine->projection()->worldCoordinateFor(p); }
    double miss(CLLocationCoordinate2D held, CGPoint finger) const {
        const CGPoint seen = engine->projection()->screenCoordinateFor(held);
        return std::hypot(seen.x - finger.x, seen.y - finger.y);
    }
    double between(double low, double high) { return std::uniform_real_distribution(low, high)(_random); }
    void drawCamera(float lowest, float highest) {
        const CLLocationCoordinate2D target{between(-84, 84), between(-179, 179)};
        engine->setCamera(std::make_shared<TrelmixMapEngineCamera>(
                              target, between(-180, 180), between(0, 55),
                              static_cast<float>(between(double{lowest}, double{highest}))),
                          false);
    }
    TouchStory story() { return TouchStory(engine->view()); }
    std::shared_ptr<DelegateLog> log = std::make_shared<DelegateLog>();

private:
    std::mt19937 _random{11};
};

TEST_F(AnchoredGesture, theGroundGrabbedStaysUnderOneFingerAlongAnyPath) {
    for (int i = 0; i < caseCount(200); ++i) {
        drawCamera(15, 23);
        auto told = story();
        CGPoint finger{between(50, 750), between(300, 550)};
        const CLLocationCoordinate2D grabbed = under(finger);
        told.down(1, finger);
        for (int moves = 0; moves < 10; ++moves) {
            finger = {finger.x + between(10, 30), finger.y + between(-10, 15)};
            told.move(1, finger);
            EXPECT_LT(miss(grabbed, finger), 0.05) << i;
        }
        told.up(1);
    }
}

TEST_F(AnchoredGesture, twoFingersHoldTheirGroundEachAndTheOneThatStaysGoesOn) {
    for (int i = 0; i < caseCount(200); ++i) {
        drawCamera(18, 20);
        auto told = story();
        CGPoint one{between(100, 300), between(250, 550)};
        CGPoint two{between(500, 700), between(250, 550)};
        const CLLocationCoordinate2D first = under(one);
        const CLLocationCoordinate2D second = under(two);
        told.down(1, one).down(2, two);
        for (int moves = 0; moves < 10; ++moves) {
            one = {one.x + between(-12, 12) - 4, one.y + between(0, 10)};
            two = {two.x + between(-12, 12) + 4, two.y - between(0, 10)};
            told.move({{1, one}, {2, two}});
            if (moves > 2) {
                EXPECT_LT(miss(first, one), 0.5) << i;
                EXPECT_LT(miss(second, two), 0.5) << i;
            }
        }
        told.up(1);
        two.x += 30;
        told.move(2, two).up(2);
        EXPECT_LT(miss(second, two), 0.5) << i;
    }
}

TEST_F(AnchoredGesture, limitsSwitchesAndOtherCamerasTakeTheGroundAnewWithoutAJump) {
    auto told = story();
    told.down(1, {300, 300}).down(2, {500, 300}).move({{1, {0, 300}}, {2, {790, 300}}});
    told.move({{1, {-500, 300}}, {2, {1290, 300}}}).move({{1, {-20000, 300}}, {2, {20790, 300}}});
    EXPECT_EQ(engine->camera()->zoom(), 23.0F);
    told.move({{1, {-9000, 300}}, {2, {9790, 300}}});
    EXPECT_LT(engine->camera()->zoom(), 22.0F) << "back at once, not only after as long a way";
    told.up(1).up(2);

    engine->setCameraWithRotation(30, 40, 18, false);
    engine->setEnableRotationGesture(false);
    const CLLocationCoordinate2D middle = under({400, 300});
    told.down(1, {300, 300}).down(2, {500, 300}).move({{1, {300, 200}}, {2, {500, 420}}});
    EXPECT_LT(miss(middle, {400, 310}), 0.1);
    EXPECT_NEAR(engine->camera()->rotation(), 30, 1e-5);
    told.up(1).up(2);
    engine->setEnableRotationGesture(true);

    told.down(1, {300, 300}).move(1, {330, 330});
    engine->setCameraWithRotation(100, 10, 17, false);
    const CLLocationCoordinate2D anew = under({330, 330});
    told.move(1, {331, 350});
    EXPECT_LT(miss(anew, {331, 350}), 0.05);
    engine->setBehaviour({});
    const auto camera = *engine->camera();
    told.move(1, {500, 500}).up(1);
    EXPECT_EQ(engine->camera()->target(), camera.target()) << "another behaviour ends the gesture";
}

TEST_F(AnchoredGesture, twoFingersUpTogetherTiltUntilTheyLift) {
    const CLLocationCoordinate2D target = engine->camera()->target();
    auto told = story();
    told.down(1, {300, 300}).down(2, {500, 310}).move(1, {300, 288}).move(2, {500, 296});
    told.move({{1, {320, 268}}, {2, {540, 276}}});
    EXPECT_GT(engine->camera()->viewingAngle(), 18);
    EXPECT_EQ(engine->camera()->target(), target);
    told.up(1).move(2, {700, 100}).up(2);
    EXPECT_EQ(engine->camera()->target(), target);
}

TEST_F(AnchoredGesture, farGroundMovesTheMapNoFasterThanFourTimesTheTargetsScale) {
    engine->setCameraWithRotation(0, 55, 18, false);
    const CLLocationCoordinate2D before = engine->camera()->target();
    const CLLocationCoordinate2D left = under({399.5, 300});
    const CLLocationCoordinate2D right = under({400.5, 300});
    story().down(1, {400, 5}).move(1, {400, 105}).up(1);
    const double degreesPerPoint =
        (right.longitude - left.longitude) * std::cos(before.latitude * M_PI / 180);
    EXPECT_NEAR(engine->camera()->target().latitude - before.latitude, 400 * degreesPerPoint,
                degreesPerPoint);
}

TEST_F(AnchoredGesture, fingersAtOnePlaceCrossingOrManyMoveNothingToNowhere) {
    auto told = story();
    told.down(1, {300, 300}).down(2, {300, 300}).move({{1, {320, 310}}, {2, {320, 310}}});
    told.move({{1, {500, 310}}, {2, {100, 310}}}).move({{1, {100, 310}}, {2, {500, 310}}});
    for (int finger = 3; finger < 30; ++finger) {
        told.down(finger, {finger * 20.0, 100}).move(finger, {finger * 20.0, 400});
    }
    told.move({{1, {400, -5000}}, {2, {400, 300}}}).cancelAll();
    const auto camera = *engine->camera();
    EXPECT_TRUE(std::isfinite(camera.target().latitude) && std::isfinite(camera.zoom()));
    EXPECT_LT(miss(camera.target(), {400, 300}), 0.01);
}

TEST_F(AnchoredGesture, aDoubleTapZoomsAboutThePointAndAHeldPressStillPans) {
    engine->setCameraWithRotation(30, 40, 18, false);
    const CLLocationCoordinate2D tapped = under({600, 400});
    story().tap({600, 400}).tap({600, 400});
    for (int i = 0; i < 6; ++i) {
        step();
    }
    EXPECT_GT(engine->camera()->zoom(), 18.3F);
    EXPECT_LT(miss(tapped, {600, 400}), 0.05) << "all the way";
    story().tap({600, 400}).tap({600, 400});
    step(1);
    step();
    EXPECT_EQ(engine->camera()->zoom(), 20.0F) << "what was asked for first is not lost";
    EXPECT_LT(miss(tapped, {600, 400}), 0.05);

    auto two = story();
    const CLLocationCoordinate2D middle = under({300, 350});
    two.down(1, {200, 300}).down(2, {400, 400}).up(1).up(2);
    step(1);
    step();
    EXPECT_EQ(engine->camera()->zoom(), 19.0F);
    EXPECT_LT(miss(middle, {300, 350}), 0.05);

    const CLLocationCoordinate2D pressed = under({300, 200});
    story().tap({300, 200}).down(1, {300, 200}).move(1, {300, 150}).move(1, {310, 100}).wait(0.1).up(1);
    EXPECT_NEAR(engine->camera()->zoom(), 18.0F, 0.01) << "up after a tap zooms out";
    EXPECT_LT(miss(pressed, {300, 200}), 0.05);

    story().down(1, {300, 300}).wait(0.7).up(1);
    EXPECT_EQ(log->count("longPress"), 1U);
    story().down(1, {300, 300}).wait(0.7).move(1, {350, 330}).up(1);
    EXPECT_EQ(log->count("longPress"), 1U);
    EXPECT_GT(miss(tapped, {600, 400}), 50);
}

class ThrownMap : public AnchoredGesture {
protected:
    /// 600 points a second to the right, and the place that was under the finger then.
    CLLocationCoordinate2D fling() {
        auto told = story();
        told.down(1, {300, 300});
        for (double x = 310; x <= 400; x += 10) {
            told.move(1, {x, 300});
        }
        const CLLocationCoordinate2D held = under({400, 300});
        told.up(1);
        return held;
    }
    double xOf(CLLocationCoordinate2D place) const {
        return engine->projection()->screenCoordinateFor(place).x;
    }
    /// The frames of so many seconds.
    void run(double seconds) {
        for (double t = 0; t < seconds; t += kFrame) {
            step();
        }
    }
};

TEST_F(ThrownMap, aThrownMapRunsOnSlowsDownAndReportsItsRestOnce) {
    const CLLocationCoordinate2D held = fling();
    run(0.325);
    EXPECT_NEAR(xOf(held), 400 + 195 * 0.632, 12);
    EXPECT_EQ(log->count("idle"), 0U);
    run(4);
    EXPECT_NEAR(xOf(held), 400 + 195, 12);
    EXPECT_NEAR(engine->projection()->screenCoordinateFor(held).y, 300, 0.1);
    EXPECT_EQ(log->count("idle"), 1U);

    engine->setCameraTargetBoundsNorthEast({90, engine->camera()->target().longitude});
    engine->setCameraTargetBoundsSouthWest({-90, engine->camera()->target().longitude - 0.001});
    fling();
    run(4);
    EXPECT_NEAR(engine->camera()->target().longitude, engine->cameraTargetBoundsSouthWest().longitude, 1e-9);
}

TEST_F(ThrownMap, aTouchACameraOrAFingerThatRestedEndsItWhereItIs) {
    fling();
    run(0.1);
    auto told = story();
    told.down(2, {200, 200});
    const CLLocationCoordinate2D held = engine->camera()->target();
    run(0.5);
    EXPECT_EQ(engine->camera()->target(), held);
    EXPECT_EQ(log->count("idle"), 1U);
    told.up(2);

    fling();
    run(0.1);
    engine->setCameraWithRotation(10, 0, 17, false);
    const CLLocationCoordinate2D set = engine->camera()->target();
    run(0.5);
    EXPECT_EQ(engine->camera()->target(), set);

    auto slow = story();
    slow.down(1, {300, 300}).move(1, {400, 300}).wait(0.06);
    const CLLocationCoordinate2D still = engine->camera()->target();
    slow.up(1);
    run(0.5);
    EXPECT_EQ(engine->camera()->target(), still);
}

TEST_F(ThrownMap, twoFingersThatSpreadAndTurnGoOnSpreadingAndTurningToTheLimit) {
    auto told = story();
    told.down(1, {350, 300}).down(2, {450, 300});
    for (int i = 1; i <= 8; ++i) {
        told.move({{1, {350 - i * 8.0, 300.0 - i * 6}}, {2, {450 + i * 8.0, 300.0 + i * 6}}});
    }
    const float zoom = engine->camera()->zoom();
    const double rotation = engine->camera()->rotation();
    engine->setMaxZoom(zoom + 0.25F);
    told.up(1).up(2);
    run(4);
    EXPECT_NEAR(engine->camera()->zoom(), zoom + 0.25F, 1e-4);
    EXPECT_GT(std::abs(engine->camera()->rotation() - rotation), 5);
}

} // namespace trelmix::gesture_test
