// What every kind of overlay has in common: coming, going, and staying behind.

#include "Overlays/CircleNode.h"
#include "Overlays/MarkerNode.h"
#include "support/EngineFixture.h"
#include "support/Pixels.h"

#include <Trelmix/TrelmixMapEngineFactory.h>

#include <span>

namespace trelmix::overlay_life_test {

constexpr CLLocationCoordinate2D kHere{54.32, 10.14}, kNear{54.321, 10.142};

std::vector<std::shared_ptr<TrelmixMapOverlay>> oneOfEach() {
    const std::vector<CLLocation> places{CLLocation{kHere}, CLLocation{kNear}, CLLocation{54.32, 10.15}};
    auto circle = TrelmixMapEngineFactory::createMapCircleWithCoordinate(kHere, 20);
    circle->setColor(UIColor::redColor());
    auto polygon = TrelmixMapEngineFactory::createMapPolygonWithCorners(places);
    polygon->setColor(UIColor::blueColor());
    return {TrelmixMapEngineFactory::createMapMarkerWith(plainImage(2, 2), kHere), circle, polygon,
            TrelmixMapEngineFactory::createMapPolylineWithVertices(places),
            TrelmixMapEngineFactory::createLevelPlanNodeWith(plainImage(2, 2), kHere, kNear)};
}

using OverlayLifeTest = EngineFixture;

TEST_F(OverlayLifeTest, eachComesBackAfterItWasTakenOffAndMovesToAnotherMap) {
    engine->initialiseWithTarget(kHere, 18);
    const auto second = makeEngine();
    second->initialiseWithTarget({54.4, 10.2}, 18);
    for (const auto& overlay : oneOfEach()) {
        overlay->setMap(engine);
        step();
        ASSERT_EQ(lastFrame.list->items.size(), 1U) << overlay->description();
        const auto before = lastFrame.list->items[0];
        overlay->setUserInfo(42);
        overlay->setMap(nullptr);
        EXPECT_FALSE(overlay->userInfo().has_value());
        step();
        EXPECT_TRUE(lastFrame.list->items.empty()) << overlay->description();
        overlay->setMap(engine);
        step();
        ASSERT_EQ(lastFrame.list->items.size(), 1U) << overlay->description();
        EXPECT_EQ(lastFrame.list->items[0]->corners, before->corners) << overlay->description();
        EXPECT_EQ(lastFrame.list->items[0]->image, before->image) << overlay->description();
        overlay->setMap(second);
        step();
        EXPECT_TRUE(lastFrame.list->items.empty()) << overlay->description();
        const DrawFrame frame = second->sceneView()->nextFrame(Clock::now());
        ASSERT_EQ(frame.list->items.size(), 1U) << overlay->description();
        const DrawItem& after = *frame.list->items[0];
        EXPECT_TRUE(after.corners != before->corners || after.meshPosition != before->meshPosition);
        overlay->setMap(nullptr);
    }
}

TEST_F(OverlayLifeTest, anOverlayDestroyedWhileAnimatedLeavesNothingBehind) {
    engine->initialiseWithTarget(kHere, 18);
    auto marker = TrelmixMapEngineFactory::createMapMarkerWith(plainImage(2, 2), kHere);
    auto circle = TrelmixMapEngineFactory::createMapCircleWithCoordinate(kHere, 20);
    marker->setIsFlat(true);
    marker->setMap(engine);
    circle->setMap(engine);
    marker->setRotation(90, true, 1);
    marker->setCoordinate(kNear, true, 1);
    circle->updateCircleWithCoordinate(kNear, 10, true, 1);
    step(0.5);
    marker->setMap(nullptr);
    circle->setMap(nullptr);
    const std::weak_ptr<TrelmixMapOverlay> weak[] = {std::exchange(marker, {}), std::exchange(circle, {})};
    EXPECT_TRUE(weak[0].expired() && weak[1].expired());
    step(1);
}

TEST_F(OverlayLifeTest, eachOutlivesItsEngineAndIsDrawnAboveTheKindBelowIt) {
    const auto overlays = oneOfEach();
    for (const auto& overlay : overlays) {
        overlay->setMap(engine);
    }
    step();
    engine = makeEngine();
    for (const auto& overlay : overlays) {
        EXPECT_EQ(overlay->map(), nullptr);
        overlay->setMap(engine);
    }
    step();
    std::vector<std::int64_t> orders;
    for (const auto& item : lastFrame.list->items) {
        orders.push_back(item->renderingOrder);
    }
    EXPECT_EQ(orders, (std::vector<std::int64_t>{-75, -74, -73, -72, -71}));
}

/// Places where nothing can be seen; the last one, far beyond the map's northern edge, is one all the same.
const CLLocationCoordinate2D kNowhere[] = {
    kCLLocationCoordinate2DInvalid, {kNaN, 0}, {-90, kInfinity}, {-90, 0}, {90, 0}};

TEST_F(OverlayLifeTest, whatIsNowhereShowsNothingAndTheFirstCameraIsUsableAllTheSame) {
    for (const CLLocationCoordinate2D bad : kNowhere) {
        const std::vector<CLLocation> places(3, CLLocation{bad});
        const std::vector<std::shared_ptr<TrelmixMapOverlay>> overlays{
            TrelmixMapEngineFactory::createMapMarkerWith(plainImage(2, 2), bad),
            TrelmixMapEngineFactory::createMapCircleWithCoordinate(bad, 20),
            TrelmixMapEngineFactory::createMapPolygonWithCorners(places),
            TrelmixMapEngineFactory::createMapPolylineWithVertices(places),
            TrelmixMapEngineFactory::createLevelPlanNodeWith(plainImage(2, 2), bad, bad)};
        for (const auto& overlay : overlays) {
            engine = makeEngine();
            overlay->setMap(engine);
            step();
            const auto record = engine->camera();
            ASSERT_TRUE(record);
            EXPECT_TRUE(CLLocationCoordinate2DIsValid(record->target())) << overlay->description();
            EXPECT_TRUE(engine->sceneView()->hitTest({400, 300}, true).empty()) << overlay->description();
            for (const auto& item : lastFrame.list->items) {
                EXPECT_NEAR(item->corners[0].x, item->corners[3].x, 1e-6) << overlay->description();
                EXPECT_NEAR(item->corners[0].y, item->corners[3].y, 1e-6) << overlay->description();
            }
        }
    }
}

TEST_F(OverlayLifeTest, aMarkerAndACircleShowOnceTheyHaveAPlaceAndStayThereWhenTheyAreSentNowhere) {
    engine->initialiseWithTarget(kHere, 18);
    const auto marker = MarkerNode::make();
    marker->setMarkerIcon(plainImage(4, 4));
    const auto circle = CircleNode::make();
    const auto send = [&](CLLocationCoordinate2D place) {
        marker->setCoordinate(place);
        marker->setCoordinate(place, false, 0);
        circle->setCoordinate(place);
        circle->updateCircleWithCoordinate(place, 20, false, 0);
        step(1);
    };
    marker->setMap(engine);
    circle->setMap(engine);
    send(kCLLocationCoordinate2DInvalid);
    EXPECT_EQ(marker->scale(), (SCNVector3{0, 0, 0}));
    EXPECT_EQ(circle->scale(), (SCNVector3{0, 0, 0}));
    send(kHere);
    const SCNVector3 sizes[] = {marker->scale(), circle->scale()};
    const Vector3d places[] = {marker->exactPosition(), circle->exactPosition()};
    EXPECT_GT(sizes[0].x, 0);
    EXPECT_GT(sizes[1].x, 0);
    for (const CLLocationCoordinate2D bad : std::span(kNowhere).first<4>()) {
        send(bad);
        EXPECT_EQ(marker->scale(), sizes[0]) << descriptionOf(bad);
        EXPECT_EQ(marker->exactPosition(), places[0]) << descriptionOf(bad);
        EXPECT_EQ(circle->exactPosition(), places[1]) << descriptionOf(bad);
        EXPECT_NEAR(circle->scale().x, sizes[1].x, 1e-3 * static_cast<double>(sizes[1].x))
            << descriptionOf(bad);
    }
}

} // namespace trelmix::overlay_life_test
