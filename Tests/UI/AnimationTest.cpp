#include "Animation.h"
#include "Settle.h"
#include "TestAnimations.h"
#include "View.h"

#include <gtest/gtest.h>

#include <optional>

namespace virlo::test
{

namespace
{

class AnimationTest : public testing::Test
{
protected:
    Animation::Completion note(std::vector<bool>& into)
    {
        return [&into](bool finished) { into.push_back(finished); };
    }

    TestAnimations animations;
    View view;
    std::vector<bool> ended;
    std::vector<bool> second;
};

TEST_F(AnimationTest, MovesEveryPropertyToItsEnd)
{
    view.setFrame({0, 0, 100, 100});
    Animation::animate(
        Seconds(1),
        [&] {
            view.setFrame({100, 200, 300, 400});
            view.setAlpha(0);
            view.setTransform(AffineTransform::scale(2, 3));
            view.setBackgroundColor(Qt::red);
            view.setShadowColor(Qt::green);
            view.setShadowOffset({3, 4});
            view.setShadowOpacity(0.5);
            view.setShadowRadius(10);
            EXPECT_EQ(Animation::inheritedDuration(), Seconds(1));
        },
        note(ended), Animation::Curve::Linear);
    EXPECT_EQ(Animation::inheritedDuration(), Seconds(0));
    EXPECT_EQ(view.alpha(), 0);
    EXPECT_EQ(view.opacity(), 1) << "the value is the new one, the look is not yet";
    animations.advance(Seconds(0.5));
    EXPECT_NEAR(view.opacity(), 0.5, 0.02);
    EXPECT_NEAR(view.x(), 50, 2);
    EXPECT_TRUE(ended.empty());
    animations.advance(Seconds(0.6));
    EXPECT_EQ(view.frame(), QRectF(100, 200, 300, 400));
    EXPECT_EQ(view.height(), 400);
    EXPECT_EQ(view.transform(), AffineTransform::scale(2, 3));
    EXPECT_EQ(view.backgroundColor(), QColor(Qt::red));
    EXPECT_EQ(view.shadowColor(), QColor(Qt::green));
    EXPECT_EQ(view.shadowOffset(), QPointF(3, 4));
    EXPECT_EQ(view.shadowOpacity(), 0.5);
    EXPECT_EQ(view.shadowRadius(), 10);
    EXPECT_EQ(ended, (std::vector{true}));
}

TEST_F(AnimationTest, ALaterAnimationTakesOverFromWhereTheViewStands)
{
    Animation::animate(
        Seconds(1), [&] { view.setAlpha(0); }, note(ended), Animation::Curve::Linear);
    animations.advance(Seconds(0.5));
    Animation::animate(
        Seconds(1), [&] { view.setAlpha(1); }, note(second), Animation::Curve::Linear);
    EXPECT_TRUE(ended.empty()) << "not inside the change that cut it short";
    animations.advance(Seconds(0.1));
    EXPECT_EQ(ended, (std::vector{false}));
    EXPECT_NEAR(view.opacity(), 0.55, 0.03);
    animations.advance(Seconds(1));
    EXPECT_EQ(view.opacity(), 1);
    EXPECT_EQ(ended.size(), 1U);
    EXPECT_EQ(second, (std::vector{true}));
}

TEST_F(AnimationTest, APlainChangeOfOnePropertyCutsTheAnimationShort)
{
    Animation::animate(
        Seconds(1),
        [&] {
            view.setAlpha(0);
            view.setShadowOpacity(1);
        },
        note(ended));
    animations.advance(Seconds(0.2));
    view.setAlpha(0.7);
    EXPECT_EQ(view.opacity(), 0.7);
    animations.advance(Seconds(1));
    EXPECT_EQ(view.opacity(), 0.7);
    EXPECT_EQ(view.shadowOpacity(), 1) << "the other property goes on";
    EXPECT_EQ(ended, (std::vector{false}));
}

TEST_F(AnimationTest, CancellingStopsWhereItStands)
{
    const auto animation = Animation::animate(
        Seconds(1), [&] { view.setAlpha(0); }, note(ended), Animation::Curve::Linear);
    animations.advance(Seconds(0.25));
    animation->cancel();
    animation->cancel();
    EXPECT_EQ(ended, (std::vector{false}));
    EXPECT_FALSE(animation->isRunning());
    EXPECT_NEAR(view.alpha(), 0.75, 0.02);
    animations.advance(Seconds(1));
    EXPECT_NEAR(view.alpha(), 0.75, 0.02);
    EXPECT_EQ(ended.size(), 1U);
}

TEST_F(AnimationTest, AViewMayGoOnTheWay)
{
    std::optional<View> mortal(std::in_place);
    Animation::animate(
        Seconds(1), [&] { mortal->setAlpha(0); }, note(ended));
    animations.advance(Seconds(0.2));
    mortal.reset();
    animations.advance(Seconds(1));
    EXPECT_EQ(ended, (std::vector{false}));
}

TEST_F(AnimationTest, StepsFromNoughtToExactlyOneWithoutBeingHeld)
{
    std::vector<double> shares;
    Animation::run(
        Seconds(1), Animation::Curve::Linear, [&](double share) { shares.push_back(share); }, note(ended));
    animations.advance(Seconds(1.5));
    ASSERT_GT(shares.size(), 50U);
    EXPECT_EQ(shares.front(), 0);
    EXPECT_EQ(shares.back(), 1);
    EXPECT_TRUE(std::is_sorted(shares.begin(), shares.end()));
    EXPECT_EQ(ended, (std::vector{true}));
}

TEST_F(AnimationTest, NoLengthOrNothingToDoStillCompletesLater)
{
    Animation::animate(
        Seconds(0), [&] { view.setAlpha(0.5); }, note(ended));
    Animation::animate(Seconds(-1), {}, note(second));
    EXPECT_TRUE(ended.empty());
    animations.advance(Seconds(0.1));
    EXPECT_EQ(view.opacity(), 0.5);
    EXPECT_EQ(ended, (std::vector{true}));
    EXPECT_EQ(second, (std::vector{true}));
}

} // namespace

} // namespace virlo::test
