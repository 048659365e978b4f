// Mouse, wheel and keys as a window hands them over.
#include "support/EngineFixture.h"

#include <Trelmix/Host/MapInput.h>
#include <Trelmix/TrelmixMapEngineDelegate.h>

#include <cmath>
#include <functional>

namespace trelmix::map_input_test {

using Button = MapInput::Button;
using Key = MapInput::Key;
using Shape = MapInput::PointerShape;

constexpr CGPoint kMapOrigin{0, 50};

class MapInputTest : public EngineFixture {
protected:
    void SetUp() override {
        EngineFixture::SetUp();
        engine->initialiseWithTarget({53.5, 10}, 17);
        host = std::move(*ViewHost::make(engine, {{800, 700}, {kMapOrigin, {800, 600}}, 1}, {}));
        input = MapInput::make(host);
    }
    void TearDown() override {
        input.reset();
        host.reset();
        EngineFixture::TearDown();
    }
    TrelmixMapEngineCamera camera() const { return *engine->camera(); }
    CLLocationCoordinate2D groundAt(CGPoint point) const {
        return engine->projection()->worldCoordinateFor({point.x - kMapOrigin.x, point.y - kMapOrigin.y});
    }
    /// Points between a place and a point of the window.
    double missOf(CLLocationCoordinate2D place, CGPoint point) const {
        const CGPoint at = engine->projection()->screenCoordinateFor(place);
        return std::hypot(at.x + kMapOrigin.x - point.x, at.y + kMapOrigin.y - point.y);
    }
    void settle() {
        for (int i = 0; i < 3; ++i) {
            step(0.5);
        }
    }
    void drag(Button button, CGPoint from, CGPoint to, MapInput::Modifiers modifiers = {}) {
        input->buttonDown(button, from, modifiers, time += 1);
        for (int i = 1; i <= 20; ++i) {
            const double part = i / 20.0;
            input->pointerMoved({from.x + (to.x - from.x) * part, from.y + (to.y - from.y) * part},
                                time += kFrame);
            host->pump();
        }
        input->buttonUp(button, to, time += kFrame);
    }

    std::shared_ptr<ViewHost> host;
    std::unique_ptr<MapInput> input;
    double time = 5;
};

TEST_F(MapInputTest, eachDragHasItsButton) {
    const auto place = groundAt({300, 300});
    drag(Button::left, {300, 300}, {400, 360});
    EXPECT_LE(missOf(place, {400, 360}), 0.5);
    for (const auto& [button, modifiers] :
         {std::pair{Button::right, MapInput::Modifiers{}}, {Button::left, {.control = true}}}) {
        engine->setCameraWithRotation(0, 0, 17, false);
        drag(button, {300, 300}, {350, 260}, modifiers);
        EXPECT_NEAR(camera().rotation(), 20, 1e-3);
        EXPECT_NEAR(camera().viewingAngle(), 10, 1e-3);
    }
    engine->setCameraWithRotation(30, 0, 17, false);
    const auto corner = groundAt({300, 200});
    drag(Button::left, {500, 350}, {300, 200}, {.shift = true});
    settle();
    EXPECT_NEAR(camera().zoom(), 19, 1e-3) << "a quarter of the view fills it";
    EXPECT_LE(missOf(corner, {0, 50}), 2);
}

TEST_F(MapInputTest, keysAddUpAndOppositeOnesCancelEachOther) {
    engine->setCameraWithRotation(70, 40, 17, false);
    const auto target = camera().target();
    const CGPoint middle{400, 350};
    input->keyDown(Key::right, {});
    input->keyDown(Key::right, {});
    settle();
    EXPECT_LE(missOf(target, {middle.x - 200, middle.y}), 0.5);
    for (const Key key : {Key::up, Key::left, Key::down, Key::left, Key::plus, Key::plus, Key::minus}) {
        input->keyDown(key, {});
        step(0.05);
    }
    for (const Key key : {Key::left, Key::left, Key::down, Key::up, Key::up, Key::right}) {
        input->keyDown(key, {.shift = true});
    }
    settle();
    EXPECT_NEAR(camera().zoom(), 17.5, 1e-4);
    EXPECT_NEAR(camera().rotation(), 55, 1e-3);
    EXPECT_NEAR(camera().viewingAngle(), 45, 1e-3);
    input->faceNorth();
    settle();
    EXPECT_NEAR(camera().rotation(), 0, 1e-3);
    EXPECT_NEAR(camera().viewingAngle(), 45, 1e-3);
    input->faceNorth();
    input->keyDown(Key::plus, {.control = true});
    input->keyDown(Key::home, {});
    settle();
    EXPECT_NEAR(camera().viewingAngle(), 0, 1e-3);
    EXPECT_NEAR(camera().zoom(), 17.5, 1e-4);
    input->setHome(TrelmixMapEngineCamera({53, 11}, 10, 20, 16));
    input->keyDown(Key::home, {});
    input->keyDown(Key::plus, {});
    settle();
    EXPECT_NEAR(camera().target().longitude, 11, 1e-6);
    EXPECT_NEAR(camera().zoom(), 16.5, 1e-4);
}

TEST_F(MapInputTest, wheelPinchAndDoubleClickZoomAboutThePointer) {
    engine->setCameraWithRotation(30, 40, 18, false);
    const CGPoint at{100, 470};
    const auto place = groundAt(at);
    input->wheel(at, 2);
    input->wheel(at, -0.5);
    input->pinch(at, 2);
    EXPECT_NEAR(camera().zoom(), 19.375, 1e-4);
    for (const auto& [button, modifiers] :
         {std::pair{Button::right, MapInput::Modifiers{}}, {Button::left, {.shift = true}}}) {
        for (const double wait : {9.0, 0.2}) {
            input->buttonDown(button, at, modifiers, time += wait);
            input->buttonUp(button, at, time);
        }
        settle();
    }
    EXPECT_NEAR(camera().zoom(), 17.375, 1e-4);
    EXPECT_LE(missOf(place, at), 0.5);
    input->wheel(at, 1e6);
    EXPECT_EQ(camera().zoom(), 23);
    EXPECT_LE(missOf(place, at), 20) << "the map has not flown away";
    engine->setEnableZoomGesture(false);
    input->wheel(at, -1);
    EXPECT_EQ(camera().zoom(), 23);
}

TEST_F(MapInputTest, thePointerHasAShapeAndAPlace) {
    const auto isShape = [&](Shape shape, bool hovers) {
        return input->pointerShape() == shape && input->hover().has_value() == hovers;
    };
    EXPECT_TRUE(isShape(Shape::arrow, false));
    input->pointerMoved({100, 20}, 1);
    EXPECT_TRUE(isShape(Shape::arrow, false)) << "above the map";
    input->pointerMoved({100, 100}, 1);
    ASSERT_TRUE(isShape(Shape::hand, true));
    EXPECT_LE(missOf(input->hover()->coordinate, {100, 100}), 0.5);
    input->buttonDown(Button::left, {100, 100}, {.shift = true}, 2);
    input->pointerMoved({-50, 200}, 2.1);
    EXPECT_TRUE(isShape(Shape::crosshair, false));
    ASSERT_TRUE(input->box());
    EXPECT_EQ(input->box()->size.width, 100) << "it ends at the map's edge";
    input->cancel();
    EXPECT_FALSE(input->box());
    input->buttonDown(Button::right, {100, 100}, {}, 3);
    EXPECT_TRUE(isShape(Shape::turning, false));
    input->buttonUp(Button::right, {100, 100}, 3);
    input->buttonDown(Button::left, {100, 100}, {}, 4);
    EXPECT_TRUE(isShape(Shape::grabbing, false));
    input->buttonUp(Button::left, {100, 100}, 4);
    input->pointerLeft();
    EXPECT_TRUE(isShape(Shape::arrow, false));
}

TEST_F(MapInputTest, whatMakesNoSenseMovesNothing) {
    const auto before = camera();
    const double nan = std::nan("");
    input->buttonUp(Button::left, {100, 100}, 1);
    input->buttonDown(Button::left, {nan, 100}, {}, 1);
    input->buttonDown(Button::right, {100, 20}, {}, 1);
    input->pointerMoved({300, 300}, 1);
    input->buttonDown(Button::right, {100, 100}, {}, 1);
    input->buttonDown(Button::left, {100, 100}, {}, 1);
    input->pointerMoved({nan, INFINITY}, nan);
    input->buttonUp(Button::left, {400, 400}, 1);
    input->buttonUp(Button::right, {nan, nan}, nan);
    input->pointerMoved({500, 500}, 2);
    for (const double bad : {nan, HUGE_VAL, -HUGE_VAL}) {
        input->wheel({100, 100}, bad);
        input->wheel({bad, 100}, 1);
        input->pinch({100, 100}, bad);
    }
    for (const double factor : {0.0, -2.0}) {
        input->pinch({100, 100}, factor);
    }
    input->touchMoved(77, {100, 100}, 3);
    input->touchEnded(77, {300, 100}, 3);
    input->touchBegan(std::numeric_limits<std::int64_t>::min(), {100, 100}, 3);
    input->touchMoved(std::numeric_limits<std::int64_t>::min(), {400, 100}, 3);
    settle();
    EXPECT_EQ(camera().target().longitude, before.target().longitude);
    EXPECT_EQ(camera().rotation(), before.rotation());
    EXPECT_EQ(camera().zoom(), before.zoom());
}

TEST_F(MapInputTest, theHostAndTheInputMayEndInWhatTheySetOff) {
    struct Ender : TrelmixMapEngineDelegate {
        void mapViewWillMoveFromGesture(bool) override {
            if (const auto once = std::exchange(end, nullptr)) {
                once();
            }
        }
        std::function<void()> end;
    };
    const auto ender = std::make_shared<Ender>();
    engine->setDelegate(ender);
    const std::function<void()> inputs[] = {
        [&] {
            input->wheel({100, 100}, 1);
        },
        [&] { input->keyDown(Key::up, {}); },
        [&] { input->faceNorth(); },
        [&] {
            input->buttonDown(Button::right, {300, 300}, {}, 1);
            input->pointerMoved({310, 300}, 2);
        },
    };
    for (const auto& act : inputs) {
        engine->setCameraWithRotation(20, 0, 17, false);
        ender->end = [&] { host.reset(); };
        act();
        input->wheel({100, 100}, 1);
        EXPECT_EQ(input->pointerShape(), Shape::arrow);
        host = std::move(*ViewHost::make(engine, {{800, 700}, {kMapOrigin, {800, 600}}, 1}, {}));
        input = MapInput::make(host);
    }
    ender->end = [&] { input.reset(); };
    input->wheel({100, 100}, 1);
    EXPECT_FALSE(input);
    engine->setDelegate({});
    settle();
}

} // namespace trelmix::map_input_test
