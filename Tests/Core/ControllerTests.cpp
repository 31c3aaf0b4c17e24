#include "ControllerTest.h"
#include "NotificationCenter.h"
#include "VIRLOAdScreens.h"
#include "VIRLOAdvertisement.h"

#include <algorithm>
#include <future>
#include <mutex>
#include <thread>

namespace virlo::test
{
namespace
{

using Controller = ControllerTest;

TEST_F(Controller, FirstStartRegistersTheInstallAndOpensTheSession)
{
    transport->expect("POST", installPath);
    transport->expect("POST", startPath, sessionResponse());
    transport->expect("PUT", sessionPath);
    controller->startWithAppIdentifier("host");
    settleAll();
    EXPECT_TRUE(trackingManager->isTrackingInitiated());
    EXPECT_EQ(controller->currentPlacement(), "AppLaunch");
    EXPECT_EQ(transport->lastRequest("PUT", sessionPath).body, R"({"currentPlacement":"AppLaunch"})");
}

TEST_F(Controller, FailedInstallOpensNoSessionAndIsRetriedAtTheNextStart)
{
    expectLog("Cannot register application install. ERROR: ");
    transport->expect("POST", installPath, noResponse());
    controller->startWithAppIdentifier("host");
    settleAll();
    EXPECT_FALSE(trackingManager->isTrackingInitiated());
    EXPECT_FALSE(controller->currentPlacement());

    // Two further starts at once: the mark is made and the session opened once.
    transport->expectHeld("POST", installPath);
    transport->expectHeld("POST", installPath);
    controller->startWithAppIdentifier("host");
    controller->startWithAppIdentifier("host");
    settleAll();
    transport->expect("POST", startPath, sessionResponse());
    transport->expect("PUT", sessionPath);
    transport->release("POST", installPath);
    transport->release("POST", installPath);
    settleAll();
    EXPECT_TRUE(trackingManager->isTrackingInitiated());
}

TEST_F(Controller, FollowsTheAppsLifeCycle)
{
    start();
    transport->expect("PUT", sessionPath);
    NotificationCenter::defaultCenter().post(ApplicationDidBecomeActiveNotification);
    EXPECT_EQ(controller->currentPlacement(), "AppResume") << "on the caller's thread";
    settleAll();

    store->addItem(*URL::fromString("https://ads.example/poll"));
    transport->expect("PUT", sessionPath);
    NotificationCenter::defaultCenter().post(ApplicationDidEnterBackgroundNotification);
    settleAll();
    EXPECT_EQ(transport->lastRequest("PUT", sessionPath).body, R"({"currentPlacement":"AppClose"})");
    EXPECT_THAT(folder.read("store/requestedItems.store").value(),
                testing::HasSubstr("https://ads.example/poll"));
    EXPECT_THAT(folder.read(trackingFile).value(), testing::StartsWith("bplist"));

    transport->expect("DELETE", sessionPath, {204, ""});
    NotificationCenter::defaultCenter().post(ApplicationWillTerminateNotification);
    settleAll();
}

/// Installed for its lifetime.
class FakeScreens : public VIRLOAdScreens
{
public:
    FakeScreens() { install(this); }

    ~FakeScreens() override { install(nullptr); }

    FakeScreens(const FakeScreens&) = delete;
    FakeScreens& operator=(const FakeScreens&) = delete;

    Abandon screenForAdvertisementWithCompletion(std::shared_ptr<VIRLOAdvertisement> advertisement,
                                                 std::shared_ptr<VIRLOAdServerAPI>,
                                                 Completion completion) override
    {
        requested = std::move(advertisement);
        if (neverReady)
            return [this] { return std::exchange(neverReady, false); };
        completion(error ? nullptr : screen, error);
        return {};
    }

    std::shared_ptr<VIRLOAdvertisement> requested;
    std::shared_ptr<VIRLOAdViewController> screen;
    OptionalError error;
    bool neverReady = false;
};

class AdScreen : public ControllerTest
{
protected:
    struct Outcome {
        std::shared_ptr<VIRLOAdViewController> screen;
        OptionalError error;
    };

    VIRLOAdController::AdViewControllerCompletion collect()
    {
        return [this](std::shared_ptr<VIRLOAdViewController> screen, const OptionalError& error) {
            const std::lock_guard lock(mutex);
            outcomes.push_back({std::move(screen), error});
        };
    }

    static std::shared_ptr<VIRLOAdViewController> someScreen()
    {
        const auto owner = std::make_shared<int>();
        return {owner, reinterpret_cast<VIRLOAdViewController*>(owner.get())};
    }

    std::mutex mutex;
    std::vector<Outcome> outcomes;
    const FakeResponse engagement{200, R"({"txid":"t","type":"engagement"})"};
};

TEST_F(AdScreen, IsMadeForTheResponse)
{
    FakeScreens screens;
    screens.screen = someScreen();
    start();
    transport->expect("PUT", sessionPath);
    transport->expect("GET", "/ad/req", engagement);
    controller->adViewControllerForPlacementWithCompletion("LevelUp", collect());
    EXPECT_EQ(controller->currentPlacement(), "LevelUp");
    settleAll();
    ASSERT_EQ(outcomes.size(), 1U);
    EXPECT_EQ(outcomes[0].screen, screens.screen);
    EXPECT_FALSE(outcomes[0].error);
    EXPECT_EQ(screens.requested->type(), VIRLOAdvertisementType::Engagement);
    EXPECT_THAT(transport->lastRequest("GET", "/ad/req").url.absoluteString(),
                testing::EndsWith("?app=host&placement=LevelUp"));
}

TEST_F(AdScreen, IsGivenUpAfterTheTimeLimit)
{
    FakeScreens screens;
    screens.neverReady = true;
    start();
    controller->setPreloadTimeLimit(5);
    transport->expect("GET", "/ad/req", engagement);
    controller->adViewControllerOfTypeWithCompletion(4, collect());
    settleAll();
    clock.advance(Seconds(4.9));
    EXPECT_TRUE(outcomes.empty());
    clock.advance(Seconds(0.1));
    settleAll();
    ASSERT_EQ(outcomes.size(), 1U);
    EXPECT_FALSE(outcomes[0].screen);
    EXPECT_EQ(outcomes[0].error.value().domain, VIRLOAdController::preloadTimeLimitErrorDomain);
    EXPECT_FALSE(screens.neverReady) << "the screen was dropped";
}

TEST_F(AdScreen, IsNeitherScreenNorErrorForATypeWithoutOne)
{
    start(); // without screens at first
    transport->expect("GET", "/ad/req", {200, R"({"type":"featured"})"});
    controller->adViewControllerOfTypeWithCompletion(5, collect());
    settleAll();
    FakeScreens screens;
    transport->expect("GET", "/ad/req", {200, "[]"});
    controller->adViewControllerOfTypeWithCompletion(0, collect());
    settleAll();
    EXPECT_EQ(screens.requested->type(), VIRLOAdvertisementType::Any);
    ASSERT_EQ(outcomes.size(), 2U);
    for (const Outcome& outcome : outcomes)
        EXPECT_TRUE(!outcome.screen && !outcome.error);
}

TEST_F(AdScreen, ErrorsOfRequestAndPreloadingArePassedOn)
{
    FakeScreens screens;
    screens.error = Error{"preload", 7, {}};
    start();
    for (const FakeResponse& response : {engagement, FakeResponse{404, R"({"error":"NO_FILL"})"}}) {
        transport->expect("GET", "/ad/req", response);
        controller->adViewControllerOfTypeWithCompletion(3, collect());
        settleAll();
    }
    ASSERT_EQ(outcomes.size(), 2U);
    EXPECT_EQ(outcomes[0].error, screens.error);
    EXPECT_EQ(outcomes[1].error, (Error{VIRLOAdServerAPI::httpErrorDomain, 404, {{"error", "NO_FILL"}}}));
}

TEST_F(AdScreen, RequestedBeforeTheStartWaitsForTheSession)
{
    controller->adViewControllerOfTypeWithCompletion(0, collect());
    controller->adViewControllerOfTypeWithCompletion(0, {});
    settleAll();
    EXPECT_TRUE(outcomes.empty());
    transport->expect("GET", "/ad/req", engagement);
    transport->expect("GET", "/ad/req", engagement);
    start();
    EXPECT_EQ(outcomes.size(), 1U);
}

TEST_F(Controller, NoPublicCallWaitsForTheDisk)
{
    using Operation = FaultyFileSystem::Operation;
    markTrackingInitiated();
    for (const auto operation :
         {Operation::Read, Operation::Write, Operation::CreateDirectories, Operation::IsDirectory})
        disk.hold(operation);
    transport->expect("POST", startPath, sessionResponse());
    for (int report = 0; report < 4; ++report)
        transport->expect("PUT", sessionPath);
    for (int check = 0; check < 3; ++check)
        transport->expect("GET", "/poll");

    std::promise<void> returned;
    std::thread watchdog([&, done = returned.get_future()] {
        if (done.wait_for(std::chrono::seconds(10)) == std::future_status::ready)
            return;
        ADD_FAILURE() << "A public call waits for the disk";
        disk.release();
    });
    store->addItem(*URL::fromString("https://ads.example/poll"));
    controller->startWithAppIdentifier("host");
    NotificationCenter::defaultCenter().post(ApplicationDidBecomeActiveNotification);
    controller->checkAvailableCurrency();
    controller->checkAvailableCurrencyAfterTimeInterval(0);
    controller->registerThirdPartyUserIdWithCompletion("caf\xe9", [](const OptionalError&) {});
    controller->applicationDidEnterBackground();
    EXPECT_FALSE(store->items().empty());
    trackingManager->initiateTracking();
    EXPECT_TRUE(controller->currentPlacement());
    returned.set_value();
    watchdog.join();

    disk.release();
    settleAll();
    clock.advance(Seconds(0));
    const auto reports = transport->requests("PUT", sessionPath);
    EXPECT_EQ(std::count_if(reports.begin(), reports.end(),
                            [](const URLRequest& report) {
                                return report.body == "{\"thirdPartyUserId\":\"caf\xef\xbf\xbd\"}";
                            }),
              1);
}

} // namespace
} // namespace virlo::test
