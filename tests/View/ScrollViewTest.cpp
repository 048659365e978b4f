#include "Platform/Graphics/Canvas.h"
#include "Platform/View/LayoutConstraint.h"
#include "Platform/View/UIImageView.h"
#include "Platform/View/UIPanGestureRecognizer.h"
#include "Platform/View/UIScrollView.h"
#include "Platform/View/UITapGestureRecognizer.h"
#include "Platform/View/ViewComposer.h"
#include "support/Pixels.h"
#include "support/TouchStory.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>

namespace trelmix::scroll_view_test {

/// A window with a scroll view that fills it, and in it an image of 800 x 400.
class ScrollStage : public testing::Test, public UIScrollViewDelegate {
protected:
    ScrollStage() {
        Clock::reset();
        RunLoop::main().reset();
        window->addSubview(scroll);
        scroll->addSubview(picture);
        scroll->setDelegate(std::shared_ptr<UIScrollViewDelegate>(owner, this));
        scroll->setMinimumZoomScale(0.25);
        const LayoutConstraint::Views views{{"scroll", scroll}, {"picture", picture}};
        const LayoutConstraint::Metrics metrics{{"width", 800}, {"height", 400}};
        pin(*window, "H:|[scroll]|", metrics, views);
        pin(*window, "V:|[scroll]|", metrics, views);
        pin(*scroll, "H:|[picture(==width)]|", metrics, views);
        pin(*scroll, "V:|[picture(==height)]|", metrics, views);
        window->layoutIfNeeded();
    }
    ~ScrollStage() override { RunLoop::main().reset(); }

    static void pin(UIView& view, const char* format, const LayoutConstraint::Metrics& metrics,
                    const LayoutConstraint::Views& views) {
        ViewNode::of(view).addConstraints(
            *LayoutConstraint::constraintsWithVisualFormat(format, metrics, views));
    }
    std::shared_ptr<UIView> viewForZoomingInScrollView(UIScrollView&) override { return picture; }
    void scrollViewDidZoom(UIScrollView& sender) override {
        ++zooms;
        EXPECT_EQ(&sender, scroll.get());
    }
    void scrollViewDidScroll(UIScrollView&) override { ++scrolls; }
    CGPoint pictureAt(CGPoint inWindow) const { return window->convertPointToView(inWindow, picture); }

    std::shared_ptr<int> owner = std::make_shared<int>();
    std::shared_ptr<UIView> window = ViewNode::make({{0, 0}, {200, 100}});
    std::shared_ptr<UIScrollView> scroll = UIScrollView::make();
    std::shared_ptr<UIImageView> picture = UIImageView::make(plainImage(8, 4, {0, 128, 0, 255}));
    int zooms = 0, scrolls = 0;
};

TEST_F(ScrollStage, zoomStaysInItsRangeAndKeepsTheMiddle) {
    EXPECT_EQ(scroll->contentSize(), (CGSize{800, 400})) << "the fixed lengths are the content";
    scroll->setContentOffset({300, 150});
    const CGPoint middle = pictureAt({100, 50});
    EXPECT_EQ(middle, (CGPoint{400, 200}));
    scroll->setZoomScale(0.5, false);
    EXPECT_EQ(pictureAt({100, 50}), middle);
    EXPECT_EQ(zooms, 1);
    scroll->setZoomScale(0.01, false);
    EXPECT_EQ(scroll->zoomScale(), 0.25);
    EXPECT_EQ(scroll->contentOffset(), (CGPoint{0, 0}));
    scroll->setZoomScale(7, false);
    scroll->setZoomScale(std::nan(""), false);
    scroll->setContentOffset({INFINITY, 0});
    EXPECT_EQ(scroll->zoomScale(), 1);
    scroll->setZoomScale(0.25, true);
    TouchStory(window).wait(0.1);
    EXPECT_GT(scroll->zoomScale(), 0.25);
    EXPECT_LT(scroll->zoomScale(), 1);
    TouchStory(window).wait(0.2);
    EXPECT_EQ(scroll->zoomScale(), 0.25);
}

TEST_F(ScrollStage, aFingerPansTheContentUpToItsEdges) {
    scroll->setZoomScale(0.5, false);
    scroll->setContentOffset({100, 50});
    TouchStory story(window);
    const CGPoint held = pictureAt({150, 50});
    story.down(1, {150, 50}).move(1, {120, 40});
    const CGPoint now = pictureAt({120, 40});
    EXPECT_EQ(now, held);
    story.move(1, {-5000, 40}).up(1);
    EXPECT_EQ(scroll->contentOffset(), (CGPoint{200, 60}));
    const int before = scrolls;
    scroll->setScrollEnabled(false);
    story.down(1, {100, 50}).move(1, {150, 50});
    EXPECT_EQ(scrolls, before);
    EXPECT_FALSE(scroll->isScrollEnabled());
}

TEST_F(ScrollStage, twoFingersKeepTheContentBetweenThem) {
    scroll->setZoomScale(0.5, false);
    scroll->setContentOffset({100, 50});
    TouchStory story(window);
    const CGPoint first = pictureAt({80, 40}), second = pictureAt({120, 60});
    story.down(1, {80, 40}).down(2, {120, 60});
    story.move({{1, {75, 55}}, {2, {145, 90}}}).move({{1, {60, 30}}, {2, {132, 66}}});
    EXPECT_NEAR(scroll->zoomScale(), 0.9, 1e-9);
    for (const auto& [finger, place] :
         {std::pair{CGPoint{60, 30}, first}, std::pair{CGPoint{132, 66}, second}}) {
        EXPECT_NEAR(pictureAt(finger).x, place.x, 1e-9);
        EXPECT_NEAR(pictureAt(finger).y, place.y, 1e-9);
    }
    EXPECT_GE(zooms, 2);
}

TEST_F(ScrollStage, touchesInTheContentCountInItsPointsAtEveryZoom) {
    const auto tap = std::make_shared<UITapGestureRecognizer>();
    const auto pan = std::make_shared<UIPanGestureRecognizer>();
    picture->addGestureRecognizer(tap);
    picture->addGestureRecognizer(pan);
    int taps = 0;
    tap->addTarget([&](UIGestureRecognizer&) { ++taps; });
    scroll->setZoomScale(0.25, false);
    TouchStory story(window);
    story.tap({150, 60});
    EXPECT_EQ(taps, 1);
    EXPECT_EQ(tap->locationInView(picture), (CGPoint{600, 240}));
    story.down(1, {100, 50}).move(1, {120, 50});
    EXPECT_EQ(pan->translation(picture), (CGPoint{80, 0}));
    pan->setTranslation({4, 0}, picture);
    EXPECT_EQ(pan->translation(window), (CGPoint{1, 0}));
}

TEST_F(ScrollStage, theScrollViewMayEndInsideItsOwnReports) {
    struct Ender : UIScrollViewDelegate {
        std::shared_ptr<UIView> viewForZoomingInScrollView(UIScrollView& view) override {
            return view.subviews()[0];
        }
        void scrollViewDidScroll(UIScrollView& view) override { end(view); }
        void scrollViewDidZoom(UIScrollView& view) override { end(view); }
        void end(UIScrollView& view) {
            view.removeFromSuperview();
            held.reset();
        }
        std::shared_ptr<UIScrollView> held;
    };
    const auto ender = std::make_shared<Ender>();
    scroll->setDelegate(ender);
    ender->held = std::exchange(scroll, nullptr);
    const std::weak_ptr<UIScrollView> gone = ender->held;
    TouchStory story(window);
    story.down(1, {100, 50}).down(2, {150, 50}).move(2, {120, 30}).move(2, {130, 30}).up(1).up(2);
    EXPECT_TRUE(gone.expired());
}

TEST_F(ScrollStage, theComposedPictureShowsEveryViewWhereTouchesFindIt) {
    window->setBackgroundColor(UIColor::whiteColor());
    scroll->setZoomScale(0.5, false);
    scroll->setContentOffset({200, 100});
    const auto mark = ViewNode::make({{500, 300}, {20, 20}});
    mark->setBackgroundColor(UIColor::redColor());
    picture->addSubview(mark);
    const auto veil = ViewNode::make({{0, 0}, {40, 40}});
    const auto inner = ViewNode::make({{0, 0}, {20, 20}});
    veil->setBackgroundColor(UIColor::blueColor());
    inner->setBackgroundColor(UIColor::redColor());
    veil->setAlpha(0.5);
    veil->addSubview(inner);
    window->addSubview(veil);
    const auto image = ViewComposer::compose(*window, 2);
    ASSERT_TRUE(image) << image.reason();
    ASSERT_EQ((*image)->pixelWidth(), 400);
    // The mark's middle lies at (510, 310) * 0.5 - (200, 100) points.
    EXPECT_EQ(pixelAt(**image, 110, 110), (std::array{255, 0, 0, 255}));
    EXPECT_EQ(pixelAt(**image, 98, 98), (std::array{0, 128, 0, 255}));
    EXPECT_EQ(pixelAt(**image, 122, 110), (std::array{0, 128, 0, 255}));
    EXPECT_NEAR(pixelAt(**image, 60, 60)[2], 128, 1);
    EXPECT_NEAR(pixelAt(**image, 20, 20)[0], 128, 1);
    EXPECT_LE(pixelAt(**image, 20, 20)[2], 1) << "the veil's own colour does not shine through its subview";
    EXPECT_FALSE(ViewComposer::compose(*window, std::nan("")));
    EXPECT_FALSE(ViewComposer::compose(*window, 1e9));
    EXPECT_FALSE(ViewComposer::compose(*ViewNode::make()));
}

} // namespace trelmix::scroll_view_test
