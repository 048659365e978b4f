#include "Overlays/PolygonNode.h"
#include "Overlays/ScenePlace.h"
#include "support/EngineFixture.h"

namespace trelmix::polygon_node_test {

class PolygonNodeTest : public EngineFixture {
protected:
    void SetUp() override {
        EngineFixture::SetUp();
        engine->initialiseWithTarget({54.32, 10.14}, 18);
        polygon->setColor(UIColor{0, 1, 0, 0.5});
        polygon->setPolygonCorners(triangle);
    }
    const SCNShape* shape() const { return dynamic_cast<const SCNShape*>(polygon->geometry().get()); }

    const std::vector<CLLocation> triangle{{54.32, 10.14}, {54.33, 10.14}, {54.33, 10.16}};
    std::shared_ptr<PolygonNode> polygon = PolygonNode::make();
};

TEST_F(PolygonNodeTest, fillsItsCornersWhereTheProjectionPutsThem) {
    EXPECT_EQ(shape(), nullptr);
    polygon->setMap(engine);
    step();
    const DrawItem& item = *lastFrame.list->items.at(0);
    EXPECT_EQ(item.kind, DrawKind::fill);
    ASSERT_EQ(item.mesh->vertexCount(), 3U);
    for (std::size_t i = 0; i < 3; ++i) {
        const auto place = *scenePlaceOf(triangle[i].coordinate(), *engine->cameraProjection());
        EXPECT_NEAR(item.meshPosition.x + static_cast<double>(item.mesh->vertices[3 * i]), place.x, 0.01);
        EXPECT_NEAR(item.meshPosition.y + static_cast<double>(item.mesh->vertices[3 * i + 1]), -place.y,
                    0.01);
    }
}

TEST_F(PolygonNodeTest, aNewColourReusesTheOutlineAndNewCornersDoNot) {
    polygon->setMap(engine);
    const auto path = shape()->path();
    const auto mesh = shape()->mesh();
    polygon->setColor(UIColor::redColor());
    EXPECT_EQ(shape()->path(), path);
    EXPECT_EQ(shape()->mesh(), mesh);
    polygon->setPolygonCorners(triangle);
    EXPECT_NE(shape()->path(), path);
}

TEST_F(PolygonNodeTest, cornersWithoutAPlaceAreLeftOut) {
    auto corners = triangle;
    for (const CLLocation& bad : {CLLocation{-90, 0}, CLLocation{kNaN, 10}, CLLocation{54, 1e300}}) {
        corners.insert(corners.begin() + 1, bad);
    }
    polygon->setPolygonCorners(corners);
    polygon->setMap(engine);
    EXPECT_EQ(shape()->mesh()->indexCount(), 3U);
    for (const auto& list : {std::vector<CLLocation>{}, {triangle[0]}, {triangle[0], triangle[1]}}) {
        polygon->setPolygonCorners(list);
        step();
        EXPECT_TRUE(lastFrame.list->items.empty());
    }
}

} // namespace trelmix::polygon_node_test
