#include "ScreenTest.h"

#include "Button.h"
#include "LogCapture.h"
#include "Settle.h"
#include "VIRLOAdFrameworkLogger.h"
#include "VIRLOAdItem.h"
#include "VIRLOAdPresenter.h"
#include "VIRLOAppRequestStore.h"
#include "VIRLOFocusPreference.h"
#include "VIRLOTimerButton.h"

namespace virlo::test
{

namespace
{

class FullscreenFlow : public ScreenTest
{
protected:
    [[nodiscard]] bool isOver() { return window.left().hasActiveFocus(); }
};

TEST_F(FullscreenFlow, TheActionHasTheFirstFocusAndTheCountingCloseButtonRefusesIt)
{
    const auto screen = shown(ad({}, {}, 3));
    EXPECT_EQ(focus(screen), "action");
    EXPECT_TRUE(VIRLOFocusPreference::VIRLO_focusPreference(actionButton(screen)));
    for (int second = 0; second < 4; ++second) {
        for (const Qt::Key key : {Qt::Key_Left, Qt::Key_Down, Qt::Key_Right, Qt::Key_Up}) {
            click(key);
            ASSERT_EQ(focus(screen), "action") << "after " << second << " seconds";
        }
        clock.advance(Seconds(1));
        animations.advance(Seconds(0.1));
    }
    EXPECT_FALSE(closeButton(screen).active());
    animations.advance(Seconds(1));
    EXPECT_TRUE(closeButton(screen).active());
    EXPECT_EQ(focus(screen), "action");
}

TEST_F(FullscreenFlow, ArrowsLeadToTheCloseButtonAndBackFromWhereverTheActionStands)
{
    struct Way {
        double x;
        double y;
        std::vector<Qt::Key> there;
        Qt::Key back;
    };

    for (const Way& way : {Way{1300, 840, {Qt::Key_Left, Qt::Key_Down}, Qt::Key_Right},
                           Way{75, 100, {Qt::Key_Down}, Qt::Key_Up},
                           Way{1400, 60, {Qt::Key_Left, Qt::Key_Down}, Qt::Key_Right},
                           Way{300, 60, {Qt::Key_Left, Qt::Key_Down}, Qt::Key_Up}}) {
        const auto screen = shown(ad({}, {{"xPosition", way.x}, {"yPosition", way.y}}, 0));
        countDown(0);
        for (const Qt::Key key : way.there) {
            click(key);
            EXPECT_EQ(focus(screen), "close") << way.x << ' ' << way.y << ' ' << key;
            click(way.back);
            EXPECT_EQ(focus(screen), "action") << way.x << ' ' << way.y << ' ' << way.back;
        }
        click(Qt::Key_Escape);
        ASSERT_TRUE(isOver());
    }
}

TEST_F(FullscreenFlow, TheFocusedActionIsLiftedAndTheCloseButtonKeepsItsSize)
{
    const auto screen = shown(ad({}, {}, 0));
    animations.advance(Seconds(0.5));
    EXPECT_EQ(actionButton(screen).transform(), AffineTransform::scale(1.05, 1.05));
    EXPECT_EQ(actionButton(screen).shadowOffset(), QPointF(0, 15));
    EXPECT_NEAR(actionButton(screen).shadowOpacity(), 0.4, 1e-6);
    EXPECT_EQ(actionButton(screen).shadowRadius(), 10);
    countDown(0);
    click(Qt::Key_Left);
    EXPECT_EQ(actionButton(screen).transform(), AffineTransform());
    EXPECT_EQ(actionButton(screen).shadowColor().alpha(), 0);
    EXPECT_EQ(closeButton(screen).transform(), AffineTransform());
    EXPECT_EQ(closeButton(screen).shadowOpacity(), 0);
    click(Qt::Key_Right);
    EXPECT_EQ(actionButton(screen).shadowColor(), QColor(Qt::black));
}

TEST_F(FullscreenFlow, EveryCloseLooksForRewardsInFiveAndThirtySeconds)
{
    VIRLOAdFrameworkLogger::setDebugLevel(4);
    allowLog(testing::A<std::string>());
    const auto store = VIRLOAppRequestStore::sharedStore();
    store->addItem(*URL::fromString(url("/poll/closing")));
    const auto checks = [] {
        int count = 0;
        for (const std::string& line : settledLogLines())
            count += line == "Check currency for URL: " + url("/poll/closing") ? 1 : 0;
        return count;
    };
    const auto screen = shown(ad());
    const int before = checks();
    click(Qt::Key_Escape);
    clock.advance(Seconds(4.9));
    EXPECT_EQ(checks() - before, 0);
    clock.advance(Seconds(0.2));
    EXPECT_EQ(checks() - before, 1);
    clock.advance(Seconds(24.8));
    EXPECT_EQ(checks() - before, 1);
    clock.advance(Seconds(0.2));
    EXPECT_EQ(checks() - before, 2);
    store->removeItem(*URL::fromString(url("/poll/closing")));
    VIRLOAdFrameworkLogger::setDebugLevel(2);
}

TEST_F(FullscreenFlow, ReportsAFailedImpressionAgainAtTheNextAppearance)
{
    server().setFault({.path = "/impression/*", .status = 500, .times = 1});
    const auto screen = shown(ad());
    const std::string path = "/impression/" + identifier();
    ASSERT_TRUE(awaitRequests(path));
    settleAll();
    EXPECT_FALSE(screen->adItem()->impressionMarked());
    click(Qt::Key_Escape);
    present(screen);
    EXPECT_TRUE(settle([&] { return screen->adItem()->impressionMarked(); }));
    click(Qt::Key_Escape);
    present(screen);
    settleAll();
    EXPECT_EQ(requests(path), 2) << "once it has succeeded, never again";
}

TEST_F(FullscreenFlow, AnAdWithoutAButtonOrWithoutItemsCanStillBeLeft)
{
    JSON empty = ad({}, {}, 0);
    empty["ads"] = JSON::array();
    for (const JSON& one : {ad({{"actionButton", nullptr}}, {}, 0), empty}) {
        const auto screen = readyOver(Qt::darkBlue, one.at("ads").empty() ? ad() : one);
        const auto bare = one.at("ads").empty() ? ready(one) : screen;
        VIRLOAdPresenter::present(bare, &window);
        ASSERT_TRUE(settle([&] { return closeButton(bare).timerIsRunning(); }));
        EXPECT_FALSE(actionButton(bare).isVisible());
        EXPECT_EQ(focus(bare), "none");
        countDown(0);
        EXPECT_EQ(focus(bare), "close");
        click(Qt::Key_Return);
        ASSERT_TRUE(isOver());
        VIRLOAdPresenter::present(bare, &window);
        ASSERT_TRUE(settle([&] { return closeButton(bare).timerIsRunning(); }));
        click(Qt::Key_Escape);
        ASSERT_TRUE(isOver());
    }
}

TEST_F(FullscreenFlow, RestsOnceTheCountIsOver)
{
    const auto screen = shown(ad({}, {}, 1));
    countDown(1);
    animations.advance(Seconds(1));
    static_cast<void>(settle([] { return false; }, Seconds(0.2))); // what is still to be drawn
    EXPECT_EQ(clock.pendingCount(), 0U);
    int frames = 0;
    const auto counting = QObject::connect(&window, &QQuickWindow::frameSwapped, [&] { ++frames; });
    animations.advance(Seconds(2));
    EXPECT_FALSE(settle([&] { return frames > 0; }, Seconds(0.2)));

    QObject::disconnect(counting);
}

} // namespace

} // namespace virlo::test
