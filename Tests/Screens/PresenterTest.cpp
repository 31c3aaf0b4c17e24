#include "ScreenTest.h"

#include "Button.h"
#include "LogCapture.h"
#include "MainLoop.h"
#include "Settle.h"
#include "Storyboard.h"
#include "TapRecognizer.h"
#include "VIRLOAdPresenter.h"
#include "VIRLOAdScreens.h"
#include "VIRLOAdServerAPI.h"
#include "VIRLOAdStoryboardScreens.h"
#include "VIRLOAdvertisement.h"
#include "VIRLOTimerButton.h"

#include <thread>

namespace virlo::test
{

namespace
{

class Presenter : public ScreenTest
{
protected:
    /// What a type's screen comes to: "screen", "neither" or "error".
    std::string outcome(const JSON& ad)
    {
        std::string outcome;
        std::atomic<bool> done{false};
        VIRLOAdScreens::installed()->screenForAdvertisementWithCompletion(
            VIRLOAdvertisement::initWithDictionary(ad), api,
            [&](const std::shared_ptr<VIRLOAdViewController>& screen, const OptionalError& error) {
                outcome = screen ? "screen" : error ? "error" : "neither";
                done = true;
            });
        EXPECT_TRUE(settle([&] { return done.load(); }));
        return outcome;
    }
};

TEST_F(Presenter, TypesWithoutAScreenGiveNeitherScreenNorError)
{
    for (const char* type : {"any", "featured", "newer"}) {
        JSON other = ad();
        other["type"] = type;
        EXPECT_EQ(outcome(other), "neither") << type;
    }
    EXPECT_EQ(requests("/images/" + identifier()), 0);
    EXPECT_EQ(outcome(ad()), "screen");
}

TEST_F(Presenter, ASceneThatCannotBeLoadedIsAnErrorAndOneLineInTheLog)
{
    const auto registerScene = [](const char* document) {
        Storyboard::registerScene(VIRLOAdStoryboardScreens::storyboardName, "QDXAdFullscreenViewController",
                                  QUrl(QStringLiteral("qrc:/qt/qml/VIRLOAdFramework/Storyboard/") + document),
                                  [] { return ViewController::make<VIRLOAdFullscreenViewController>(); });
    };
    expectLog("Cannot load the scene");
    registerScene("Missing.qml");
    EXPECT_EQ(outcome(ad()), "error");
    registerScene("QDXAdFullscreenViewController.qml");
    EXPECT_EQ(outcome(ad()), "screen");
}

TEST_F(Presenter, DismissesByItselfAndGivesTheFocusBack)
{
    window.right().forceActiveFocus();
    const auto screen = readyOver(Qt::darkBlue, ad());
    int dismissed = 0;
    std::thread([&] {
        VIRLOAdPresenter::present(screen, &window, [&] {
            EXPECT_TRUE(MainLoop::isMainThread());
            ++dismissed;
        });
    }).join();
    ASSERT_TRUE(settle([&] { return closeButton(screen).timerIsRunning(); }));
    EXPECT_FALSE(window.right().hasActiveFocus());
    EXPECT_TRUE(screen->adCompleted());
    std::thread([&] { screen->adCompleted()(); }).join();
    EXPECT_TRUE(settle([&] { return dismissed == 1; }));
    EXPECT_TRUE(window.right().hasActiveFocus());
    EXPECT_FALSE(screen->adCompleted());
    EXPECT_EQ(window.left().keys, std::vector<int>());
}

TEST_F(Presenter, LeavesTheEndToAHostThatSetItsOwn)
{
    const auto screen = readyOver(Qt::darkBlue, ad());
    int completed = 0;
    screen->setAdCompleted([&] { ++completed; });
    present(screen);
    click(Qt::Key_Escape);
    click(Qt::Key_Escape);
    EXPECT_EQ(completed, 2);
    EXPECT_EQ(focus(screen), "action");
    VIRLOAdPresenter::dismiss(screen);
    pumpMainLoop();
    EXPECT_TRUE(window.left().hasActiveFocus());
    EXPECT_TRUE(screen->adCompleted());
    VIRLOAdPresenter::dismiss(screen);
}

TEST_F(Presenter, ReportsTheEndAlsoIfNothingCanBeShown)
{
    int dismissed = 0;
    const auto count = [&] { ++dismissed; };
    expectLog("There is no ad screen to present.");
    VIRLOAdPresenter::present(nullptr, &window, count);
    EXPECT_TRUE(settle([&] { return dismissed == 1; }));
    VIRLOAdPresenter::dismiss(nullptr);

    allowLog(testing::A<std::string>());
    const auto first = shown(ad());
    const auto second = readyOver(Qt::darkBlue, ad());
    VIRLOAdPresenter::present(second, &window, count);
    EXPECT_TRUE(settle([&] { return dismissed == 2; }));
    EXPECT_FALSE(second->adCompleted());
    VIRLOAdPresenter::present(second, nullptr, count);
    EXPECT_TRUE(settle([&] { return dismissed == 3; }));
    EXPECT_EQ(focus(first), "action");
}

TEST_F(Presenter, EndsWithItsWindow)
{
    auto host = std::make_unique<HostWindow>(QSize(1280, 720));
    std::weak_ptr<VIRLOAdFullscreenViewController> gone;
    int dismissed = 0;
    {
        const auto screen = readyOver(Qt::darkBlue, ad());
        gone = screen;
        VIRLOAdPresenter::present(screen, host.get(), [&] { ++dismissed; });
        ASSERT_TRUE(settle([&] { return closeButton(screen).timerIsRunning(); }));
    }
    host.reset();
    EXPECT_TRUE(settle([&] { return dismissed == 1 && gone.expired(); }));
    clock.advance(Seconds(10));
    EXPECT_EQ(clock.pendingCount(), 0U);
}

TEST_F(Presenter, AnAdInsideAnotherLeavesMenuToThatOne)
{
    const auto outer = readyOver(Qt::darkBlue, ad());
    const auto inner = readyOver(Qt::darkGreen, ad());
    outer->addChildViewController(inner);
    outer->view().addSubview(inner->view());
    present(outer);
    EXPECT_TRUE(outer->menuButtonRecognizer());
    EXPECT_FALSE(inner->menuButtonRecognizer());
    click(Qt::Key_Escape);
    EXPECT_TRUE(window.left().hasActiveFocus());
    EXPECT_FALSE(outer->menuButtonRecognizer());
}

} // namespace

} // namespace virlo::test
