#include "Sideview/SideviewStage.h"

#include <Trelmix/Host/SideviewHost.h>

namespace trelmix::sideview_host_test {

class HostedSideview : public SideviewStage {
protected:
    void SetUp() override {
        SideviewStage::SetUp();
        setUp();
        connect();
        host = std::move(*SideviewHost::make(sideview, kView.width, kView.height));
        show();
    }
    void TearDown() override {
        host.reset();
        SideviewStage::TearDown();
    }

    std::shared_ptr<const UIImage> show() {
        const auto image = host->image();
        EXPECT_TRUE(image) << image.reason();
        EXPECT_FALSE(host->needsDisplay());
        return image ? *image : nullptr;
    }
    void touch(SideviewHost::Phase phase, CGPoint point) {
        Clock::set(Clock::now() + kFrame);
        host->touch(phase, 1, point, Clock::now());
    }

    std::unique_ptr<SideviewHost> host;
};

TEST_F(HostedSideview, isComposedAnewOnlyWhenItLooksDifferent) {
    const auto first = show();
    EXPECT_EQ(show(), first);
    const auto icon = plainImage(4, 4, {0, 0, 0, 255});
    const CLLocationCoordinate2D place{kLatitude, kWest};
    const CGPoint scrolled{7, 0}, middle{100, 40};
    const std::pair<const char*, std::function<void()>> changes[] = {
        {"zoom", [&] { host->zoomBy(2, middle); }},
        {"scroll", [&] { sideview->scrollView()->setContentOffset(scrolled); }},
        {"path", [&] { sideview->drawNavigationPath({CLLocation(place)}, UIColor::redColor(), 2); }},
        {"icon", [&] { sideview->setUserPositionIcon(icon), sideview->updateUserPosition(place, 0); }},
        {"background", [&] { sideview->setBackgroundColor(UIColor::blackColor()); }},
        {"camera", [&] { engine->setCameraWithRotation(0, 0, 20.0F, false), step(); }},
        {"level", [&] { sideview->setDisplayedLevel(1, engine); }},
        {"colour", [&] { sideview->sideviewCameraRectangle()->setBackgroundColor(UIColor::whiteColor()); }},
        {"hidden", [&] { sideview->sideviewPositionRectangle()->setHidden(true); }},
        {"set-up", [&] { setUp(); }},
        {"size", [&] { EXPECT_TRUE(host->resize(200, 100, 2)); }},
        {"scale", [&] { EXPECT_TRUE(host->resize(200, 100, 3)); }},
    };
    for (const auto& [name, change] : changes) {
        change();
        EXPECT_TRUE(host->needsDisplay()) << name;
        show();
    }
    EXPECT_EQ(show()->pixelWidth(), 600);
}

TEST_F(HostedSideview, touchesReachItAndMoveTheCamera) {
    const double start = targetLongitude();
    touch(SideviewHost::Phase::began, {60, 40});
    touch(SideviewHost::Phase::ended, {60, 40});
    EXPECT_EQ(takeLog(), "tap; ");
    EXPECT_LT(targetLongitude(), start);
    rest();
    touch(SideviewHost::Phase::began, {60, 40});
    host->cancelTouches();
    touch(SideviewHost::Phase::ended, {60, 40});
    EXPECT_EQ(takeLog(), "");
}

TEST_F(HostedSideview, theWheelZoomsAboutItsPlaceWithinTheLimits) {
    const CGPoint place{250, 50};
    const auto under = [&] { return sideview->convertPointToView(place, sideview->sideviewImageView()); };
    const CGPoint before = under();
    host->zoomBy(2, place);
    EXPECT_EQ(sideview->scrollView()->zoomScale(), 0.5);
    EXPECT_NEAR(under().x, before.x, 1e-9);
    for (const double factor : {kNaN, 0.0, -1.0}) {
        host->zoomBy(factor, place);
        EXPECT_EQ(sideview->scrollView()->zoomScale(), 0.5);
    }
    host->zoomBy(100, place);
    EXPECT_EQ(sideview->scrollView()->zoomScale(), 1.0);
    EXPECT_NEAR(under().x, before.x, 1e-9);
}

TEST_F(HostedSideview, badSizesAndForeignViewsAreRefused) {
    const std::array<double, 3> sizes[] = {{0, 10, 1},         {10, -1, 1},         {20000, 10, 1},
                                           {10, 10, 0},        {10, 1, 2000},       {1, 10, 2000},
                                           {kInfinity, 10, 1}, {10, 10, -kInfinity}};
    for (const auto& [width, height, scale] : sizes) {
        EXPECT_FALSE(host->resize(width, height, scale));
        EXPECT_FALSE(SideviewHost::make(sideview, width, height, scale));
    }
    EXPECT_EQ(show()->size(), kView);
    EXPECT_FALSE(SideviewHost::make(nullptr, 10, 10));
    const auto parent = UIView::make();
    parent->addSubview(sideview);
    EXPECT_FALSE(SideviewHost::make(sideview, 10, 10));
    sideview->removeFromSuperview();
}

} // namespace trelmix::sideview_host_test
