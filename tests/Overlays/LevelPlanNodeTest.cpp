#include "Overlays/LevelPlanNode.h"
#include "Overlays/ScenePlace.h"
#include "Platform/Scene/DrawItemBuilder.h"
#include "support/EngineFixture.h"
#include "support/Pixels.h"

#include <algorithm>
#include <fstream>
#include <sstream>

namespace trelmix::level_plan_node_test {

constexpr Coordinate kSouthWest{54.3, 10.1}, kNorthEast{54.3012, 10.1025};

/// The numbers of every row of the table of examples.
std::vector<std::vector<double>> documentedExamples() {
    std::ifstream document(TRELMIX_DOCS "/level-plans.md");
    std::vector<std::vector<double>> rows;
    for (std::string line; std::getline(document, line);) {
        std::vector<double> numbers;
        std::replace_if(
            line.begin(), line.end(), [](char c) { return c == '|' || c == ','; }, ' ');
        std::istringstream text(line);
        for (double number = 0; text >> number;) {
            numbers.push_back(number);
        }
        if (numbers.size() > 1) {
            rows.push_back(numbers);
        }
    }
    return rows;
}

class LevelPlanNodeTest : public EngineFixture {
protected:
    static const SCNPlane* plane(const LevelPlanNode& node) {
        return dynamic_cast<const SCNPlane*>(node.geometry().get());
    }
};

TEST_F(LevelPlanNodeTest, liesWhereTheDocumentedExamplesSay) {
    const auto rows = documentedExamples();
    ASSERT_GE(rows.size(), 6U);
    for (const auto& row : rows) {
        ASSERT_EQ(row.size(), 15U);
        auto node = LevelPlanNode::make({row[0], row[1]}, {row[2], row[3]});
        node->setLevelPlanRotation(row[4]);
        node->setLevelPlanImage(plainImage(2, 2));
        engine = makeEngine();
        node->setMap(engine);
        EXPECT_NEAR(plane(*node)->width(), row[5], 0.001);
        EXPECT_NEAR(plane(*node)->height(), row[6], 0.001);
        step();
        for (std::size_t i = 0; i < 4; ++i) {
            const auto corner =
                coordinateAt(lastFrame.list->items.at(0)->corners[i], *engine->cameraProjection());
            EXPECT_NEAR(corner.latitude, row[7 + 2 * i], 1e-8) << row[0] << " " << row[4];
            EXPECT_NEAR(corner.longitude, row[8 + 2 * i], 1e-8) << row[0] << " " << row[4];
        }
    }
}

TEST_F(LevelPlanNodeTest, aFirstPlanIsInViewWholeAtEveryViewSize) {
    for (const CGSize size : {CGSize{320, 480}, {800, 600}, {1920, 1080}, {600, 1600}}) {
        engine = makeEngine(size.width, size.height);
        auto node = LevelPlanNode::make(kSouthWest, kNorthEast);
        node->setLevelPlanImage(plainImage(2, 2));
        node->setMap(engine);
        step();
        const auto& projection = *engine->cameraProjection();
        double left = size.width, top = size.height;
        for (const Vector3d& corner : lastFrame.list->items.at(0)->corners) {
            const CGPoint p = projection.screenCoordinateFor(coordinateAt(corner, projection));
            left = std::min({left, p.x, size.width - p.x});
            top = std::min({top, p.y, size.height - p.y});
        }
        EXPECT_GE(std::min(left, top), -0.1) << size.width;
        // Not lost in the middle either: a lower view than 591 points shows less of what it fits.
        EXPECT_LE(std::min(left / size.width, top / size.height), 0.15) << size.width;
    }
    engine = makeEngine(0, 0);
    LevelPlanNode::make(kSouthWest, kNorthEast)->setMap(engine);
    EXPECT_EQ(engine->camera()->zoom(), 15.0F) << "a view of no size";
}

TEST_F(LevelPlanNodeTest, changesRebuildItAtOnceAndBadOnesTakeThePictureAway) {
    engine->initialiseWithTarget(locationOf(kSouthWest), 18);
    auto node = LevelPlanNode::make(kSouthWest, kNorthEast);
    node->setMap(engine);
    step();
    EXPECT_TRUE(lastFrame.list->items.empty()) << "without an image";
    EXPECT_NE(plane(*node), nullptr) << "but it takes its place";
    node->setLevelPlanImage(plainImage(2, 2));
    node->setLevelPlanRotation(90);
    node->setLevelPlanRotation(kInfinity);
    EXPECT_FLOAT_EQ(node->eulerAngles().z, 1.5707964F);
    for (const CLLocationCoordinate2D bad :
         {kCLLocationCoordinate2DInvalid, CLLocationCoordinate2D{90, 10.2}, locationOf(kSouthWest)}) {
        node->setNorthEast(bad);
        EXPECT_EQ(node->geometry(), nullptr) << descriptionOf(bad);
        node->setNorthEast(locationOf(kNorthEast));
        EXPECT_NE(plane(*node), nullptr);
    }
}

} // namespace trelmix::level_plan_node_test
