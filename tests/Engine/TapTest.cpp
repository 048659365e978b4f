#include "support/DelegateLog.h"
#include "support/EngineFixture.h"
#include "support/Pixels.h"
#include "support/TouchStory.h"

#include <Trelmix/TrelmixMapCircle.h>
#include <Trelmix/TrelmixMapEngineFactory.h>
#include <Trelmix/TrelmixMapPolyline.h>

namespace trelmix::tap_test {

constexpr CLLocationCoordinate2D kPlace{54.35, 11.2};
constexpr CGPoint kMiddle{400, 300};

class TapLog : public DelegateLog {
public:
    bool handlesMarkers = true;
    std::optional<CLLocationCoordinate2D> tapped;
    std::shared_ptr<TrelmixMapOverlay> overlay;
    std::function<void()> onDrag;

    void mapViewDidTapAt(CLLocationCoordinate2D at) override { note("tap", at); }
    void mapViewDidLongPressAt(CLLocationCoordinate2D at) override { note("longPress", at); }
    bool mapViewDidTapMarker(const std::shared_ptr<TrelmixMapMarker>& marker) override {
        note("marker", {}, marker);
        return handlesMarkers;
    }
    void mapViewDidTapAtOverlay(const std::shared_ptr<TrelmixMapOverlay>& at) override {
        note("overlay", {}, at);
    }
    void mapViewDidBeginDraggingMarker(const std::shared_ptr<TrelmixMapMarker>&) override { note("begin"); }
    void mapViewDidDragMarker(const std::shared_ptr<TrelmixMapMarker>&) override {
        note("drag");
        run(onDrag);
    }
    void mapViewDidEndDraggingMarker(const std::shared_ptr<TrelmixMapMarker>&) override { note("end"); }

private:
    void note(const char* call, std::optional<CLLocationCoordinate2D> place = {},
              std::shared_ptr<TrelmixMapOverlay> hit = {}) {
        calls.emplace_back(call);
        tapped = place;
        overlay = std::move(hit);
    }
};

class Tap : public EngineFixture {
protected:
    void SetUp() override {
        EngineFixture::SetUp();
        engine->setDelegate(log);
        engine->initialiseWithTarget(kPlace, 17);
        finish();
    }
    void finish() {
        step(0.5);
        step(0.5);
        step();
        log->calls.clear();
    }
    std::shared_ptr<TrelmixMapMarker> marker(CLLocationCoordinate2D at = kPlace) {
        auto made = TrelmixMapEngineFactory::createMapMarkerWith(plainImage(20, 20), at);
        made->setMap(engine);
        step();
        return made;
    }
    std::shared_ptr<TrelmixMapCircle> tappableCircle() {
        auto made = TrelmixMapEngineFactory::createMapCircleWithCoordinate(kPlace, 30);
        made->setColor(UIColor::redColor());
        made->setTappable(true);
        made->setMap(engine);
        return made;
    }
    void tap(CGPoint at) { TouchStory(engine->view()).tap(at).wait(0.5); }
    std::shared_ptr<TapLog> log = std::make_shared<TapLog>();
};

TEST_F(Tap, onEmptyMapReportsTheCoordinateUnderTheFingerAndALongPressWhereItEnds) {
    tap({500, 200});
    EXPECT_EQ(log->calls, std::vector<std::string>{"tap"});
    const CGPoint back = engine->projection()->screenCoordinateFor(log->tapped.value());
    EXPECT_NEAR(back.x, 500, 0.01);
    EXPECT_NEAR(back.y, 200, 0.01);
    log->calls.clear();
    TouchStory(engine->view()).down(1, {300, 300}).wait(0.6).move(1, {320, 310}).up(1).wait(0.5);
    EXPECT_EQ(log->calls, std::vector<std::string>{"longPress"});
    EXPECT_NEAR(engine->projection()->screenCoordinateFor(log->tapped.value()).x, 320, 0.01);
}

TEST_F(Tap, onAMarkerAsksTheDelegateAndCentresOnlyWhenItIsNotHandled) {
    const CLLocationCoordinate2D aside = engine->projection()->worldCoordinateFor({500, 200});
    const auto pin = marker(aside);
    tap({505, 205});
    EXPECT_EQ(log->calls, std::vector<std::string>{"marker"});
    EXPECT_EQ(log->overlay, pin);
    log->handlesMarkers = false;
    tap({505, 205});
    EXPECT_EQ(log->count("willMove"), 1U);
    step(0.1);
    step(0.2);
    step();
    EXPECT_NEAR(engine->camera()->target().latitude, aside.latitude, 1e-9);
    EXPECT_EQ(log->count("idle"), 1U);
    engine->setCamera(std::make_shared<TrelmixMapEngineCamera>(kPlace, 0, 0, 17.0F), false);
    step();
    pin->setCoordinate(kCLLocationCoordinate2DInvalid);
    tap({500, 200});
    finish();
    EXPECT_NEAR(engine->camera()->target().latitude, aside.latitude, 1e-6) << "the place where it stands";
    pin->setTappable(false);
    tap(kMiddle);
    pin->setTappable(true);
    pin->setVisible(false);
    tap(kMiddle);
    EXPECT_EQ(log->calls, (std::vector<std::string>{"tap", "tap"})) << "nor is what is hidden hit";
}

TEST_F(Tap, ofOverlaysAtOneDistanceTheTopmostTappableOneAnswers) {
    const auto below = tappableCircle();
    const auto above = tappableCircle();
    step();
    tap(kMiddle);
    EXPECT_EQ(log->calls, std::vector<std::string>{"overlay"});
    EXPECT_EQ(log->overlay, above);
    above->setTappable(false);
    tap(kMiddle);
    EXPECT_EQ(log->overlay, below);
}

TEST_F(Tap, boxesOrWhatIsDrawnDecide) {
    const auto circle = tappableCircle();
    const auto line = TrelmixMapEngineFactory::createMapPolylineWithVertices(
        {CLLocation(engine->projection()->worldCoordinateFor({50, 50})),
         CLLocation(engine->projection()->worldCoordinateFor({150, 150}))});
    line->setWidth(10);
    line->setTappable(true);
    line->setMap(engine);
    step();
    const CGPoint edge =
        engine->projection()->screenCoordinateFor({kPlace.latitude + 29.9 / 111226.3, kPlace.longitude});
    const double radius = kMiddle.y - edge.y;
    struct Case {
        CGPoint at;
        bool boxHit, exactHit;
    };
    for (const Case& c :
         {Case{{400 + radius * 0.9, 300 + radius * 0.9}, true, false}, // the box's corner
          Case{{400 + radius * 0.65, 300 + radius * 0.65}, true, true}, Case{{100, 100}, true, true},
          Case{{104, 97}, true, true}, Case{{110, 90}, true, false}, Case{{47, 100}, true, false},
          Case{{40, 100}, false, false}}) {
        for (const bool boxOnly : {true, false}) {
            engine->setHitTestBoundingBoxOnly(boxOnly);
            log->calls.clear();
            tap(c.at);
            EXPECT_EQ(log->calls.back(), (boxOnly ? c.boxHit : c.exactHit) ? "overlay" : "tap")
                << c.at.x << ", " << c.at.y << (boxOnly ? " box" : " exact");
        }
    }
}

TEST_F(Tap, aDraggedMarkersAnchorStaysUnderTheFingerAndTheCameraStaysStill) {
    engine->setCameraWithRotation(35, 0, 17.5F, false);
    const auto pin = marker();
    pin->setIsDraggable(true);
    finish();
    TouchStory told(engine->view());
    told.down(1, kMiddle).wait(0.6).move(1, {430, 310}).move(1, {430, 310}).move(1, {500, 200});
    told.down(2, {100, 100}).move(2, {150, 190}).up(2).up(1).wait(0.5);
    EXPECT_EQ(log->calls, (std::vector<std::string>{"begin", "drag", "drag", "end"}));
    const CGPoint at = engine->projection()->screenCoordinateFor(pin->presentedCoordinate());
    EXPECT_NEAR(at.x, 500, 0.5);
    EXPECT_NEAR(at.y, 200, 0.5);
    EXPECT_NEAR(engine->camera()->target().latitude, kPlace.latitude, 1e-9);
    TouchStory(engine->view()).down(1, {100, 100}).move(1, {160, 150}).up(1).wait(0.5);
    EXPECT_GT(log->count("willMove(gesture)"), 0U) << "gestures work again";
}

TEST_F(Tap, aDragEndsWhenItsMarkerLeavesTheMapOrTheTouchIsCancelled) {
    const auto pin = marker();
    pin->setIsDraggable(true);
    log->onDrag = [&] { pin->setMap(nullptr); };
    TouchStory told(engine->view());
    told.down(1, kMiddle).wait(0.6).move(1, {430, 310}).move(1, {450, 320}).up(1).wait(0.5);
    EXPECT_EQ(log->calls, (std::vector<std::string>{"begin", "drag", "end"}));
    log->onDrag = nullptr;
    log->calls.clear();
    pin->setMap(engine);
    step();
    told.down(1, kMiddle).wait(0.6).move(1, {430, 310}).cancel(1).wait(0.5);
    EXPECT_EQ(log->calls, (std::vector<std::string>{"begin", "drag", "end"}));
}

} // namespace trelmix::tap_test
