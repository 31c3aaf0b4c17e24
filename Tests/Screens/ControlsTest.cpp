#include "ScreenTest.h"

#include "ActivityIndicatorView.h"
#include "Settle.h"
#include "UIButtonVIRLOActionButton.h"
#include "VIRLOActionButton.h"
#include "VIRLOActivityIndicator.h"
#include "VIRLOButton.h"
#include "VIRLOFocusPreference.h"

namespace virlo::test
{

namespace
{

TEST(LiftingButton, PutsBackTheLookThatItHadWhenItWasPressed)
{
    VIRLOButton button;
    button.setShadowOffset({1, 2});
    button.setShadowRadius(3);
    button.setTransform(AffineTransform::scale(1.05, 1.05));
    button.setHighlighted(true);
    EXPECT_EQ(button.shadowOffset(), QPointF(0, 5));
    EXPECT_EQ(button.shadowRadius(), 5);
    EXPECT_EQ(button.transform().a, 1.0199999809265137);
    EXPECT_EQ(button.transform().d, 1.0199999809265137);
    button.setHighlighted(false);
    EXPECT_EQ(button.shadowOffset(), QPointF(1, 2));
    EXPECT_EQ(button.shadowRadius(), 3);
    EXPECT_EQ(button.transform(), AffineTransform::scale(1.05, 1.05));
}

TEST(LiftingButton, TakesTheLiftedLookForItsOwnWhenHighlightedTwice)
{
    VIRLOButton button;
    button.setHighlighted(true);
    button.setHighlighted(true);
    button.setHighlighted(false);
    EXPECT_EQ(button.normalShadowOffset(), QPointF(0, 5));
    EXPECT_EQ(button.shadowOffset(), QPointF(0, 5));
    EXPECT_EQ(button.transform().a, 1.0199999809265137);
}

TEST(ActivityIndicator, CoversOneViewAtATimeAndGoesWhenDismissed)
{
    View first;
    View second;
    first.setSize({400, 300});
    second.setSize({1920, 1080});
    std::weak_ptr<VIRLOActivityIndicator> watch;
    {
        const auto indicator = View::make<VIRLOActivityIndicator>();
        watch = indicator;
        indicator->dismiss();
        indicator->shownInView(first);
        indicator->shownInView(first);
        EXPECT_EQ(first.subviews().size(), 1U);
        EXPECT_EQ(indicator->frame(), QRectF(0, 0, 400, 300));
        first.setSize({800, 600});
        EXPECT_EQ(indicator->frame(), QRectF(0, 0, 800, 600));
        EXPECT_EQ(indicator->activityIndicator().frame().center(), QPointF(400, 300));
        indicator->shownInView(second);
        EXPECT_EQ(indicator->frame(), second.bounds());
    }
    EXPECT_TRUE(first.subviews().empty());
    ASSERT_FALSE(watch.expired()); // the covered view keeps it
    EXPECT_TRUE(watch.lock()->activityIndicator().isAnimating());
    watch.lock()->dismiss();
    EXPECT_TRUE(second.subviews().empty());
    EXPECT_TRUE(settle([&] { return watch.expired(); }));
}

TEST(FocusPreference, IsAMarkThatCanBeTakenOff)
{
    using namespace VIRLOFocusPreference;
    View view;
    EXPECT_FALSE(VIRLO_focusPreference(view));
    VIRLO_markFocusPreference(view);
    EXPECT_TRUE(VIRLO_focusPreference(view));
    VIRLO_removeFocusPreference(view);
    EXPECT_FALSE(VIRLO_focusPreference(view));
}

TEST(ActionButtonLook, KeepsATitleThatTheAdDoesNotName)
{
    Button button;
    button.setTitle("Before");
    UIButtonVIRLOActionButton::applyPropertiesFromModel(
        button, *VIRLOActionButton::initWithDictionary({{"textRed", 510}, {"backgroundGreen", 51}}));
    EXPECT_EQ(button.title(), "Before");
    EXPECT_EQ(button.titleColor(), QColor(255, 0, 0));
    EXPECT_EQ(button.backgroundColor(), QColor(0, 51, 0));
}

} // namespace

} // namespace virlo::test
