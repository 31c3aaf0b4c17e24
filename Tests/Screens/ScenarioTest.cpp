#include "ScreenTest.h"

#include "Opener.h"
#include "Settle.h"
#include "VIRLOAdController.h"
#include "VIRLOAdItem.h"
#include "VIRLOAdPresenter.h"
#include "VIRLOAppRequestStore.h"
#include "VIRLOTimerButton.h"
#include "VIRLOTrackingManager.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace virlo::test
{

namespace
{

class Wallet : public VIRLOAdControllerDelegate
{
public:
    void didGetCurrency(const JSON& info) override { amount += info.value("currencyAmount", 0); }

    std::atomic<int> amount{0};
};

using Scenario = ScreenTest;

TEST_F(Scenario, RunsFromTheStartToTheRewardWithEveryRequestReported)
{
    const JSON item = ad({{"backgroundUrl", url("/images/scenario")},
                          {"impressionUrl", "/ad/imp/{txid}/{cid}"},
                          {"clickTracker", "/ad/click/{txid}/{cid}"},
                          {"clickUrl", "/ad/store/{txid}/{cid}"},
                          {"pollingUrl", "/ad/poll/{txid}/{cid}"},
                          {"currencyAmount", 50},
                          {"currencyType", "coins"}})["ads"][0];
    server().addCampaign(
        "scenario", JSON{{"rules", {{{"placement", "LevelUp"}}}},
                         {"advertisement", {{"type", "engagement"}, {"secondsToSkip", 1}, {"ads", {item}}}},
                         {"rewards", {{identifier(), {{"secondsAfterClick", 0}}}}}}
                        .dump());
    serve("/images/scenario", imageFile(Qt::darkGreen));
    const Opener store;
    const auto wallet = std::make_shared<Wallet>();
    const auto controller = VIRLOAdController::controllerWithCollaborators(
        api, VIRLOAdController::sharedAdController()->trackingManager(), VIRLOAppRequestStore::sharedStore());
    controller->setDelegate(wallet);
    // A check that an earlier test's closing left behind may find the reward first.
    VIRLOAdController::sharedAdController()->setDelegate(wallet);

    // Asked for before there is a session, and shown from the completion, as hosts do.
    Screen screen;
    std::atomic<bool> dismissed{false};
    controller->adViewControllerForPlacementWithCompletion(
        "LevelUp", [&](const std::shared_ptr<VIRLOAdViewController>& made, const OptionalError& error) {
            EXPECT_FALSE(error);
            screen = std::dynamic_pointer_cast<VIRLOAdFullscreenViewController>(made);
            VIRLOAdPresenter::present(made, &window, [&] { dismissed = true; });
        });
    controller->startWithAppIdentifier("scenario-app");
    ASSERT_TRUE(
        settle([&] { return !window.left().hasActiveFocus() && closeButton(screen).timerIsRunning(); }));
    EXPECT_TRUE(settle([&] { return screen->adItem()->impressionMarked(); }));
    click(Qt::Key_Return);
    EXPECT_TRUE(settle([&] { return store.opened().size() == 1 && dismissed; }));
    // Other tests' clicks, which the server never rewards, stay in the store.
    const auto isOwed = [poll = url("/ad/poll/")] {
        const auto items = VIRLOAppRequestStore::sharedStore()->items();
        return std::any_of(items.begin(), items.end(),
                           [&](const URL& address) { return address.absoluteString().starts_with(poll); });
    };
    ASSERT_TRUE(settle([&] { return isOwed() || wallet->amount == 50; }));
    controller->checkAvailableCurrency();
    EXPECT_TRUE(settle([&] { return wallet->amount == 50; }));
    EXPECT_TRUE(settle([&] { return !isOwed(); }));
    controller->applicationWillTerminate();

    const auto wasSeen = [&](const char* part) {
        for (const auto& request : server().requests()) {
            if ((request.method + request.path).find(part) != std::string::npos)
                return true;
        }
        return false;
    };
    for (const char* part : {"POST/app/sess/", "GET/ad/req", "GET/images/scenario", "POST/ad/imp/",
                             "POST/ad/click/", "GET/ad/store/", "GET/ad/poll/", "DELETE/app/sess/"})
        EXPECT_TRUE(settle([&] { return wasSeen(part); })) << part;
}

} // namespace

} // namespace virlo::test
