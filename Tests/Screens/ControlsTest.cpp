#include "ScreenTest.h"

#include "ActivityIndicatorView.h"
#include "Animation.h"
#include "Image.h"
#include "ImageView.h"
#include "Label.h"
#include "Settle.h"
#include "UIButtonVIRLOActionButton.h"
#include "VIRLOActionButton.h"
#include "VIRLOActivityIndicator.h"
#include "VIRLOButton.h"
#include "VIRLOCircularProgressLayer.h"
#include "VIRLOTimerButton.h"
#include "VIRLOTimerProgress.h"

#include <QPainter>

#include <cmath>
#include <numbers>

namespace virlo::test
{

namespace
{

TEST(LiftingButton, RestoresTheAppearanceBeforeThePress)
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
    // Twice in a row deliberately saves the lifted appearance.
    button.setHighlighted(true);
    button.setHighlighted(true);
    button.setHighlighted(false);
    EXPECT_EQ(button.shadowOffset(), QPointF(0, 5));
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

/// A ring of radius 50; colours by the hour on a clock's face and by the share of the radius.
class Drawn
{
public:
    explicit Drawn(const VIRLOCircularProgressLayer& layer)
        : m_image(100, 100, QImage::Format_ARGB32_Premultiplied)
    {
        m_image.fill(Qt::transparent);
        QPainter painter(&m_image);
        painter.setRenderHint(QPainter::Antialiasing);
        layer.drawInContext(painter, {0, 0, 100, 100});
    }

    [[nodiscard]] QColor at(double clock, double share = 0.93) const
    {
        const double angle = clock / 12 * 2 * std::numbers::pi;
        return m_image.pixelColor(static_cast<int>(50 + 50 * share * std::sin(angle)),
                                  static_cast<int>(50 - 50 * share * std::cos(angle)));
    }

private:
    QImage m_image;
};

const QColor track = QColor::fromRgbF(0, 0, 0, 0.25F);
const QColor filled = Qt::white;

bool alike(const QColor& one, const QColor& other)
{
    return std::abs(one.red() - other.red()) <= 2 && std::abs(one.alpha() - other.alpha()) <= 2;
}

TEST(Ring, FillsItsShareFromTheTopOn)
{
    VIRLOCircularProgressLayer layer;
    layer.setProgress(0.25);
    const Drawn quarter(layer);
    EXPECT_TRUE(alike(quarter.at(0.2), filled));
    EXPECT_TRUE(alike(quarter.at(2.8), filled));
    for (const double hour : {3.2, 6.0, 9.0, 11.8})
        EXPECT_TRUE(alike(quarter.at(hour), track)) << hour;
    EXPECT_EQ(quarter.at(1, 0.83).alpha(), 0);
    EXPECT_TRUE(alike(quarter.at(1, 0.87), filled));
    EXPECT_EQ(quarter.at(0, 0).alpha(), 0);

    layer.setClockwiseProgress(false);
    const Drawn reversed(layer);
    EXPECT_TRUE(alike(reversed.at(10), filled));
    EXPECT_TRUE(alike(reversed.at(2), track));
}

TEST(Ring, MayBeDestroyedOrAnimatedAgainWhenItsAnimationEnds)
{
    TestAnimations animations;
    auto gone = std::make_unique<VIRLOCircularProgressLayer>();
    VIRLOCircularProgressLayer moved;
    // As long as a ring's animation, so its end comes just before theirs.
    static_cast<void>(Animation::run(
        Seconds(1.1), Animation::Curve::Linear, [](double) {},
        [&](bool) {
            gone.reset();
            moved.addProgressAnimation(0.5, 0.25);
        }));
    gone->addProgressAnimation(1, 0.5);
    moved.addProgressAnimation(1, 0.5);
    animations.advance(Seconds(1.2));
    EXPECT_EQ(gone, nullptr);
    animations.advance(Seconds(0.5));
    EXPECT_GT(moved.presentedProgress(), 0.25) << "in its second animation";
    EXPECT_LT(moved.presentedProgress(), 0.5);
    animations.advance(Seconds(1));
    EXPECT_EQ(moved.presentedProgress(), 0) << "at rest";
}

TEST(Ring, IsClosedWhenFullAndAllTrackWhenEmptyOrNoNumber)
{
    VIRLOCircularProgressLayer layer;
    for (const double hour : {0.1, 3.0, 6.0, 9.0, 11.9}) {
        for (const double full : {1.0, 2.0, double{INFINITY}}) {
            layer.setProgress(full);
            EXPECT_TRUE(alike(Drawn(layer).at(hour), filled)) << full << " at " << hour;
        }
        for (const double empty : {0.0, -1.0, std::nan("")}) {
            layer.setProgress(empty);
            EXPECT_TRUE(alike(Drawn(layer).at(hour), track)) << empty << " at " << hour;
        }
    }
}

class Countdown : public testing::Test
{
protected:
    void countSecond()
    {
        clock.advance(Seconds(1));
        animations.advance(Seconds(1));
    }

    [[nodiscard]] std::string number() const { return button.timerValueLabel().text().toStdString(); }

    TestClock clock;
    TestAnimations animations;
    VIRLOTimerButton button;
};

TEST_F(Countdown, CountsToZeroAndThenBecomesAButton)
{
    button.setSize({99, 99});
    button.setInitialTimerValue(5);
    EXPECT_EQ(number(), "5");
    EXPECT_EQ(button.timerValueLabel().fontSize(), 33);
    button.start();
    for (const char* second : {"4", "3", "2", "1", "0"}) {
        countSecond();
        EXPECT_EQ(number(), second);
        EXPECT_FALSE(button.canBecomeFocused());
    }
    EXPECT_EQ(button.timerValueLabel().alpha(), 1);
    clock.advance(Seconds(1));
    EXPECT_FALSE(button.active());
    animations.advance(Seconds(1));
    EXPECT_TRUE(button.active());
    EXPECT_TRUE(button.canBecomeFocused());
    EXPECT_FALSE(button.timerIsRunning());
    EXPECT_EQ(clock.pendingCount(), 0U);
    EXPECT_EQ(button.timerValueLabel().alpha(), 0);
    EXPECT_EQ(button.imageView().alpha(), 1);
}

TEST_F(Countdown, CannotBeSetAnewWhileItRuns)
{
    button.setInitialTimerValue(2);
    button.start();
    button.setInitialTimerValue(60);
    EXPECT_EQ(button.initialTimerValue(), 2);
    for (int second = 0; second < 3; ++second)
        countSecond();
    ASSERT_TRUE(button.active());
    button.setInitialTimerValue(60);
    EXPECT_EQ(number(), "60");
}

TEST_F(Countdown, StepsTheRingBackByASecondsShare)
{
    button.setInitialTimerValue(4);
    button.start();
    EXPECT_EQ(button.layer().presentedProgress(), 1);
    clock.advance(Seconds(1));
    EXPECT_DOUBLE_EQ(button.layer().presentedProgress(), 1);
    animations.advance(Seconds(0.5));
    EXPECT_NEAR(button.layer().presentedProgress(), 0.875, 0.02);
    animations.advance(Seconds(0.55)); // a tick that is a little late shows no full ring
    EXPECT_DOUBLE_EQ(button.layer().presentedProgress(), 0.75);
    EXPECT_EQ(button.layer().progress(), 1);
    animations.advance(Seconds(0.2));
    EXPECT_EQ(button.layer().presentedProgress(), 1);
}

TEST_F(Countdown, ProgressRingRestsOneValueBehind)
{
    VIRLOTimerProgress ring;
    ring.setSize({99, 99});
    ring.setInitialTimerValue(10);
    EXPECT_EQ(ring.layer().presentedProgress(), 1);
    ring.setTimerValue(10);
    ring.setTimerValue(9);
    EXPECT_EQ(ring.timerValueLabel().text(), "9");
    EXPECT_EQ(ring.timerValueLabel().fontSize(), 33);
    animations.advance(Seconds(1));
    EXPECT_NEAR(ring.layer().presentedProgress(), 0.9, 1e-6);
    animations.advance(Seconds(1));
    EXPECT_EQ(ring.layer().presentedProgress(), 1);
}

} // namespace

} // namespace virlo::test
