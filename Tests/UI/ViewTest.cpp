#include "View.h"
#include "Settle.h"

#include <gtest/gtest.h>

namespace virlo::test
{

namespace
{

TEST(View, HoldsASharedSubviewUntilItLeaves)
{
    auto first = View::make<View>();
    auto second = View::make<View>();
    std::weak_ptr<View> watch;
    {
        auto subview = View::make<View>();
        watch = subview;
        first->addSubview(subview);
        first->addSubview(subview);
    }
    pumpMainLoop();
    ASSERT_FALSE(watch.expired());
    second->addSubview(watch.lock());
    EXPECT_TRUE(first->subviews().empty());
    pumpMainLoop();
    ASSERT_EQ(second->subviews().size(), 1U);
    watch.lock()->removeFromSuperview();
    pumpMainLoop();
    EXPECT_TRUE(watch.expired());
}

TEST(View, OrdersItsSubviews)
{
    View view;
    View a;
    View b;
    View c;
    view.addSubview(a);
    view.addSubview(b);
    view.addSubview(a);
    EXPECT_EQ(view.subviews(), (std::vector<View*>{&b, &a}));
    view.insertSubviewAbove(c, b);
    EXPECT_EQ(view.subviews(), (std::vector<View*>{&b, &c, &a}));
    view.insertSubviewBelow(a, b);
    EXPECT_EQ(view.subviews(), (std::vector<View*>{&a, &b, &c}));
}

TEST(View, FindsViewsThroughPlainItems)
{
    View view;
    QQuickItem plain(&view);
    View inner(&plain);
    inner.setProperty("tag", 980003);
    EXPECT_EQ(inner.superview(), &view);
    EXPECT_EQ(view.subviews(), (std::vector<View*>{&inner}));
    EXPECT_EQ(view.viewWithTag(980003), &inner);
    EXPECT_EQ(view.viewWithTag(1), nullptr);
    EXPECT_TRUE(inner.isDescendantOf(view));
    EXPECT_TRUE(view.isDescendantOf(view));
    EXPECT_FALSE(view.isDescendantOf(inner));
}

TEST(View, FillsTheViewItIsPinnedTo)
{
    View view;
    View inner;
    view.setFrame({5, 5, 100, 50});
    view.addSubview(inner);
    view.pinToEdges(inner);
    EXPECT_EQ(inner.frame(), QRectF(0, 0, 100, 50));
    view.setFrame({5, 5, 300, 200});
    EXPECT_EQ(inner.frame(), QRectF(0, 0, 300, 200));
    View other;
    other.setFrame({0, 0, 10, 10});
    other.addSubview(inner);
    other.pinToEdges(inner);
    EXPECT_EQ(inner.frame(), QRectF(0, 0, 10, 10));
}

} // namespace

} // namespace virlo::test
