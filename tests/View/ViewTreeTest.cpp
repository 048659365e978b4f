#include "Platform/View/LayoutConstraint.h"

#include "Platform/View/ViewNode.h"
#include "support/NotFinite.h"

#include <gtest/gtest.h>

namespace trelmix::view_tree_test {

TEST(LayoutConstraint, pinnedViewsFollowTheirSuperviewAndFixedOnesKeepTheirLength) {
    const auto parent = ViewNode::make({{5, 5}, {300, 200}});
    const auto child = ViewNode::make();
    parent->addSubview(child);
    const LayoutConstraint::Views views{{"child", child}};
    parent->addConstraints(*LayoutConstraint::constraintsWithVisualFormat("H:|[child]|", {}, views));
    parent->addConstraints(
        *LayoutConstraint::constraintsWithVisualFormat("V:|[child(==h)]|", {{"h", 70}}, views));
    parent->layoutIfNeeded();
    EXPECT_EQ(child->frame(), (CGRect{{0, 0}, {300, 70}}));
    parent->setFrame({{0, 0}, {500, 400}});
    parent->layoutIfNeeded();
    EXPECT_EQ(child->frame(), (CGRect{{0, 0}, {500, 70}}));
    child->removeFromSuperview();
    parent->setFrame({{0, 0}, {1, 1}});
    parent->layoutIfNeeded();
    EXPECT_EQ(child->frame().size.width, 500) << "no longer its concern";
}

TEST(LayoutConstraint, otherFormatsSayWhatIsWrong) {
    const auto view = ViewNode::make();
    auto gone = ViewNode::make();
    const LayoutConstraint::Views views{{"v", view}, {"gone", gone}};
    gone.reset();
    const LayoutConstraint::Metrics metrics{{"bad", kNaN}};
    for (const char* format :
         {"", "|[v]|", "H:|[v]", "H:|[v]|x", "H:|[w]|", "H:|[gone]|", "V:|[v(==m)]|", "V:|[v(==4]|",
          "V:|[v(==bad)]|", "V:|[v(==-1)]|", "V:|[v(==0x)]|", "V:|[v\n]|"}) {
        const auto result = LayoutConstraint::constraintsWithVisualFormat(format, metrics, views);
        EXPECT_FALSE(result) << format;
        EXPECT_EQ(result.reason().find('\n'), std::string::npos);
        EXPECT_FALSE(result.reason().empty()) << format;
    }
    EXPECT_EQ((*LayoutConstraint::constraintsWithVisualFormat("V:|[v(==120)]|", {}, views))[0].length(), 120);
}

TEST(UIView, isHitAtItsTopmostVisibleViewAndPointsConvertBothWays) {
    const auto root = ViewNode::make({{7, 7}, {400, 400}});
    const auto lower = ViewNode::make({{50, 50}, {100, 100}});
    const auto upper = ViewNode::make({{100, 100}, {100, 100}});
    const auto inner = ViewNode::make({{80, 80}, {100, 100}});
    root->addSubview(lower);
    root->addSubview(upper);
    upper->addSubview(inner);
    EXPECT_EQ(root->hitTest({120, 120}), upper);
    EXPECT_EQ(root->hitTest({190, 190}), inner);
    EXPECT_EQ(root->hitTest({210, 210}), root) << "outside its superview a view is not hit";
    upper->setAlpha(0);
    EXPECT_EQ(root->hitTest({120, 120}), lower);
    lower->setHidden(true);
    EXPECT_EQ(root->hitTest({120, 120}), root);
    EXPECT_EQ(root->hitTest({400, 0}), nullptr);
    EXPECT_EQ(inner->convertPointToView({1, 2}, lower), (CGPoint{131, 132}));
    EXPECT_EQ(root->convertPointToView({181, 182}, inner), (CGPoint{1, 2}));
}

TEST(UIView, refusesCirclesAndKeepsNumbersFinite) {
    const auto a = ViewNode::make({{1, 2}, {-3, kNaN}});
    EXPECT_EQ(a->frame(), (CGRect{{1, 2}, {0, 0}}));
    a->setAlpha(kNaN);
    EXPECT_EQ(a->alpha(), 1);
    auto b = ViewNode::make();
    a->addSubview(b);
    a->addSubview(a);
    b->addSubview(a);
    EXPECT_EQ(a->superview(), nullptr);
    const auto c = ViewNode::make();
    c->addSubview(b);
    EXPECT_TRUE(a->subviews().empty());
    EXPECT_EQ(b->superview(), c);
    // The tree may hold the only reference to what is taken out of it.
    UIView* const raw = b.get();
    const std::weak_ptr<UIView> gone = b;
    b.reset();
    raw->removeFromSuperview();
    EXPECT_TRUE(gone.expired());
}

} // namespace trelmix::view_tree_test
