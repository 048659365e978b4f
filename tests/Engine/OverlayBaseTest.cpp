#include "support/DelegateLog.h"
#include "support/EngineFixture.h"

#include "Tiles/MapTileNode.h"

#include <limits>
#include <thread>

namespace trelmix::overlay_base_test {

class OverlayBase : public EngineFixture {
protected:
    std::shared_ptr<MapTileNode> overlay = MapTileNode::make();
};

TEST_F(OverlayBase, theFirstOverlayOfAnEngineChoosesItsCameraAndALaterStartOnlyNotesItsValues) {
    overlay->setMap(engine);
    ASSERT_TRUE(engine->camera());
    EXPECT_FLOAT_EQ(engine->camera()->zoom(), 18.5F);
    EXPECT_NEAR(engine->camera()->target().latitude, 0, 1e-9);
    engine->initialiseWithTarget({54, 11}, 16);
    EXPECT_FLOAT_EQ(engine->camera()->zoom(), 18.5F);
    auto second = makeEngine();
    second->initialiseWithTarget({54, 11}, 16);
    MapTileNode::make()->setMap(second);
    EXPECT_FLOAT_EQ(second->camera()->zoom(), 16);
}

TEST_F(OverlayBase, drawingOrderFollowsTheIndexWithTheNextFrameAndSaturates) {
    engine->initialiseWithTarget({54, 11}, 16);
    overlay->setMap(engine);
    overlay->setZIndex(5);
    EXPECT_EQ(overlay->renderingOrder(), 0);
    step();
    EXPECT_EQ(overlay->renderingOrder(), -95);
    overlay->setZIndex(std::numeric_limits<std::int64_t>::min() + 7);
    step();
    EXPECT_EQ(overlay->renderingOrder(), std::numeric_limits<std::int64_t>::min());
}

TEST_F(OverlayBase,
       theSceneKeepsAnOverlayAndAnEngineWhoseLastReferenceFallsElsewhereIsDestroyedByTheMainQueue) {
    engine->initialiseWithTarget({54, 11}, 16);
    const std::weak_ptr<MapTileNode> weak = overlay;
    overlay->setMap(engine);
    overlay.reset();
    std::thread([last = std::move(engine)]() mutable { last.reset(); }).join();
    ASSERT_FALSE(weak.expired());
    EXPECT_TRUE(weak.lock()->cameraProjection());
    RunLoop::main().pump();
    EXPECT_TRUE(weak.expired());
    engine = makeEngine();
}

} // namespace trelmix::overlay_base_test
