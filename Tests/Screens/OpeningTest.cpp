#include "ScreenTest.h"

#include "Application.h"
#include "LogCapture.h"
#include "MainLoop.h"
#include "Settle.h"
#include "VIRLOAdPresenter.h"
#include "VIRLOAdServerAPI.h"
#include "VIRLOAppRequestStore.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <mutex>

namespace virlo::test
{

namespace
{

using testing::ElementsAre;
using testing::IsEmpty;

/// Stands in for the device: keeps what it was asked to open, and refuses what it is told to.
class Opener : public URLOpener
{
public:
    Opener() { Application::setURLOpener(this); }

    ~Opener() override
    {
        settleAll();
        Application::setURLOpener(nullptr);
    }

    bool open(const URL& url) override
    {
        const std::lock_guard lock(m_mutex);
        m_opened.push_back(url.path());
        return url.absoluteString() != refused;
    }

    [[nodiscard]] std::vector<std::string> opened() const
    {
        const std::lock_guard lock(m_mutex);
        return m_opened;
    }

    std::string refused;

private:
    mutable std::mutex m_mutex;
    std::vector<std::string> m_opened;
};

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

TEST_F(Opening, AnAppWithoutPollAddsNone)
{
    const auto before = VIRLOAppRequestStore::sharedStore()->items().size();
    const auto screen = shown(ad());
    click(Qt::Key_Return);
    ASSERT_TRUE(awaitOpened());
    settleAll();
    EXPECT_EQ(VIRLOAppRequestStore::sharedStore()->items().size(), before);
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

TEST_F(Opening, UnknownActionsDoNothing)
{
    for (const char* action : {"CLICK_TO_DANCE", "click_to_content", ""}) {
        const auto screen = shown(ad({}, {{"actionType", action}}));
        click(Qt::Key_Return);
        settleAll();
        EXPECT_EQ(requests("/click/" + identifier()), 0);
        click(Qt::Key_Escape);
    }
    EXPECT_THAT(opener.opened(), IsEmpty());
}

TEST_F(Opening, MenuDuringTheClickDropsWhatFollows)
{
    server().setFault(
        {.path = "/click/*", .delay = std::chrono::milliseconds(700), .status = 200, .body = "{}"});
    std::weak_ptr<VIRLOAdFullscreenViewController> gone;
    {
        const auto screen = shown(ad());
        gone = screen;
        click(Qt::Key_Return);
        EXPECT_EQ(focus(screen), "busy");
        click(Qt::Key_Escape);
        EXPECT_TRUE(window.left().hasActiveFocus());
    }
    EXPECT_TRUE(settle([&] { return gone.expired(); }));
    ASSERT_TRUE(awaitRequests("/click/" + identifier()));
    settleAll();
    EXPECT_EQ(requests("/store/" + identifier()), 0);
    EXPECT_THAT(opener.opened(), IsEmpty());
}

TEST_F(Opening, WithoutAServerObjectNothingHappens)
{
    const auto screen = shown(ad());
    ASSERT_TRUE(awaitRequests("/impression/" + identifier()));
    settleAll();
    api.reset();
    click(Qt::Key_Return);
    settleAll();
    EXPECT_EQ(focus(screen), "action");
    EXPECT_THAT(opener.opened(), IsEmpty());
}

TEST_F(Opening, AServerObjectThatGoesDuringTheClickTakesTheCoverWithIt)
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
