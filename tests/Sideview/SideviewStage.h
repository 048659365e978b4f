#pragma once

#include "LevelsText.h"
#include "Platform/Foundation/SceneLock.h"
#include "Platform/View/ViewComposer.h"
#include "Sideview/SideviewScrollView.h"
#include "support/EngineFixture.h"
#include "support/Pixels.h"
#include "support/ScratchFolder.h"
#include "support/TouchStory.h"

#include <Trelmix/TrelmixMapEngineDelegateGroup.h>

#include <algorithm>
#include <array>
#include <string>

namespace trelmix {

/// A side view of 375 x 320 points with a picture of 1500 x 300 and two levels, beside an engine of
/// 800 x 600 that looks at the middle of the structure's box.
///
/// With the bearing east, the picture's x is the longitude's part of the box.
class SideviewStage : public EngineFixture {
protected:
    static constexpr CGSize kView{375, 320}, kPicture{1500, 300};
    static constexpr double kWest = 9.96, kEast = 9.964, kLatitude = 53.541;
    /// Image points per metre, and the middles of the two levels in image points.
    static constexpr double kScale = 300 / 8.4;
    static constexpr std::array<double, 2> kMiddle{280 - 1.5 * kScale, 280 - 5 * kScale};
    static constexpr std::array<double, 2> kFloor{280, 280 - 3 * kScale};
    static constexpr std::array<double, 2> kCeiling{280 - 3 * kScale, 280 - 7 * kScale};

    struct Listener : TMXSideviewScrollViewDelegate {
        std::string log;
        std::function<void()> onCall;
        void sideViewDidScroll() override { heard("scroll; "); }
        void sideViewDidReceiveTap() override { heard("tap; "); }
        void heard(const char* what) {
            EXPECT_FALSE(SceneLock::isHeldHere());
            log += what;
            if (const auto action = onCall) {
                action();
            }
        }
    };

    void SetUp() override {
        EngineFixture::SetUp();
        engine->initialiseWithTarget({kLatitude, (kWest + kEast) / 2}, 19.0F);
        sideview = SideviewScrollView::make({{0, 0}, kView});
        sideview->setDelegate(listener);
    }
    void TearDown() override {
        story.reset();
        sideview.reset();
        RunLoop::main().drain();
        EngineFixture::TearDown();
    }

    std::string goodLevels() const {
        return folder.write("levels.json", levelsText("\"bearing\": 90," + kTwoLevels));
    }
    static std::shared_ptr<const UIImage> picture() {
        return plainImage(static_cast<int>(kPicture.width), static_cast<int>(kPicture.height),
                          {200, 200, 200, 255});
    }

    void setUp() {
        sideview->setupSideviewWith(picture(), goodLevels());
        ASSERT_EQ(sideview->setupFailure(), "");
        story = std::make_unique<TouchStory>(sideview);
    }
    /// Joins the engine to it, as its delegate.
    void connect(std::int64_t level = 0) {
        engine->setDelegate(sideview);
        sideview->setDisplayedLevel(level, engine);
    }

    static double imageX(double longitude) { return kPicture.width * (longitude - kWest) / (kEast - kWest); }
    static double longitudeAt(double x) { return kWest + x / kPicture.width * (kEast - kWest); }
    double targetLongitude() const { return engine->camera()->target().longitude; }
    CGPoint onScreen(CGPoint imagePoint) const {
        return sideview->sideviewImageView()->convertPointToView(imagePoint, sideview);
    }
    /// What the engine's camera sees of the picture's width, from the projection's four corners.
    std::pair<double, double> seenExtent() const {
        const auto map = engine->projection();
        const double xs[] = {
            imageX(map->topLeftCoordinate().longitude), imageX(map->topRightCoordinate().longitude),
            imageX(map->bottomLeftCoordinate().longitude), imageX(map->bottomRightCoordinate().longitude)};
        return {*std::min_element(std::begin(xs), std::end(xs)),
                *std::max_element(std::begin(xs), std::end(xs))};
    }
    void rest() {
        step(0.3);
        step(0.3);
    }
    std::string takeLog() { return std::exchange(listener->log, {}); }

    apps::ScratchFolder folder;
    std::shared_ptr<SideviewScrollView> sideview;
    std::shared_ptr<Listener> listener = std::make_shared<Listener>();
    std::unique_ptr<TouchStory> story;
};

} // namespace trelmix
