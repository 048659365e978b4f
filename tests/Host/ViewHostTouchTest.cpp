// Touches as a window hands them over.
#include "support/DelegateLog.h"
#include "support/EngineFixture.h"

#include <Trelmix/Host/ViewHost.h>

#include <cmath>

namespace trelmix::view_host_touch_test {

constexpr ViewHost::Layout kLayout{{800, 700}, {{0, 50}, {800, 600}}, 1};
constexpr CGPoint kMapOrigin{0, 50};

class ViewHostTouchTest : public EngineFixture {
protected:
    void SetUp() override {
        EngineFixture::SetUp();
        engine->initialiseWithTarget({53.5, 10}, 17);
        host = std::move(*ViewHost::make(engine, kLayout, {}));
    }
    void TearDown() override {
        host.reset();
        EngineFixture::TearDown();
    }

    CLLocationCoordinate2D groundAt(CGPoint point) const {
        return engine->projection()->worldCoordinateFor({point.x - kMapOrigin.x, point.y - kMapOrigin.y});
    }
    CGPoint pointOf(CLLocationCoordinate2D place) const {
        const CGPoint inMap = engine->projection()->screenCoordinateFor(place);
        return {inMap.x + kMapOrigin.x, inMap.y + kMapOrigin.y};
    }
    double now() {
        time += kFrame;
        return time;
    }
    void settle(double seconds = 1) {
        step(seconds);
        step(seconds);
    }
    /// Down, moves in equal steps, up; pumped after each. Further fingers lie in a row below the first.
    void drag(CGPoint from, CGPoint to, int steps, int fingers = 1) {
        const auto below = [](CGPoint point, int finger) { return CGPoint{point.x, point.y + 60 * finger}; };
        for (int finger = 0; finger < fingers; ++finger) {
            host->touchBegan(finger, below(from, finger), now());
        }
        for (int i = 1; i <= steps; ++i) {
            const double part = static_cast<double>(i) / steps;
            const CGPoint at{from.x + (to.x - from.x) * part, from.y + (to.y - from.y) * part};
            time = now();
            for (int finger = 0; finger < fingers; ++finger) {
                host->touchMoved(finger, below(at, finger), time);
            }
            host->pump();
        }
        for (int finger = 0; finger < fingers; ++finger) {
            host->touchEnded(finger, below(to, finger), now());
        }
        settle();
    }

    std::unique_ptr<ViewHost> host;
    double time = 5;
};

double distance(CGPoint a, CGPoint b) {
    return std::hypot(a.x - b.x, a.y - b.y);
}

TEST_F(ViewHostTouchTest, theGroundStaysUnderADraggedFingerAlsoAlongAnAxis) {
    const struct {
        CGPoint from, to;
        int steps, fingers = 1;
    } drags[] = {
        {{400, 300}, {600, 300}, 200},   {{400, 300}, {400, 100}, 200},  {{200, 500}, {190, 640}, 7},
        {{700, 100}, {100, 600}, 30},    {{400, 300}, {380, 300}, 1},    {{100, 400}, {700, 400}, 3},
        {{400, 300}, {500, 300}, 10, 2}, {{300, 200}, {280, 200}, 2, 3}, {{300, 200}, {620, 200}, 32, 4}};
    for (const double rotation : {0.0, 37.0}) {
        engine->setCameraWithRotation(rotation, 0, 17, false);
        for (const auto& d : drags) {
            const auto place = groundAt(d.from);
            drag(d.from, d.to, d.steps, d.fingers);
            EXPECT_LE(distance(pointOf(place), d.to), 0.5)
                << d.from.x << "," << d.from.y << " by " << d.steps << " with " << d.fingers;
        }
    }
    ASSERT_TRUE(host->setLayout({{800, 700}, {{0, 50}, {800, 300}}, 1}));
    const auto place = groundAt({300, 200});
    drag({300, 200}, {500, 300}, 20);
    EXPECT_LE(distance(pointOf(place), {500, 300}), 0.5) << "the height alone has changed";
}

TEST_F(ViewHostTouchTest, onlyAPointThatIsElsewhereIsAMovementAndALiftIsWhereItIs) {
    struct Presses : DelegateLog {
        void mapViewDidLongPressAt(CLLocationCoordinate2D coordinate) override { place = coordinate; }
        CLLocationCoordinate2D place;
    };
    const auto log = std::make_shared<Presses>();
    engine->setDelegate(log);
    host->touchBegan(1, {400, 300}, now());
    for (int i = 0; i < 30; ++i) {
        host->touchMoved(1, {440, 300}, now());
        step();
    }
    EXPECT_EQ(log->count("willMove(gesture)"), 1U);
    EXPECT_EQ(log->count("idle"), 1U) << "the camera comes to rest under a finger that rests";
    host->touchEnded(1, {440, 300}, now());
    settle();
    EXPECT_EQ(log->count("willMove(gesture)"), 1U);
    host->touchBegan(1, {300, 300}, now());
    host->pump(); // with nothing left of the finger before
    settle();
    const auto lifted = groundAt({350, 320});
    host->touchEnded(1, {350, 320}, now());
    settle();
    EXPECT_LE(distance(pointOf(log->place), pointOf(lifted)), 0.01);
    log->place = {};
    host->touchBegan(1, {300, 300}, now());
    host->touchCancelled(1, now());
    settle();
    EXPECT_EQ(log->place, CLLocationCoordinate2D{}) << "a press that was cancelled";
}

} // namespace trelmix::view_host_touch_test
