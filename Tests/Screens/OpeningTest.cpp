#include "ScreenTest.h"

#include "LogCapture.h"
#include "MainLoop.h"
#include "Opener.h"
#include "Settle.h"
#include "VIRLOAdFrameworkLogger.h"
#include "VIRLOAdPresenter.h"
#include "VIRLOAdServerAPI.h"
#include "VIRLOAppRequestStore.h"

#include <gmock/gmock.h>

#include <algorithm>

namespace virlo::test
{

namespace
{

using testing::ElementsAre;
using testing::IsEmpty;

class Opening : public ScreenTest
{
protected:
    [[nodiscard]] bool awaitOpened(std::size_t count = 1)
    {
        return settle([&] { return opener.opened().size() >= count; });
    }

    [[nodiscard]] bool awaitPoll(const std::string& path)
    {
        const auto holds = [&] {
            const auto items = VIRLOAppRequestStore::sharedStore()->items();
            return std::any_of(items.begin(), items.end(),
                               [&](const URL& one) { return one.path() == path; });
        };
        return settle(holds, Seconds(3));
    }

    Opener opener;
};

TEST_F(Opening, AnAppRegistersTheClickFollowsTheLinkOpensThePageAndEndsTheAd)
{
    const JSON one = ad({{"pollingUrl", url("/poll/one")}});
    server().setFault(
        {.path = "/store/" + identifier(), .status = 302, .headers = {{"Location", "/store/page"}}});
    server().setFault(
        {.path = "/click/*", .delay = std::chrono::milliseconds(700), .status = 200, .body = "{}"});
    const auto screen = shown(one);
    click(Qt::Key_Return);
    EXPECT_EQ(focus(screen), "busy");
    shoot("busy");
    click(Qt::Key_Return); // no second click
    click(Qt::Key_Left);
    EXPECT_EQ(focus(screen), "busy");
    ASSERT_TRUE(awaitOpened());
    EXPECT_THAT(opener.opened(), ElementsAre("/store/page"));
    EXPECT_TRUE(settle([&] { return window.left().hasActiveFocus(); }));
    EXPECT_EQ(requests("/click/" + identifier()), 1);
    EXPECT_EQ(requests("/store/" + identifier()), 1);
    EXPECT_TRUE(awaitPoll("/poll/one"));
}

TEST_F(Opening, AnAppWhoseClickAndLinkFailStillEndsTheAd)
{
    server().setFault({.path = "/click/*", .status = 500});
    server().setFault({.path = "/store/*", .drop = true});
    const auto screen = shown(ad());
    std::atomic<int> completed{0};
    std::atomic<bool> onMain{false};
    screen->setAdCompleted([&] {
        onMain = MainLoop::isMainThread();
        ++completed;
    });
    click(Qt::Key_Return);
    EXPECT_TRUE(settle([&] { return completed == 1 && focus(screen) == "action"; }));
    EXPECT_FALSE(onMain);
    EXPECT_THAT(opener.opened(), IsEmpty());
    screen->setAdCompleted({});
}

TEST_F(Opening, AnAppOpensAlsoWhereTheHostHasDismissedAndReleasedTheScreen)
{
    server().setFault(
        {.path = "/click/*", .delay = std::chrono::milliseconds(300), .status = 200, .body = "{}"});
    std::atomic<int> completed{0};
    std::weak_ptr<VIRLOAdFullscreenViewController> released;
    {
        const auto screen = readyOver(Qt::darkBlue, ad({{"pollingUrl", url("/poll/released")}}));
        released = screen;
        screen->setAdCompleted([&] { ++completed; });
        present(screen);
        click(Qt::Key_Return);
        VIRLOAdPresenter::dismiss(screen);
    }
    ASSERT_TRUE(awaitOpened());
    EXPECT_EQ(completed, 1);
    EXPECT_TRUE(awaitPoll("/poll/released"));
    EXPECT_TRUE(settle([&] { return released.expired(); }));
}

TEST_F(Opening, LogsTheActionAlsoWhereThereIsNone)
{
    VIRLOAdFrameworkLogger::setDebugLevel(4);
    allowLog(testing::A<std::string>());
    for (const JSON& item : {JSON{{"actionButton", nullptr}}, JSON{{"actionButton", {{"text", "Look"}}}},
                             JSON{{"actionButton", {{"actionType", "CLICK_TO_DANCE"}}}}})
        readyOver(Qt::darkBlue, ad(item))->openForm();
    const auto lines = settledLogLines();
    const auto count = [&](const std::string& start) {
        return std::count_if(lines.begin(), lines.end(),
                             [&](const std::string& line) { return line.starts_with(start); });
    };
    EXPECT_EQ(count("Open item ((null)): "), 2);
    EXPECT_EQ(count("Open item (CLICK_TO_DANCE): "), 1);
    EXPECT_THAT(opener.opened(), IsEmpty());
    VIRLOAdFrameworkLogger::setDebugLevel(2);
}

TEST_F(Opening, ContentRegistersTheClickAndLeavesTheAdBehindIt)
{
    const auto screen = shown(ad({}, {{"actionType", "CLICK_TO_CONTENT"}}));
    click(Qt::Key_Return);
    ASSERT_TRUE(awaitOpened());
    settleAll();
    EXPECT_THAT(opener.opened(), ElementsAre("/store/" + identifier()));
    EXPECT_EQ(requests("/click/" + identifier()), 1);
    EXPECT_EQ(requests("/store/" + identifier()), 0);
    EXPECT_EQ(focus(screen), "action");
}

TEST_F(Opening, ContentThatNothingOpensFallsBack)
{
    const auto screen =
        shown(ad({{"clickFallback", url("/store/fallback")}}, {{"actionType", "CLICK_TO_CONTENT"}}));
    opener.refused = url("/store/" + identifier());
    click(Qt::Key_Return);
    ASSERT_TRUE(awaitOpened(2));
    EXPECT_THAT(opener.opened(), ElementsAre("/store/" + identifier(), "/store/fallback"));
    EXPECT_EQ(focus(screen), "action");
}

TEST_F(Opening, MenuDuringTheClickStopsTheOpeningThoughTheHostHoldsTheScreen)
{
    server().setFault(
        {.path = "/click/*", .delay = std::chrono::milliseconds(700), .status = 200, .body = "{}"});
    const auto screen = shown(ad());
    click(Qt::Key_Return);
    EXPECT_EQ(focus(screen), "busy");
    click(Qt::Key_Escape);
    EXPECT_TRUE(window.left().hasActiveFocus());
    ASSERT_TRUE(awaitRequests("/click/" + identifier()));
    settleAll();
    EXPECT_EQ(requests("/store/" + identifier()), 0);
    EXPECT_THAT(opener.opened(), IsEmpty());
}

TEST_F(Opening, AServerObjectThatIsDestroyedDuringTheClickRemovesTheOverlay)
{
    server().setFault(
        {.path = "/click/*", .delay = std::chrono::milliseconds(700), .status = 200, .body = "{}"});
    const auto screen = shown(ad());
    ASSERT_TRUE(awaitRequests("/impression/" + identifier()));
    click(Qt::Key_Return);
    EXPECT_EQ(focus(screen), "busy");
    api.reset();
    EXPECT_TRUE(settle([&] { return focus(screen) != "busy"; }));
}

} // namespace

} // namespace virlo::test
