#include "SideviewStage.h"

#include "Platform/View/UIScreen.h"

#include <thread>

namespace trelmix::sideview_setup_test {

class SideviewSetup : public SideviewStage {
protected:
    static std::size_t viewCount(const UIView& view) {
        std::size_t count = 1;
        for (const auto& child : view.subviews()) {
            count += viewCount(*child);
        }
        return count;
    }
    /// Everything that an application can call.
    void callEverything() {
        const auto icon = plainImage(4, 4);
        const CLLocationCoordinate2D place{kLatitude, kWest};
        sideview->setDisplayedLevel(1, engine);
        sideview->mapViewIdle();
        sideview->mapViewIdleAtCamera(nullptr);
        sideview->setEnableZooming(false);
        sideview->setEnableZooming(true);
        sideview->setUserPositionIcon(icon);
        sideview->updateUserPosition(place, 0);
        sideview->updateSideviewMarkerWithIdentifier("a", icon);
        sideview->updateSideviewMarkerWithIdentifier("a", place, 0);
        sideview->drawNavigationPath({CLLocation(place, 0)}, UIColor::redColor(), 4);
        sideview->levelAt({10, 10});
        sideview->levelNumbers();
        sideview->removeSideviewMarkerWithIdentifier("a");
        sideview->removeUserPosition();
        sideview->zoomBy(2, {5, 5});
        TouchStory touches(sideview);
        touches.tap({60, 30}).down(1, {60, 30}).wait(0.6).move(1, {120, 30}).up(1).wait(1);
    }
};

TEST_F(SideviewSetup, thePictureStartsFittedToTheWidth) {
    struct Case {
        double viewWidth;
        int imageWidth;
        double zoom, screenWidth = 600;
    };
    for (const Case& c :
         {Case{375, 1500, 0.25}, Case{375, 300, 1.0}, Case{0, 1500, 0.4}, Case{0, 1500, 1.0, 0}}) {
        UIScreen::setMainScreenBounds({{0, 0}, {c.screenWidth, 400}});
        sideview = SideviewScrollView::make({{0, 0}, {c.viewWidth, 200}});
        sideview->setupSideviewWith(plainImage(c.imageWidth, 100), goodLevels());
        EXPECT_EQ(sideview->scrollView()->minimumZoomScale(), c.zoom);
        EXPECT_EQ(sideview->scrollView()->zoomScale(), c.zoom);
        EXPECT_EQ(sideview->scrollView()->maximumZoomScale(), 1.0);
    }
    UIScreen::setMainScreenBounds({{0, 0}, {1280, 800}});
}

TEST_F(SideviewSetup, theFootprintFollowsTheCameraWhenItComesToRest) {
    setUp();
    connect(1);
    const auto expectFootprint = [&](double y, double height) {
        const auto [left, right] = seenExtent();
        const CGRect frame = sideview->sideviewCameraRectangle()->frame();
        EXPECT_NEAR(frame.origin.x, left, 1e-4);
        EXPECT_NEAR(frame.size.width, right - left, 1e-4);
        EXPECT_NEAR(frame.origin.y, y, 1e-9);
        EXPECT_NEAR(frame.size.height, height, 1e-9);
        const CGRect strip = sideview->sideviewPositionRectangle()->frame();
        EXPECT_EQ(strip, (CGRect{{frame.origin.x, 2}, {frame.size.width, 15}}));
    };
    expectFootprint(kCeiling[1], 4 * kScale);
    sideview->setDisplayedLevel(0, engine);
    expectFootprint(kCeiling[0], 3 * kScale);

    const auto moveTo = [&](double longitude, float zoom) {
        engine->setCamera(std::make_shared<TrelmixMapEngineCamera>(
                              CLLocationCoordinate2D{kLatitude, longitude}, 20, 10, zoom),
                          false);
        step();
    };
    moveTo(9.9611, 20.0F);
    expectFootprint(kCeiling[0], 3 * kScale);
    // Without a visible rectangle it stands for no level; the strip still follows.
    sideview->sideviewCameraRectangle()->setBackgroundColor(UIColor::clearColor());
    moveTo(9.9633, 19.0F);
    expectFootprint(0, 0);
    sideview->sideviewCameraRectangle()->setBackgroundColor(std::nullopt);
    sideview->sideviewCameraRectangle()->setHidden(true);
    moveTo(9.9622, 19.0F);
    expectFootprint(0, 0);
}

TEST_F(SideviewSetup, aFootprintThatIsNotFiniteLeavesEverythingWhereItWas) {
    sideview->setupSideviewWith(picture(), folder.write("flat.json", levelsText("\"bearing\": 90,")));
    ASSERT_EQ(sideview->setupFailure(), "");
    connect();
    EXPECT_EQ(sideview->sideviewCameraRectangle()->frame(), CGRect{});
    EXPECT_EQ(sideview->sideviewPositionRectangle()->frame(), (CGRect{{0, 2}, {0, 15}}));
}

TEST_F(SideviewSetup, aSecondSetupReplacesTheFirstWholly) {
    setUp();
    connect();
    const std::size_t count = viewCount(*sideview);
    const std::weak_ptr<UIView> oldScroll = sideview->scrollView();
    callEverything();
    sideview->updateUserPosition({kLatitude, kWest}, 0);
    sideview->updateSideviewMarkerWithIdentifier("b", plainImage(4, 4));
    takeLog();
    setUp();
    EXPECT_EQ(viewCount(*sideview), count);
    EXPECT_TRUE(oldScroll.expired());
    EXPECT_EQ(sideview->overlays().path(), nullptr);
    EXPECT_EQ(sideview->scrollView()->zoomScale(), 0.25);
    EXPECT_GT(sideview->sideviewCameraRectangle()->frame().size.width, 0) << "the engine is still there";
    sideview->updateSideviewMarkerWithIdentifier("b", plainImage(4, 4));
    EXPECT_EQ(viewCount(*sideview), count + 1) << "its markers are new ones";
    story->tap({60, 30});
    EXPECT_EQ(takeLog(), "tap; ");
    rest();
}

TEST_F(SideviewSetup, withoutOneAndAfterAFailedOneEveryCallIsHarmless) {
    const auto expectUnconnected = [&](const std::string& reason, std::size_t views) {
        EXPECT_EQ(sideview->setupFailure(), reason);
        EXPECT_EQ(sideview->sideviewProjection(), nullptr);
        callEverything();
        EXPECT_EQ(takeLog(), "");
        EXPECT_FALSE(sideview->levelAt({10, 10}));
        EXPECT_GE(viewCount(*sideview), views);
    };
    expectUnconnected("", 1);
    const std::string bad = folder.write("bad.json", R"({"bearing": "east"})");
    sideview->setupSideviewWith(picture(), bad);
    expectUnconnected(bad + ": bearing: must be a number, is string", 4); // the picture alone
    EXPECT_EQ(sideview->sideviewPositionRectangle()->frame().size.width, 0);
    sideview->setupSideviewWith(nullptr, goodLevels());
    expectUnconnected("image: there is none", 1);
    // What was stored counts from now on.
    setUp();
    EXPECT_GT(sideview->sideviewCameraRectangle()->frame().size.width, 0);
    EXPECT_EQ(sideview->levelNumbers(), (std::vector<std::int64_t>{0, 1}));
    EXPECT_EQ(sideview->levelAt(onScreen({700, kMiddle[1]})), 1);
    const auto projection = sideview->sideviewProjection();
    EXPECT_NEAR(projection->point(projection->coordinate({700, 0}), 1).y, kMiddle[1], 1e-6);
}

TEST_F(SideviewSetup, neitherTheEngineNorTheGesturesKeepItAlive) {
    setUp();
    connect();
    auto group = TrelmixMapEngineDelegateGroup::make();
    group->addMember(sideview);
    engine->setDelegate(group);
    engine->setCameraWithRotation(10, 10, 19.0F, false);
    const std::weak_ptr<UIView> weak = sideview;
    const std::weak_ptr<UIView> image = sideview->sideviewImageView();
    sideview.reset();
    EXPECT_TRUE(weak.expired());
    EXPECT_TRUE(image.expired());
    step();
}

TEST_F(SideviewSetup, callsFromAnotherThreadAreFaultsAndChangeNothing) {
    setUp();
    const auto icon = plainImage(4, 4);
    std::thread([&] {
        sideview->setDisplayedLevel(7, engine);
        sideview->setupSideviewWith(nullptr, "");
        sideview->updateSideviewMarkerWithIdentifier("a", icon);
    }).join();
    EXPECT_EQ(takeFaults().size(), 3U);
    EXPECT_EQ(sideview->levelNumber(), TMXSideviewScrollView::kInitialLevel);
    EXPECT_NE(sideview->sideviewProjection(), nullptr);
}

} // namespace trelmix::sideview_setup_test
