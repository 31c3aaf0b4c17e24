#include "AdServer.h"
#include "CoreTest.h"
#include "NotificationCenter.h"
#include "URLSession.h"
#include "VIRLOAdController.h"
#include "VIRLOAdItem.h"
#include "VIRLOAdvertisement.h"
#include "VIRLOAppRequestStore.h"
#include "VIRLOConstans.h"
#include "VIRLOSession.h"
#include "VIRLOTrackingManager.h"

#include <algorithm>
#include <mutex>
#include <thread>

using namespace std::chrono_literals;

namespace virlo::test
{
namespace
{

constexpr const char* campaign = R"({
  "about": "One item, one page more, a reward at once",
  "rules": [{"placement": "*"}],
  "advertisement": {"validFor": 600, "type": "engagement", "secondsToSkip": 5, "moreAdsUrl": "/ad/more/{txid}/1",
    "ads": [{"cid": "one", "type": "appstore", "title": "One", "impressionUrl": "/ad/imp/{txid}/{cid}",
      "clickUrl": "/ad/store/{txid}/{cid}", "clickTracker": "/ad/click/{txid}/{cid}",
      "pollingUrl": "/ad/poll/{txid}/{cid}", "currencyAmount": 50, "currencyType": "coins"}]},
  "morePages": [{"ads": [{"cid": "two"}, {"cid": "three"}]}],
  "rewards": {"one": {"secondsAfterClick": 0}}
})";

/// The core over TLS against a real ad server in this process, in real time.
class RealServer : public testing::Test
{
protected:
    RealServer()
    {
        server.addCampaign("one.json", campaign);
        server.start();
        URLSessionConfiguration::setDefaultTrustedAuthoritiesFile(server.authorityFile().string());
        api = VIRLOAdServerAPI::initWithBaseURL(*URL::fromString(server.baseURL()));
        controller = VIRLOAdController::controllerWithCollaborators(
            api, VIRLOTrackingManager::initWithDirectoryPath(folder.path("tracking")), store);
    }

    ~RealServer() override
    {
        controller = nullptr;
        api = nullptr;
        EXPECT_TRUE(URLSession::drain(Seconds(10)));
        settleAll();
        URLSessionConfiguration::setDefaultTrustedAuthoritiesFile({});
    }

    void start()
    {
        controller->startWithAppIdentifier("tv.host");
        ASSERT_TRUE(settle([this] { return api->serverSession() != nullptr; }));
    }

    [[nodiscard]] std::shared_ptr<VIRLOAdvertisement> advertisement()
    {
        std::shared_ptr<VIRLOAdvertisement> received;
        std::atomic<bool> done{false};
        api->retrieveAdvertisementForPlacementOfTypeWithCompletion(
            "LevelUp", VIRLOAdvertisementType::Any, [&](auto found, const OptionalError& error) {
                EXPECT_FALSE(error) << describe(*error);
                received = std::move(found);
                done = true;
            });
        EXPECT_TRUE(settle([&] { return done.load(); }));
        return received;
    }

    [[nodiscard]] std::size_t count(const std::string& method, const std::string& path) const
    {
        const auto all = server.requests();
        return static_cast<std::size_t>(std::ranges::count_if(
            all, [&](const auto& each) { return each.method == method && each.path == path; }));
    }

    TemporaryFolder folder;
    TestNetwork network;
    adserver::AdServer server{{.stateFolder = folder.path("server"),
                               .campaignsFolder = {},
                               .logFile = {},
                               .pingInterval = 60s,
                               .sessionLifetime = 180s}};
    std::shared_ptr<VIRLOAppRequestStore> store =
        VIRLOAppRequestStore::storeWithDirectoryPath(folder.path("store"));
    std::shared_ptr<VIRLOAdServerAPI> api;
    std::shared_ptr<VIRLOAdController> controller;
};

TEST_F(RealServer, SeesAWholeVisitEachExchangeOnceInItsSession)
{
    start();
    ASSERT_TRUE(server.waitForRequests("PUT", "/app/sess/", 1, 10s));
    const auto ad = advertisement();
    ASSERT_TRUE(ad && ad->numberOfItems() == 1);
    const auto item = ad->items().front();

    std::atomic<int> completed{0};
    const auto success = [&](const OptionalError& error) {
        EXPECT_FALSE(error) << describe(*error);
        ++completed;
    };
    api->registerImpressionForItemWithCompletion(*item, success);
    ASSERT_TRUE(settle([&] { return completed == 1; }));
    api->registerClickForItemWithCompletion(*item, success);
    ASSERT_TRUE(settle([&] { return completed == 2; }));
    api->initiateAppDownloadByURLWithCompletion(
        item->clickURL(), [&](const std::optional<URL>& url, const OptionalError&) {
            EXPECT_EQ(url, URL::fromString(server.baseURL() + "/store/one"));
            ++completed;
        });
    ASSERT_TRUE(settle([&] { return completed == 3; }));
    adserver::AdServerFault slow; // so that the calls share one request
    slow.path = "/ad/more/*";
    slow.delay = 300ms;
    server.setFault(slow);
    for (int caller = 0; caller < 5; ++caller)
        api->retrieveAdditionalItemsForAdWithCompletion(
            ad, [&](std::size_t begin, std::size_t added, const OptionalError& error) {
                EXPECT_FALSE(error) << describe(*error);
                EXPECT_EQ(begin, 1U);
                EXPECT_EQ(added, 2U);
                ++completed;
            });
    ASSERT_TRUE(settle([&] { return completed == 8; }));
    EXPECT_EQ(ad->numberOfItems(), 3U);
    EXPECT_FALSE(ad->moreItemsURL());

    store->addItem(item->activationCheckURL().value());
    JSON reward;
    const auto observation = NotificationCenter::defaultCenter().addObserver(
        VIRLOAdFrameworkNotificationDidGetCurrency, [&](const Notification& notification) {
            reward = notification.userInfo;
            ++completed;
        });
    controller->checkAvailableCurrency();
    ASSERT_TRUE(settle([&] { return completed == 9; }));
    EXPECT_EQ(reward["currencyAmount"], 50);
    EXPECT_TRUE(settle([this] { return store->items().empty(); }));

    controller->applicationWillTerminate();
    ASSERT_TRUE(server.waitForRequests("DELETE", "/app/sess/", 1, 10s));

    const std::string session = api->serverSession()->identifier();
    const std::string transaction = ad->txId().value();
    std::vector<std::string> seen;
    for (const auto& request : server.requests()) {
        seen.push_back(request.method + " " + request.path);
        const bool isBefore = request.method == "POST" && request.path.starts_with("/app/");
        EXPECT_EQ(request.session, isBefore ? "" : session) << seen.back();
    }
    EXPECT_THAT(seen, testing::ElementsAre(
                          "POST /app/inst/tv.host", "POST /app/sess/tv.host", "PUT /app/sess/", "GET /ad/req",
                          "POST /ad/imp/" + transaction + "/one", "POST /ad/click/" + transaction + "/one",
                          "GET /ad/store/" + transaction + "/one", "GET /store/one",
                          "GET /ad/more/" + transaction + "/1", "GET /ad/poll/" + transaction + "/one",
                          "DELETE /app/sess/"));
}

TEST_F(RealServer, EachOfManyCompletionsRunsOnce)
{
    constexpr int threads = 8;
    constexpr int requestsPerThread = 10;
    std::atomic<int> completed{0};
    std::vector<std::thread> callers;
    for (int thread = 0; thread < threads; ++thread)
        callers.emplace_back([&] {
            for (int request = 0; request < requestsPerThread; ++request)
                controller->adViewControllerForPlacementWithCompletion(
                    "LevelUp",
                    [&](std::shared_ptr<VIRLOAdViewController> screen, const OptionalError& error) {
                        EXPECT_TRUE(!screen && !error);
                        ++completed;
                    });
        });
    start(); // in the midst of them: most are parked
    for (std::thread& caller : callers)
        caller.join();
    EXPECT_TRUE(settle([&] { return completed == threads * requestsPerThread; }));
    settleAll();
    EXPECT_EQ(completed, threads * requestsPerThread);
    EXPECT_EQ(count("GET", "/ad/req"), std::size_t{threads * requestsPerThread});
}

} // namespace
} // namespace virlo::test
