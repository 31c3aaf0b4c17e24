#include "CoreTest.h"
#include "VIRLOAdItem.h"
#include "VIRLOAdvertisement.h"

#include <mutex>
#include <tuple>

namespace virlo::test
{
namespace
{

class Endpoints : public CoreTest
{
protected:
    Endpoints()
    {
        item = VIRLOAdItem::initWithDictionary({{"impressionUrl", "https://ads.example/imp"},
                                                {"clickTracker", "https://ads.example/click"},
                                                {"clickUrl", "https://ads.example/form"}});
    }

    [[nodiscard]] VIRLOAdServerAPI::ErrorCompletion collectError()
    {
        return [this](const OptionalError& error) {
            const std::lock_guard lock(mutex);
            errors.push_back(error);
        };
    }

    [[nodiscard]] VIRLOAdServerAPI::MoreItemsCompletion collectMore(int caller)
    {
        return [this, caller](std::size_t start, std::size_t count, const OptionalError& error) {
            const std::lock_guard lock(mutex);
            more.emplace_back(caller, start, count, error.has_value());
        };
    }

    std::mutex mutex;
    std::shared_ptr<VIRLOAdItem> item;
    std::vector<OptionalError> errors;
    std::vector<std::tuple<int, std::size_t, std::size_t, bool>> more;
};

TEST_F(Endpoints, AdRequestHasAppPlacementAndType)
{
    startSession();
    const std::initializer_list<std::pair<VIRLOAdvertisementType, std::string>> rows = {
        {VIRLOAdvertisementType::Any, ""},
        {VIRLOAdvertisementType::DiscoveryAlternative, "&type=discovery"},
        {VIRLOAdvertisementType::Engagement, "&type=engagement"},
        {VIRLOAdvertisementType{99}, "&type="}};
    for (const auto& [type, query] : rows) {
        transport->expect("GET", "/ad/req", {200, R"({"txid":"t"})"});
        std::optional<std::string> txId;
        api->retrieveAdvertisementForPlacementOfTypeWithCompletion(
            "Level Up&more", type, [&](auto advertisement, const OptionalError&) {
                txId = advertisement ? advertisement->txId() : std::nullopt;
            });
        settleAll();
        EXPECT_EQ(transport->lastRequest("GET", "/ad/req").url.absoluteString(),
                  "https://ads.example/ad/req?app=host&placement=Level%20Up%26more" + query);
        EXPECT_EQ(txId, "t");
    }
}

TEST_F(Endpoints, AppIdentifierIsOneSegmentOfThePath)
{
    const std::initializer_list<std::pair<const char*, const char*>> rows = {
        {"tv.host-1", "/app/inst/tv.host-1"}, {"../../x", "/app/inst/..%2F..%2Fx"},
        {"..", "/app/inst/%2E%2E"},           {"a?b=c#d", "/app/inst/a%3Fb%3Dc%23d"},
        {"\xff\n%", "/app/inst/%FF%0A%25"},   {"", "/app/inst/"}};
    for (const auto& [identifier, path] : rows) {
        api->setAppIdentifier(identifier);
        transport->expect("POST", path);
        api->registerAppWithCompletion(collectError());
        settleAll();
        EXPECT_TRUE(JSON::parse(transport->lastRequest("POST", path).body.value()).contains("sdkVersion"));
    }
    EXPECT_EQ(errors, std::vector<OptionalError>(rows.size()));
}

TEST_F(Endpoints, ReportsGoToTheItemsURLs)
{
    for (const char* path : {"/imp", "/click", "/click", "/form"})
        transport->expect("POST", path);
    api->registerImpressionForItemWithCompletion(*item, collectError());
    api->registerClickForItemWithCompletion(*item, collectError());
    settleAll();
    EXPECT_EQ(transport->lastRequest("POST", "/imp").body, "{}");
    EXPECT_EQ(transport->lastRequest("POST", "/click").body, "{}");

    api->registerClickForItemWithDataWithCompletion(*item, {{"a", 1}}, collectError());
    api->submitDataForItemWithCompletion({{"b", 2}}, *item, {});
    settleAll();
    EXPECT_EQ(transport->lastRequest("POST", "/click").body, R"({"a":1})");
    EXPECT_EQ(transport->lastRequest("POST", "/form").body, R"({"b":2})");
    EXPECT_EQ(errors, std::vector<OptionalError>(3));
}

TEST_F(Endpoints, PlacementAndUserWaitForTheSession)
{
    api->reportCurrentPlacement("LevelUp");
    settleAll();
    EXPECT_TRUE(transport->requests().empty());

    transport->expect("PUT", sessionPath);
    startSession();
    auto request = transport->lastRequest("PUT", sessionPath);
    EXPECT_EQ(request.body, R"({"currentPlacement":"LevelUp"})");
    EXPECT_EQ(request.headers.at("VRL-SessionId"), "s-1");

    transport->expect("PUT", sessionPath, {409, R"({"error":"TAKEN"})"});
    api->registerUsernameForVirtualCurrencyWithCompletion("me", collectError());
    settleAll();
    EXPECT_EQ(transport->lastRequest("PUT", sessionPath).body, R"({"thirdPartyUserId":"me"})");
    ASSERT_EQ(errors.size(), 1U);
    EXPECT_EQ(errors[0]->userInfo["error"], "TAKEN");
}

TEST_F(Endpoints, DownloadGivesTheFinalURLEvenWithAnError)
{
    transport->expect("GET", "/go", {200, "<html>", "https://store.example/app"});
    int calls = 0;
    api->initiateAppDownloadByURLWithCompletion(
        URL::fromString("https://ads.example/go"),
        [&](const std::optional<URL>& url, const OptionalError& error) {
            ++calls;
            EXPECT_EQ(url, URL::fromString("https://store.example/app"));
            EXPECT_TRUE(error) << "a page is no JSON";
        });
    settleAll();
    api->initiateAppDownloadByURLWithCompletion(
        std::nullopt, [&](const std::optional<URL>& url, const OptionalError& error) {
            ++calls;
            EXPECT_FALSE(url);
            EXPECT_TRUE(error);
        });
    settleAll();
    EXPECT_EQ(calls, 2);
}

class MoreItems : public Endpoints
{
protected:
    static std::shared_ptr<VIRLOAdvertisement> advertisement(const char* extra = R"("txid":"t",)")
    {
        return VIRLOAdvertisement::initWithDictionary(JSON::parse(
            std::string("{") + extra + R"("moreAdsUrl":"https://ads.example/more","ads":[{"cid":"1"}]})"));
    }
};

TEST_F(MoreItems, SimultaneousCallsShareOneRequest)
{
    const auto ad = advertisement();
    transport->expectHeld("GET", "/more");
    for (int caller = 0; caller < 3; ++caller)
        api->retrieveAdditionalItemsForAdWithCompletion(ad, collectMore(caller));
    settleAll();
    transport->release("GET", "/more", {200, R"({"ads":[{"cid":"2"},"no item",{"cid":"3"}]})"});
    settleAll();
    EXPECT_THAT(more, testing::ElementsAre(std::tuple(0, 1U, 3U, false), std::tuple(1, 1U, 3U, false),
                                           std::tuple(2, 1U, 3U, false)));
    EXPECT_EQ(ad->numberOfItems(), 3U);
    EXPECT_FALSE(ad->moreItemsURL());
    EXPECT_TRUE(api->completionHandlersForAdvertisementUpdate(*ad).empty());
}

TEST_F(MoreItems, FailureChangesNothingAndACallFromACompletionRequestsTheNextPage)
{
    const auto ad = advertisement();
    transport->expect("GET", "/more", noResponse());
    api->retrieveAdditionalItemsForAdWithCompletion(ad, collectMore(0));
    settleAll();
    EXPECT_TRUE(ad->moreItemsURL());
    transport->expect("GET", "/more",
                      {200, R"({"moreAdsUrl":"https://ads.example/next","ads":[{"cid":"2"}]})"});
    transport->expect("GET", "/next", {200, R"({"ads":[{"cid":"3"},{"cid":"4"}]})"});
    api->retrieveAdditionalItemsForAdWithCompletion(ad, [&](std::size_t, std::size_t, const OptionalError&) {
        api->retrieveAdditionalItemsForAdWithCompletion(ad, collectMore(1));
    });
    settleAll();
    EXPECT_THAT(more, testing::ElementsAre(std::tuple(0, 0U, 0U, true), std::tuple(1, 2U, 2U, false)));
}

} // namespace
} // namespace virlo::test
