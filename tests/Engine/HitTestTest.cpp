#include "Platform/Scene/HitTest.h"
#include "Platform/Foundation/Clock.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <iterator>
#include <random>

namespace trelmix::hit_test_test {

const DrawCamera kCamera{{0, 0, 0}, {-0.6, 0, 0.4}, {0, 0, -500}};
constexpr CGSize kView{400, 300};

/// A scene of planes, discs and fills that changes at random, hit again and again.
class ChangingScene {
public:
    void change() {
        const std::function<void(SCNNode&)> changes[] = {
            [this](SCNNode& node) { node.setExactPosition(somewhere()); },
            [this](SCNNode& node) {
                node.setExactEulerAngles({angle(), angle(), angle()});
            },
            [](SCNNode& node) {
                node.setScale(SCNVector3{0.5F, 3.0F, 1.0F});
            },
            [](SCNNode& node) { node.setIsHidden(!node.isHidden()); },
            [this](SCNNode& node) { node.setGeometry(geometry()); },
            [this](SCNNode& node) { node.runAction(SCNAction::moveTo(somewhere(), 1)); },
            [this](SCNNode& node) {
                node.removeFromParentNode();
                add();
            }};
        changes[random() % std::size(changes)](*(*scene.childNodes())[random() % scene.childNodes()->size()]);
    }
    void add() {
        auto node = std::make_shared<SCNNode>();
        node->setExactPosition(somewhere());
        node->setGeometry(geometry());
        scene.addChildNode(std::move(node));
    }
    /// The distances that scenes of one node each, never hit before, say of the same nodes.
    std::vector<double> freshHits(const SceneRay& ray, bool boxesOnly) {
        std::vector<double> distances;
        for (const auto& node : *scene.childNodes()) {
            SCNScene alone;
            auto twin = std::make_shared<SCNNode>();
            twin->setExactPosition(node->presentedPosition());
            twin->setExactEulerAngles(node->presentedEulerAngles());
            twin->setScale(node->scale());
            twin->setIsHidden(node->isHidden());
            twin->setGeometry(node->geometry());
            alone.addChildNode(twin);
            for (const SCNHitTestResult& hit : hitTestScene(alone, ray, boxesOnly)) {
                distances.push_back(hit.distance);
            }
        }
        std::sort(distances.begin(), distances.end());
        return distances;
    }
    std::uint32_t random() { return static_cast<std::uint32_t>(_random()); }
    SCNScene scene;

private:
    double angle() { return static_cast<double>(random() % 628) * 0.01; }
    Vector3d somewhere() {
        return {static_cast<double>(random() % 400) - 200, static_cast<double>(random() % 400) - 200, 0};
    }
    std::shared_ptr<SCNGeometry> geometry() {
        if (random() % 3 == 0) {
            auto mesh = std::make_shared<SCNMesh>();
            mesh->vertices = {-40, -30, 0, 50, -20, 0, 10, 60, 0};
            mesh->indices = std::vector<std::uint8_t>{0, 1, 2};
            mesh->origin = {7, 9, 0};
            return std::make_shared<SCNMeshGeometry>(std::move(mesh));
        }
        auto plane = std::make_shared<SCNPlane>(60, 60);
        plane->setCornerRadius(random() % 2 == 0 ? 30 : 0);
        return plane;
    }

    std::mt19937 _random{11};
};

TEST(HitTest, findsTheSameNodesHoweverOftenTheSceneWasHitAndChangedBefore) {
    Clock::set(Clock::now());
    ChangingScene changing;
    for (int i = 0; i < 60; ++i) {
        changing.add();
    }
    std::size_t found = 0;
    for (int round = 0; round < 2000; ++round) {
        changing.change();
        Clock::set(Clock::now() + 0.05);
        changing.scene.advanceActions(Clock::now());
        const CGPoint point{static_cast<double>(changing.random() % 400),
                            static_cast<double>(changing.random() % 300)};
        const SceneRay ray = sceneRayThrough(point, kView, kCamera);
        const bool boxesOnly = round % 2 == 0;
        const auto hits = hitTestScene(changing.scene, ray, boxesOnly);
        const auto expected = changing.freshHits(ray, boxesOnly);
        ASSERT_EQ(hits.size(), expected.size()) << "round " << round;
        for (std::size_t i = 0; i < hits.size(); ++i) {
            EXPECT_NEAR(hits[i].distance, expected[i], 1e-5) << "round " << round;
        }
        found += hits.size();
    }
    EXPECT_GT(found, 500U);
    Clock::reset();
}

} // namespace trelmix::hit_test_test
