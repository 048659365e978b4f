#include "Engine/CameraBounds.h"
#include "Geo/GeoUtils.h"
#include "support/DelegateLog.h"
#include "support/EngineFixture.h"

#include <stdexcept>

namespace trelmix::camera_path_test {

constexpr CLLocationCoordinate2D kPlace{54.35, 11.2};

using Calls = std::vector<std::string>;

class CameraPath : public EngineFixture {
protected:
    void SetUp() override {
        EngineFixture::SetUp();
        engine->setDelegate(log);
    }
    void start(float zoom = 17) {
        engine->initialiseWithTarget(kPlace, zoom);
        step();
        log->calls.clear();
        log->records.clear();
    }
    static std::shared_ptr<TrelmixMapEngineCamera> record(CLLocationCoordinate2D target, double rotation,
                                                          double tilt, float zoom) {
        return std::make_shared<TrelmixMapEngineCamera>(target, rotation, tilt, zoom);
    }
    std::shared_ptr<DelegateLog> log = std::make_shared<DelegateLog>();
};

TEST_F(CameraPath, beforeTheFirstCameraThereIsNoneAndOnlyAWholeRecordMakesOne) {
    EXPECT_FALSE(engine->camera());
    EXPECT_FALSE(engine->projection());
    engine->setCameraWithRotation(10, 20, 17, false);
    EXPECT_FALSE(engine->camera());
    engine->setCamera(record(kPlace, 10, 20, 17), false);
    ASSERT_TRUE(engine->camera());
    EXPECT_NEAR(engine->camera()->rotation(), 10, 1e-5);
    EXPECT_NE(engine->camera(), engine->camera());
    step();
}

TEST_F(CameraPath, aDelegateThatThrowsIsReportedAndTheCameraGoesOn) {
    start();
    log->onWillMove = log->onIdle = [] { throw std::runtime_error("no"); };
    for (const double rotation : {1.0, 2.0}) {
        engine->setCameraWithRotation(rotation, 0, 17, false);
        step();
        EXPECT_NEAR(engine->camera()->rotation(), rotation, 1e-4);
    }
    EXPECT_EQ(takeFaults().size(), 4U);
}

TEST_F(CameraPath, zoomAndTiltAreLimitedToWhatIsSupported) {
    float heard = 0;
    log->onWillMove = [&] { heard = engine->camera()->zoom(); };
    start(30);
    EXPECT_EQ(heard, 23.0F) << "also while the first one is announced";
    EXPECT_EQ(engine->camera()->zoom(), 23.0F);
    engine->setCameraWithRotation(0, 80, 3, false);
    EXPECT_NEAR(engine->camera()->viewingAngle(), 55, 1e-4);
    EXPECT_EQ(engine->camera()->zoom(), 15.0F);
    engine->setCameraWithRotation(0, -10, 17, false);
    EXPECT_EQ(engine->camera()->viewingAngle(), 0);
    engine->setCameraWithRotation(0, kNaN, 17, false);
    EXPECT_NEAR(engine->camera()->viewingAngle(), 55, 1e-4);
    auto other = makeEngine();
    other->initialiseWithTarget(kPlace, 18);
    // Shared by all engines; one outside the supported range limits nothing.
    for (const auto& [least, most, reachedLeast, reachedMost] :
         {std::array{5.0F, 20.0F, 15.0F, 20.0F}, {24.0F, 1e9F, 15.0F, 23.0F}, {16.0F, -1e9F, 16.0F, 23.0F}}) {
        engine->setMinZoom(least);
        engine->setMaxZoom(most);
        EXPECT_EQ(engine->minZoom(), least);
        other->setCameraWithRotation(0, 0, 30, false);
        EXPECT_EQ(other->camera()->zoom(), reachedMost);
        other->setCameraWithRotation(0, 0, 1, false);
        EXPECT_EQ(other->camera()->zoom(), reachedLeast);
    }
    log->onWillMove = nullptr;
    step();
}

TEST_F(CameraPath, aBehaviourSetInARunningMapShowsItAsAFreshMapWould) {
    MapBehaviour wide;
    wide.zooms = wide.zoomIsScale = true;
    start(16);
    engine->setBehaviour(wide);
    EXPECT_EQ(engine->minSupportedZoom(), 0.0F);
    engine->setCamera(record({70, 11.2}, 20, 40, 3), false);
    EXPECT_EQ(engine->camera()->zoom(), 3.0F);
    auto fresh = TrelmixMapEngineSceneView::make({{0, 0}, {800, 600}}, wide);
    fresh->initialiseWithTarget(kPlace, 16);
    fresh->setCamera(record({70, 11.2}, 20, 40, 3), false);
    EXPECT_EQ(engine->projection()->topLeftCoordinate(), fresh->projection()->topLeftCoordinate());

    fresh->setMinZoom(5);
    EXPECT_EQ(fresh->camera()->zoom(), 5.0F) << "at once";
    EXPECT_EQ(engine->camera()->zoom(), 3.0F) << "and for this engine alone";
    engine->setBehaviour({});
    EXPECT_EQ(engine->camera()->zoom(), 15.0F);
    step();
}

TEST_F(CameraPath, numbersThatAreNotFiniteLeaveTheCameraAsItWas) {
    start();
    const auto before = engine->camera();
    for (const auto& bad :
         {record({kNaN, 11}, 0, 0, 17), record({-90, 11}, 0, 0, 17), record(kPlace, kInfinity, 0, 18),
          record(kPlace, 0, 0, static_cast<float>(kNaN)), std::shared_ptr<TrelmixMapEngineCamera>()}) {
        engine->setCamera(bad, false);
    }
    step(0.5);
    EXPECT_EQ(engine->camera()->target(), before->target());
    EXPECT_EQ(engine->camera()->zoom(), before->zoom());
    EXPECT_TRUE(log->calls.empty());
}

TEST_F(CameraPath, aSetterReportsRestAfterTheCurrentEventWithEqualRecords) {
    start();
    engine->setCameraWithRotation(30, 20, 18, false);
    EXPECT_EQ(log->calls, Calls{"willMove"});
    RunLoop::main().pump();
    EXPECT_EQ(log->calls, (Calls{"willMove", "didChange", "idle"}));
    EXPECT_EQ(log->records[0], log->records[1]);
    EXPECT_NEAR(log->records[0]->rotation(), 30, 1e-5);
}

TEST_F(CameraPath, anAnimationRunsTheShortWayInAFifthOfASecondAndThenReports) {
    start();
    engine->setCameraWithRotation(170, 0, 17, false);
    step();
    log->calls.clear();
    engine->setCameraWithRotation(-170, 40, 18, true);
    EXPECT_EQ(log->calls, Calls{"willMove"});
    EXPECT_NEAR(engine->camera()->zoom(), 17, 1e-5);
    step(0.1);
    EXPECT_NEAR(engine->camera()->zoom(), 17.5, 1e-3);
    // Halfway from 170 to 190, as the camera node counts; plus 180 would be nearly twice round.
    EXPECT_NEAR(lastFrame.camera.eulerAngles.z, -3.14159, 1e-3);
    EXPECT_EQ(log->calls, Calls{"willMove"});
    step(0.1);
    step();
    EXPECT_EQ(log->calls, (Calls{"willMove", "didChange", "idle"}));
    EXPECT_FLOAT_EQ(engine->camera()->zoom(), 18);
}

TEST_F(CameraPath, aNewChangeEndsARunningAnimationWhichThenReportsNothing) {
    start();
    engine->setCameraWithRotation(0, 0, 20, true);
    step(0.1);
    engine->setCameraWithRotation(0, 0, 16, true);
    step(0.15);
    EXPECT_EQ(log->count("idle"), 0U);
    step(0.1);
    step(0.5);
    EXPECT_EQ(log->count("idle"), 1U);
    EXPECT_FLOAT_EQ(engine->camera()->zoom(), 16);
}

TEST_F(CameraPath, theFirstCameraOfAllIsInPlaceAtOnceEvenWhenAnimatedAndShowsWithItsFrame) {
    engine->setCamera(record(kPlace, 45, 30, 19), true);
    EXPECT_EQ(engine->sceneView()->alpha(), 0);
    step(0.05);
    EXPECT_EQ(engine->sceneView()->alpha(), 1);
    EXPECT_FLOAT_EQ(engine->camera()->zoom(), 19);
    EXPECT_NEAR(lastFrame.camera.eulerAngles.x, 30 * 3.14159265 / 180, 1e-5);
    EXPECT_EQ(log->count("idle"), 0U);
    step(0.2);
    step();
    EXPECT_EQ(log->count("idle"), 1U);
}

TEST_F(CameraPath, gestureStepsShareOneReportAFewHundredthsAfterTheLast) {
    start();
    for (int i = 0; i < 10; ++i) {
        auto change = engine->currentCamera();
        change.zoom += 0.1F;
        change.fromGesture = true;
        engine->internalSetCamera(change);
        step(0.02);
    }
    EXPECT_EQ(log->count("willMove(gesture)"), 10U);
    EXPECT_EQ(log->count("idle"), 0U);
    step(0.05);
    step();
    EXPECT_EQ(log->count("idle"), 1U);
}

TEST_F(CameraPath, aDelegateThatSetsACameraWinsAndNeitherOverflowsTheStackNorStarvesTheLoop) {
    start();
    log->onWillMove = [this] {
        log->onWillMove = nullptr;
        engine->setCamera(record({54.36, 11.21}, 90, 0, 19), false);
    };
    engine->setCamera(record(kPlace, 0, 0, 16), false);
    step();
    EXPECT_FLOAT_EQ(engine->camera()->zoom(), 19);
    EXPECT_NEAR(engine->camera()->target().latitude, 54.36, 1e-9);
    EXPECT_EQ(log->count("idle"), 1U);
    log->onWillMove = [this] { engine->setCameraWithRotation(1, 0, 17, false); };
    engine->setCameraWithRotation(0, 0, 16, false);
    log->onWillMove = nullptr;
    log->onIdle = [this] { engine->setCameraWithRotation(2, 0, 17, false); };
    step();
    EXPECT_LT(log->calls.size(), 50U);
    log->onIdle = nullptr;
    step();
    step();
}

TEST_F(CameraPath, boundsHoldTheTargetAndOneInvalidCornerSwitchesThemOff) {
    start();
    const CLLocationCoordinate2D outside{60, 11.2};
    engine->setCameraTargetBoundsNorthEast({54.36, 11.22});
    engine->setCamera(record(outside, 0, 0, 17), false);
    EXPECT_NEAR(engine->camera()->target().latitude, 60, 1e-9);
    engine->setCameraTargetBoundsSouthWest({54.34, 11.18});
    engine->setCamera(record(outside, 0, 0, 17), false);
    EXPECT_NEAR(engine->camera()->target().latitude, 54.36, 1e-9);
    EXPECT_NEAR(engine->camera()->target().longitude, 11.2, 1e-9);
    step();
}

constexpr double kWorld = 256.0 * ZOOMLEVEL_MAX_SCALE;

TEST(CameraBounds, theTargetGoesToTheNearestPointOfTheRectangle) {
    const Coordinate northEast{54.36, 11.22}, southWest{54.34, 11.18};
    const WorldMapPoint ne = GeoUtils::scenePoint(northEast), sw = GeoUtils::scenePoint(southWest);
    const WorldMapPoint middle{(ne.x + sw.x) / 2, (ne.y + sw.y) / 2};
    struct Case {
        WorldMapPoint target, expected;
    };
    for (const Case& c : {Case{middle, middle}, Case{{middle.x, sw.y + 600}, {middle.x, sw.y}},
                          Case{{sw.x - 300, middle.y}, {sw.x, middle.y}}, Case{{ne.x + 500, ne.y - 100}, ne},
                          // A hair outside a long edge stays there and does not jump to a short one.
                          Case{{ne.x - 9, ne.y - 0.001}, {ne.x - 9, ne.y}}}) {
        EXPECT_EQ(nearestPointInBounds(c.target, northEast, southWest), c.expected);
        EXPECT_EQ(nearestPointInBounds(c.target, northEast, northEast), ne) << "bounds of no extent";
    }
}

TEST(CameraBounds, aCornerAtAPoleLiesOnTheEdgeOfTheMap) {
    const Coordinate northEast{90, 11}, southWest{-90, 10};
    const double west = GeoUtils::scenePoint({0, 10}).x, east = GeoUtils::scenePoint({0, 11}).x;
    EXPECT_EQ(nearestPointInBounds({0, kWorld / 3}, northEast, southWest), (WorldMapPoint{west, kWorld / 3}));
    EXPECT_EQ(nearestPointInBounds({kWorld, -5}, northEast, southWest), (WorldMapPoint{east, 0}));
    EXPECT_EQ(nearestPointInBounds({0, 2 * kWorld}, northEast, southWest), (WorldMapPoint{west, kWorld}));
}

} // namespace trelmix::camera_path_test
