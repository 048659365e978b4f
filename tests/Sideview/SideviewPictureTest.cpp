#include "SideviewStage.h"

namespace trelmix::sideview_picture_test {

class SideviewPicture : public SideviewStage {
protected:
    using Pixel = std::array<int, 3>;

    void SetUp() override {
        SideviewStage::SetUp();
        setUp();
    }

    void compose() {
        const auto composed = ViewComposer::compose(*sideview);
        ASSERT_TRUE(composed) << composed.reason();
        shown = *composed;
    }
    /// The rectangle around all pixels that are at least half of a colour, in pixels.
    template <class Is>
    static CGRect extent(const UIImage& image, Is is) {
        int left = image.pixelWidth(), top = image.pixelHeight(), right = -1, bottom = -1;
        for (int y = 0; y < image.pixelHeight(); ++y) {
            for (int x = 0; x < image.pixelWidth(); ++x) {
                if (is(colorAt(image, x, y))) {
                    left = std::min(left, x);
                    right = std::max(right, x + 1);
                    top = std::min(top, y);
                    bottom = std::max(bottom, y + 1);
                }
            }
        }
        return {{double(left), double(top)}, {double(right - left), double(bottom - top)}};
    }
    static bool isBlack(const Pixel& p) { return p[0] < 90 && p[1] < 90 && p[2] < 90; }
    static bool isGreen(const Pixel& p) { return p[1] > 200 && p[0] < 100 && p[2] < 100; }
    static bool isMagenta(const Pixel& p) { return p[1] < 100 && p[0] > 180 && p[2] > 180; }
    /// Halfway from the picture's grey to what lies under the tint.
    static bool isReddish(const Pixel& p) { return p[0] > p[1] + 50 && p[0] > p[2] + 50; }
    static bool isBluish(const Pixel& p) { return p[2] > p[0] + 50 && p[2] > p[1] + 50; }

    void expectExtent(const CGRect& found, CGPoint topLeft, CGPoint bottomRight, const std::string& what) {
        const CGPoint from = onScreen(topLeft), to = onScreen(bottomRight);
        EXPECT_NEAR(found.origin.x, std::max(0.0, from.x), 1) << what;
        EXPECT_NEAR(found.origin.y, std::max(0.0, from.y), 1) << what;
        EXPECT_NEAR(found.origin.x + found.size.width, std::min(kView.width, to.x), 1) << what;
        EXPECT_NEAR(found.origin.y + found.size.height, std::min(kView.height, to.y), 1) << what;
    }

    std::shared_ptr<const UIImage> shown;
};

TEST_F(SideviewPicture, everythingStandsAtItsComputedPixelsAtEveryZoom) {
    engine->setCameraWithRotation(0, 0, 21.0F, false);
    connect(1);
    step();
    sideview->setUserPositionIcon(plainImage(20, 30, {0, 255, 0, 255}));
    sideview->updateUserPosition({kLatitude, longitudeAt(860)}, 0);
    sideview->updateSideviewMarkerWithIdentifier("stairs", {kLatitude, longitudeAt(640)}, 1);
    sideview->updateSideviewMarkerWithIdentifier("stairs", plainImage(12, 8, {255, 0, 255, 255}));
    sideview->drawNavigationPath({CLLocation({kLatitude, longitudeAt(600)}, 0.9),
                                  CLLocation({kLatitude, longitudeAt(700)}, 0),
                                  CLLocation({kLatitude, longitudeAt(800)}, 0)},
                                 UIColor::blackColor(), 4);
    const auto [left, right] = seenExtent();
    ASSERT_GT(right - left, 40);
    for (const double zoom : {0.25, 0.5, 1.0}) {
        const std::string at = "zoom " + std::to_string(zoom);
        sideview->scrollView()->setZoomScale(zoom, false);
        // The footprint, the icons and the path are all in view: the middle of the picture is in the middle.
        sideview->scrollView()->setContentOffset({730 * zoom - kView.width / 2, 0});
        compose();
        expectExtent(extent(*shown, isReddish), {left, kCeiling[1]}, {right, kFloor[1]}, "footprint, " + at);
        expectExtent(extent(*shown, isBluish), {left, 2}, {right, 17}, "strip, " + at);
        const auto expectIcon = [&](const CGRect& found, CGPoint centre, CGSize size, const char* what) {
            const CGPoint middle = onScreen(centre);
            EXPECT_NEAR(found.origin.x, middle.x - size.width / 2, 1) << what << at;
            EXPECT_NEAR(found.origin.y, middle.y - size.height / 2, 1) << what << at;
            EXPECT_NEAR(found.size.width, size.width, 1) << what << at;
            EXPECT_NEAR(found.size.height, size.height, 1) << what << at;
        };
        expectIcon(extent(*shown, isGreen), {860, kMiddle[0]}, {20, 30}, "user position, ");
        expectIcon(extent(*shown, isMagenta), {640, kMiddle[1]}, {12, 8}, "marker, ");
        // The line stays 4 points wide on screen.
        const CGPoint lineStart = onScreen({600, kMiddle[0]});
        const CGPoint lineEnd = onScreen({800, kMiddle[0]});
        const CGRect line = extent(*shown, isBlack);
        EXPECT_NEAR(line.origin.x, lineStart.x, 1) << at;
        EXPECT_NEAR(line.origin.x + line.size.width, lineEnd.x, 1) << at;
        EXPECT_NEAR(line.origin.y, lineStart.y - 2, 1) << at;
        EXPECT_NEAR(line.size.height, 4, 1) << at;
    }
}

TEST_F(SideviewPicture, thePathLiesOnTheBitmapAndUnderEverythingElse) {
    connect(0);
    const std::vector<CLLocation> path{CLLocation({kLatitude, longitudeAt(0)}, 0),
                                       CLLocation({kLatitude, longitudeAt(1500)}, 0)};
    sideview->drawNavigationPath(path, UIColor::blackColor(), 4);
    EXPECT_EQ(sideview->overlays().path()->lineWidth(), 16);
    sideview->setUserPositionIcon(plainImage(20, 20, {0, 255, 0, 255}));
    sideview->updateUserPosition({kLatitude, longitudeAt(400)}, 0);
    compose();
    const auto at = [&](CGPoint imagePoint) {
        const CGPoint p = onScreen(imagePoint);
        return colorAt(*shown, static_cast<int>(p.x), static_cast<int>(p.y));
    };
    EXPECT_TRUE(isGreen(at({400, kMiddle[0]})));
    EXPECT_TRUE(isBlack(at({1400, kMiddle[0]})));
    EXPECT_EQ(at({750, kMiddle[0]})[0], 102) << "the footprint's red over the path";

    sideview->scrollView()->setZoomScale(1, false);
    const auto bitmap = sideview->sideviewImageView()->createImage();
    ASSERT_EQ(bitmap->size(), kPicture);
    const CGRect line = extent(*bitmap, isBlack);
    EXPECT_EQ(line.size.width, 1500);
    EXPECT_NEAR(line.size.height, 4, 1);
    EXPECT_NEAR(line.origin.y + line.size.height / 2, kMiddle[0], 0.6);

    sideview->drawNavigationPath({}, UIColor::blackColor(), 4);
    EXPECT_EQ(sideview->sideviewImageView()->createImage(), sideview->sideviewImageView()->originalImage());
}

TEST_F(SideviewPicture, aPathLeavesOutWhatHasNoPlace) {
    const CLLocationCoordinate2D here{kLatitude, longitudeAt(300)};
    std::vector<CLLocation> path;
    for (const double altitude : {kNaN, -kInfinity, 9.3e18}) {
        path.emplace_back(here, altitude);
    }
    path.emplace_back(CLLocationCoordinate2D{kNaN, 9.96}, 0);
    path.emplace_back(here, -0.5);
    path.emplace_back(here, 1.9);
    path.emplace_back(here, 5);
    sideview->drawNavigationPath(path, UIColor{kNaN, 7, -1, 1}, 4);
    const auto& elements = sideview->overlays().path()->elements();
    ASSERT_EQ(elements.size(), 3U);
    EXPECT_NEAR(elements[0].point.y, kMiddle[0], 1e-9);
    EXPECT_NEAR(elements[1].point.y, kMiddle[1], 1e-9);
    EXPECT_EQ(elements[2].point.y, 0) << "the file knows no level 5";
    sideview->setBehaviour(SideviewBehaviour::natural());
    path.emplace_back(here, 0);
    sideview->drawNavigationPath(path, UIColor::blackColor(), 4);
    const auto& withGap = sideview->overlays().path()->elements();
    ASSERT_EQ(withGap.size(), 3U);
    EXPECT_FALSE(withGap[1].startsSubpath);
    EXPECT_TRUE(withGap[2].startsSubpath) << "nothing leads over a level that is not there";
    for (const double width : {kNaN, kInfinity, -3.0, 0.0, 1e300}) {
        sideview->drawNavigationPath(path, UIColor::blackColor(), width);
        compose();
    }
}

TEST_F(SideviewPicture, aMarkerShowsOnceItHasBothAnIconAndAPlace) {
    const auto icon = plainImage(10, 10, {0, 255, 0, 255});
    const auto shows = [&] {
        compose();
        return extent(*shown, isGreen).size.width > 0;
    };
    const CLLocationCoordinate2D here{kLatitude, longitudeAt(300)};
    sideview->updateSideviewMarkerWithIdentifier("a", icon);
    EXPECT_FALSE(shows());
    sideview->updateSideviewMarkerWithIdentifier("a", here, 0);
    EXPECT_TRUE(shows());
    sideview->updateSideviewMarkerWithIdentifier("a", kCLLocationCoordinate2DInvalid, 0);
    EXPECT_TRUE(shows()) << "it stays where it was";
    sideview->updateSideviewMarkerWithIdentifier("a", here, 7);
    EXPECT_TRUE(shows()) << "at the upper edge";
    sideview->setBehaviour(SideviewBehaviour::natural());
    EXPECT_FALSE(shows());
    sideview->setBehaviour({});
    EXPECT_TRUE(shows());
    sideview->removeSideviewMarkerWithIdentifier("a");
    EXPECT_FALSE(shows());
    sideview->updateSideviewMarkerWithIdentifier("a", here, 0);
    EXPECT_FALSE(shows()) << "a new marker has no icon yet";

    sideview->updateUserPosition(here, 0);
    EXPECT_FALSE(shows());
    sideview->setUserPositionIcon(icon);
    EXPECT_TRUE(shows());
    sideview->updateUserPosition({90, 9.96}, 0); // valid, and infinitely far north
    EXPECT_TRUE(shows());
    sideview->removeUserPosition();
    EXPECT_FALSE(shows());
}

} // namespace trelmix::sideview_picture_test
