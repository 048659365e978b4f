#include "Overlays/PolylineNode.h"
#include "Geo/GeoUtils.h"
#include "support/EngineFixture.h"

#include <limits>

namespace trelmix::polyline_node_test {

const CLLocation kA{54.32, 10.14}, kB{54.321, 10.14}, kC{54.322, 10.14}, kEast{54.321, 10.15};

/// Writes down what the handlers write.
class RecordingWriter : public UniformWriter {
public:
    void glUniform1f(int, float value) override { values = {value}; }
    void glUniform4fv(int, int, const float* four) override { values.assign(four, four + 4); }
    std::vector<float> values;
};

class PolylineNodeTest : public EngineFixture {
protected:
    void SetUp() override {
        EngineFixture::SetUp();
        engine->initialiseWithTarget(kA.coordinate(), 18);
    }
    std::vector<float> uniform(const char* name) const {
        RecordingWriter writer;
        line->geometry()->firstMaterial()->bindings->at(name)(writer, 0);
        return writer.values;
    }

    std::shared_ptr<PolylineNode> line = PolylineNode::make();
};

TEST_F(PolylineNodeTest, theHandlersWriteWidthAndPremultipliedColourAndLeaveTheMeshAlone) {
    line->setPolylineVertices({kA, kB, kEast});
    line->setColor({1, 0, 0, 0.5});
    line->setMap(engine);
    step();
    const auto mesh = lastFrame.list->items.at(0)->mesh;
    EXPECT_EQ(uniform("u_color1"), (std::vector<float>{0.5F, 0, 0, 0.5F}));
    EXPECT_EQ(uniform("u_color2"), (std::vector<float>{0.5F, 0, 0, 0.5F}));
    // Public zoom 23 is the internal zoom 22, of which one map point is a scene unit.
    engine->setCameraWithRotation(0, 0, 23, false);
    const double ratio = engine->cameraProjection()->mapPointScreenPointRatio();
    EXPECT_FLOAT_EQ(uniform("u_lineWidth")[0], static_cast<float>(5.0 * ratio));
    engine->setCameraWithRotation(0, 0, 22, false);
    line->setWidth(8);
    step();
    EXPECT_FLOAT_EQ(uniform("u_lineWidth")[0], static_cast<float>(16.0 * ratio));
    const auto& item = lastFrame.list->items.at(0);
    EXPECT_EQ(item->kind, DrawKind::program);
    EXPECT_EQ(item->mesh, mesh) << "zoom and width leave it alone";
    const auto bindings = item->bindings;
    engine->setCameraWithRotation(0, 0, 21, false);
    line->setMap(nullptr);
    line = nullptr;
    lastFrame = {};
    RecordingWriter writer;
    bindings->at("u_lineWidth")(writer, 0);
    bindings->at("u_color1")(writer, 0);
    EXPECT_TRUE(writer.values.empty()) << "the line is gone";
}

TEST_F(PolylineNodeTest, cleanUpDropsReversalsAndShortLegsButNoStraightOnes) {
    using List = std::vector<CLLocation>;
    const auto latitudes = [](const List& list) {
        std::vector<double> result;
        for (const CLLocation& each : PolylineNode::cleanedUp(list)) {
            result.push_back(each.coordinate().latitude);
        }
        return result;
    };
    using Latitudes = std::vector<double>;
    const CLLocation nearA{54.3200005, 10.14}; // 6 cm
    EXPECT_EQ(latitudes({kA, kB, kC}), (Latitudes{54.32, 54.321, 54.322}));
    EXPECT_EQ(latitudes({kA, kB, kA}), (Latitudes{54.32, 54.32}));
    EXPECT_EQ(latitudes({kA, nearA, kEast}), (Latitudes{54.32, 54.321}));
    EXPECT_EQ(latitudes({kA, nearA}), (Latitudes{54.32, 54.3200005}));
    // To and fro: every turn goes, one after the other.
    List toAndFro;
    for (int i = 0; i < 100000; ++i) {
        toAndFro.push_back(i % 2 == 0 ? kA : kB);
    }
    EXPECT_LE(PolylineNode::cleanedUp(toAndFro).size(), 2U);
}

TEST_F(PolylineNodeTest, listsThatAreNoLineKeepTheOldPicture) {
    line->setPolylineVertices({kA, kB, kEast});
    line->setMap(engine);
    const auto before = line->geometry();
    for (const auto& list : {std::vector<CLLocation>{}, {kA}, {kA, kA}, {kA, {kNaN, 0}, {-90, 0}, kA}}) {
        line->setPolylineVertices(list);
        step();
        EXPECT_EQ(line->geometry(), before);
    }
    line->setWidth(0);
    line->setPolylineVertices({kB, kC});
    EXPECT_EQ(line->geometry(), before);
    line->setWidth(-3);
    step();
    EXPECT_EQ(uniform("u_lineWidth")[0], 0);
    for (const float bad : {std::numeric_limits<float>::infinity(), static_cast<float>(kNaN)}) {
        line->setWidth(bad);
        EXPECT_EQ(line->width(), -3);
    }
}

TEST_F(PolylineNodeTest, verticesKeepTheirPlaceNearAFarFirstOne) {
    const CLLocation far{-33.857, 151.21}, next{-33.8571, 151.2101};
    line->setPolylineVertices({far, next});
    line->setMap(engine);
    step();
    const DrawItem& item = *lastFrame.list->items.at(0);
    const auto place = *scenePlaceOf(next.coordinate(), *engine->cameraProjection());
    EXPECT_NEAR(item.meshPosition.x + static_cast<double>(item.mesh->vertices[6]), place.x, 1e-4);
    EXPECT_NEAR(item.meshPosition.y + static_cast<double>(item.mesh->vertices[7]), -place.y, 1e-4);
}

} // namespace trelmix::polyline_node_test
