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

template <typename Member, typename Value>
adserver::AdServerFault with(Member member, Value value, const char* path = "/ad/req")
{
    adserver::AdServerFault fault;
    fault.path = path;
    fault.*member = value;
    return fault;
}

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

    std::atomic<int> answered{0};
    const auto success = [&](const OptionalError& error) {
        EXPECT_FALSE(error) << describe(*error);
        ++answered;
    };
    api->registerImpressionForItemWithCompletion(*item, success);
    ASSERT_TRUE(settle([&] { return answered == 1; }));
    api->registerClickForItemWithCompletion(*item, success);
    ASSERT_TRUE(settle([&] { return answered == 2; }));
    api->initiateAppDownloadByURLWithCompletion(
        item->clickURL(), [&](const std::optional<URL>& url, const OptionalError&) {
            EXPECT_EQ(url, URL::fromString(server.baseURL() + "/store/one"));
            ++answered;
        });
    ASSERT_TRUE(settle([&] { return answered == 3; }));
    server.setFault(
        with(&adserver::AdServerFault::delay, 300ms, "/ad/more/*")); // so that they share one request
    for (int caller = 0; caller < 5; ++caller)
        api->retrieveAdditionalItemsForAdWithCompletion(
            ad, [&](std::size_t begin, std::size_t added, const OptionalError& error) {
                EXPECT_FALSE(error) << describe(*error);
                EXPECT_EQ(begin, 1U);
                EXPECT_EQ(added, 2U);
                ++answered;
            });
    ASSERT_TRUE(settle([&] { return answered == 8; }));
    EXPECT_EQ(ad->numberOfItems(), 3U);
    EXPECT_FALSE(ad->moreItemsURL());

    store->addItem(item->activationCheckURL().value());
    JSON reward;
    const auto observation = NotificationCenter::defaultCenter().addObserver(
        VIRLOAdFrameworkNotificationDidGetCurrency, [&](const Notification& notification) {
            reward = notification.userInfo;
            ++answered;
        });
    controller->checkAvailableCurrency();
    ASSERT_TRUE(settle([&] { return answered == 9; }));
    EXPECT_EQ(reward["currencyAmount"], 50);
    EXPECT_TRUE(settle([this] { return store->items().empty(); }));

    controller->applicationWillTerminate();
    ASSERT_TRUE(server.waitForRequests("DELETE", "/app/sess/", 1, 10s));

    const std::string session = api->serverSession()->identifier();
    const std::string transaction = ad->txId().value();
    std::vector<std::string> seen;
    for (const auto& exchange : server.requests()) {
        seen.push_back(exchange.method + " " + exchange.path);
        const bool isBefore = exchange.method == "POST" && exchange.path.starts_with("/app/");
        EXPECT_EQ(exchange.session, isBefore ? "" : session) << seen.back();
    }
    EXPECT_THAT(seen, testing::ElementsAre(
                          "POST /app/inst/tv.host", "POST /app/sess/tv.host", "PUT /app/sess/", "GET /ad/req",
                          "POST /ad/imp/" + transaction + "/one", "POST /ad/click/" + transaction + "/one",
                          "GET /ad/store/" + transaction + "/one", "GET /store/one",
                          "GET /ad/more/" + transaction + "/1", "GET /ad/poll/" + transaction + "/one",
                          "DELETE /app/sess/"));
}

TEST_F(RealServer, IsPingedAtItsIntervalAndAnInvalidSessionIsReplaced)
{
    server.setPingInterval(30ms);
    start();
    const std::string first = api->serverSession()->identifier();
    ASSERT_TRUE(settle([this] { return count("PUT", "/app/sess/") >= 4; }));
    expectLog("Cannot send request to maintain session which is likely to expire. Error: ");
    server.expireSessions();
    ASSERT_TRUE(settle([&] {
        const auto session = api->serverSession();
        return session && session->identifier() != first;
    }));
    EXPECT_TRUE(advertisement());
    controller->applicationWillTerminate();
    ASSERT_TRUE(server.waitForRequests("DELETE", "/app/sess/", 1, 10s));
    settleAll();
}

TEST_F(RealServer, ManyCallersAreEachAnsweredOnce)
{
    constexpr int threads = 8;
    constexpr int asks = 10;
    std::atomic<int> answered{0};
    std::vector<std::thread> callers;
    for (int thread = 0; thread < threads; ++thread)
        callers.emplace_back([&] {
            for (int ask = 0; ask < asks; ++ask)
                controller->adViewControllerForPlacementWithCompletion(
                    "LevelUp",
                    [&](std::shared_ptr<VIRLOAdViewController> screen, const OptionalError& error) {
                        EXPECT_TRUE(!screen && !error);
                        ++answered;
                    });
        });
    start(); // in the midst of them: most are parked
    for (std::thread& caller : callers)
        caller.join();
    EXPECT_TRUE(settle([&] { return answered == threads * asks; }));
    settleAll();
    EXPECT_EQ(answered, threads * asks);
    EXPECT_EQ(count("GET", "/ad/req"), std::size_t{threads * asks});
}

struct Fault {
    const char* name;
    adserver::AdServerFault fault;
    const char* domain; ///< null: an answer and no error
    long code;
};

adserver::AdServerFault status(int code, std::optional<std::string> body)
{
    adserver::AdServerFault fault;
    fault.status = code;
    fault.body = std::move(body);
    return fault;
}

adserver::AdServerFault gibibyte(bool chunked)
{
    adserver::AdServerFault fault;
    fault.bodySize = std::uint64_t{1} << 30;
    fault.chunked = chunked;
    return fault;
}

class FaultyServer : public RealServer, public testing::WithParamInterface<Fault>
{
};

TEST_P(FaultyServer, GivesTheErrorOfItsKindAndTheNextAskIsServed)
{
    start();
    adserver::AdServerFault fault = GetParam().fault;
    fault.path = "/ad/req";
    server.setFault(fault);
    OptionalError received;
    std::atomic<bool> done{false};
    controller->adViewControllerOfTypeWithCompletion(
        0, [&](std::shared_ptr<VIRLOAdViewController>, const OptionalError& error) {
            received = error;
            done = true;
        });
    ASSERT_TRUE(settle([&] { return done.load(); }, Seconds(30)));
    ASSERT_EQ(received.has_value(), GetParam().domain != nullptr);
    if (received) {
        EXPECT_EQ(received->domain, GetParam().domain);
        EXPECT_EQ(received->code, GetParam().code);
    }
    server.clearFaults();
    EXPECT_TRUE(advertisement());
}

constexpr const char* httpDomain = VIRLOAdServerAPI::httpErrorDomain;
constexpr const char* unexpectedDomain = VIRLOAdServerAPI::unexpectedResponseErrorDomain;
using AdFault = adserver::AdServerFault;

INSTANTIATE_TEST_SUITE_P(
    Faults, FaultyServer,
    testing::Values(Fault{"Refusal", status(503, R"({"error":"BUSY"})"), httpDomain, 503},
                    Fault{"RefusalWithPage", status(404, "<html>"), httpDomain, 404},
                    Fault{"NoContent", status(204, ""), nullptr, 0},
                    Fault{"NoPayload", status(200, ""), VIRLOAdServerAPI::noPayloadErrorDomain, 0},
                    Fault{"CutJSON", status(200, R"({"txid":"cut)"), JSONSerialization::errorDomain, 0},
                    Fault{"CutBody", with(&AdFault::cutBodyAfter, 20), JSONSerialization::errorDomain, 0},
                    Fault{"GibibyteAnnounced", gibibyte(false), VIRLOAdServerAPI::noPayloadErrorDomain, 0},
                    Fault{"GibibyteUnannounced", gibibyte(true), JSONSerialization::errorDomain, 0},
                    Fault{"Dropped", with(&AdFault::drop, true), unexpectedDomain, 0},
                    Fault{"Slow", with(&AdFault::delay, 200ms), nullptr, 0}),
    rowName());

} // namespace
} // namespace virlo::test
