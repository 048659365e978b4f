#include "Platform/Foundation/CallerFault.h"
#include "support/DelegateLog.h"

#include <Trelmix/TrelmixMapEngineDelegateGroup.h>

#include <gtest/gtest.h>

#include <stdexcept>

namespace trelmix::delegate_group_test {

struct Member : DelegateLog {
    bool handles = false;
    std::shared_ptr<const UIImage> tile;

    bool mapViewDidTapMarker(const std::shared_ptr<TrelmixMapMarker>&) override {
        calls.emplace_back("tapMarker");
        return handles;
    }
    std::shared_ptr<const UIImage> tileForX(std::int64_t, std::int64_t, std::int64_t) override {
        calls.emplace_back("tile");
        return tile;
    }
    void tileRequestedForX(std::int64_t, std::int64_t, std::int64_t,
                           const std::shared_ptr<TrelmixMapTileLayer>&) override {
        calls.emplace_back("request");
    }
};

class DelegateGroup : public testing::Test {
protected:
    DelegateGroup() {
        group->addMember(first);
        group->addMember(second);
    }
    std::shared_ptr<TrelmixMapEngineDelegateGroup> group = TrelmixMapEngineDelegateGroup::make();
    std::shared_ptr<Member> first = std::make_shared<Member>(), second = std::make_shared<Member>();
};

TEST_F(DelegateGroup, everyMemberHearsOnceAndInOrderAlsoThroughGroupsWithinGroups) {
    const auto outer = TrelmixMapEngineDelegateGroup::make();
    outer->addMember(group);
    group->addMember(outer); // a circle
    group->addMember(first);
    group->addMember(nullptr);
    group->addMember(group);
    std::vector<int> order;
    first->onIdle = [&] { order.push_back(1); };
    second->onIdle = [&] { order.push_back(2); };
    outer->mapViewIdleAtCamera(nullptr);
    EXPECT_EQ(order, (std::vector<int>{1, 2}));
    group->tileRequestedForX(1, 2, 3, nullptr);
    EXPECT_EQ(first->count("request") + second->count("request"), 2U);
    group->removeMember(first);
    group->mapViewWillMoveFromGesture(true);
    EXPECT_EQ(first->count("willMove(gesture)"), 0U);
    EXPECT_EQ(second->count("willMove(gesture)"), 1U);
}

TEST_F(DelegateGroup, answersAreJoined) {
    EXPECT_FALSE(group->mapViewDidTapMarker(nullptr));
    first->handles = true;
    EXPECT_TRUE(group->mapViewDidTapMarker(nullptr));
    EXPECT_EQ(second->count("tapMarker"), 2U) << "it hears of the tap although the first has handled it";
    EXPECT_EQ(group->tileForX(0, 0, 0), nullptr);
    first->tile = UIImage::withPixels(1, 1, {1, 2, 3, 255});
    EXPECT_EQ(group->tileForX(0, 0, 0), first->tile);
    EXPECT_EQ(second->count("tile"), 1U);
}

TEST_F(DelegateGroup, membersMayThrowComeAndGoInsideACall) {
    setCallerFaultHandler([](const char*) {});
    const auto third = std::make_shared<Member>();
    first->onIdle = [&] {
        group->removeMember(second);
        group->addMember(third);
        group->removeMember(first);
        throw std::runtime_error("no");
    };
    group->mapViewIdleAtCamera(nullptr);
    EXPECT_EQ(second->count("idle"), 0U);
    EXPECT_EQ(third->count("idle"), 0U) << "it hears the next call";
    group->addMember(second);
    third->onIdle = [&] {
        group.reset();
        throw std::runtime_error("no");
    };
    const std::weak_ptr<TrelmixMapEngineDelegate> weak = group;
    // As the engine does: it holds its delegate for the call.
    weak.lock()->mapViewIdleAtCamera(nullptr);
    EXPECT_EQ(first->count("idle"), 1U);
    EXPECT_EQ(third->count("idle"), 1U);
    EXPECT_EQ(second->count("idle"), 1U) << "a fault keeps the call from nobody";
    EXPECT_TRUE(weak.expired());
    setCallerFaultHandler(nullptr);
}

} // namespace trelmix::delegate_group_test
