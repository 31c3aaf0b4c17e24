#include "ServerTest.h"

#include <ctime>
#include <gmock/gmock.h>

using namespace std::chrono_literals;
using testing::ElementsAre;

namespace
{

class Protocol : public ServerTest
{
};

} // namespace

TEST_F(Protocol, KeepsASessionAliveByPingsAndEndsItWithoutThem)
{
    openSession();
    for (int ping = 0; ping < 3; ++ping) {
        advance(9s);
        EXPECT_EQ(put("/app/sess/", R"({"user":{},"connectionSpeed":812.5})")["status"], "SESSION_ACTIVE");
    }
    advance(10'001ms);
    EXPECT_EQ(put("/app/sess/", R"({"user":{}})", 401)["error"], "INVALID_SESSION");
    EXPECT_EQ(get("/ad/req?app=a&placement=AppLaunch", 401)["error"], "INVALID_SESSION");

    const auto fresh = openSession();
    EXPECT_EQ(advertisement()["type"], "engagement");
    server.expireSessions();
    EXPECT_EQ(put("/app/sess/", R"({"user":{}})", 401)["error"], "INVALID_SESSION");
    EXPECT_NE(openSession(), fresh);
}

TEST_F(Protocol, ServesAnAdvertisementAsItsFileSaysWithAbsoluteAddresses)
{
    openSession();
    const auto ad = advertisement();
    EXPECT_EQ(ad["secondsToSkip"], 5);
    EXPECT_FALSE(ad.contains("validFor"));
    std::tm parts{};
    const auto date = ad["timestamp"].get<std::string>();
    EXPECT_STREQ(::strptime(date.c_str(), "%a %b %d %H:%M:%S GMT %Y", &parts), "") << date;
    EXPECT_LT(std::chrono::abs(options().clock() - std::chrono::system_clock::from_time_t(::timegm(&parts))),
              2s);

    const auto txid = ad["txid"].get<std::string>();
    const auto& item = ad["ads"][0];
    EXPECT_EQ(item["backgroundUrl"], server.baseURL() + "/campaigns/image.jpg");
    EXPECT_EQ(item["screenshots"][0], item["backgroundUrl"]);
    EXPECT_EQ(item["clickTracker"], server.baseURL() + "/ad/click/" + txid + "/summit%2F1");
    EXPECT_EQ(item["clickFallback"], "https://store.example/summit");
    EXPECT_EQ(item["currencyAmount"], "50");
    EXPECT_TRUE(item["markupUrl"].is_null());
    EXPECT_EQ(item["actionButton"]["xPosition"], 1200);
    EXPECT_NE(advertisement()["txid"], txid);
}

TEST_F(Protocol, GivesPagesOfMoreItemsUntilTheLast)
{
    openSession();
    const auto first = get(path(advertisement()["moreAdsUrl"]));
    EXPECT_EQ(first["ads"].size(), 2U);
    const auto last = get(path(first["moreAdsUrl"]));
    EXPECT_EQ(last["ads"][0]["cid"], "fourth");
    EXPECT_FALSE(last.contains("moreAdsUrl"));
}

TEST_F(Protocol, GivesARewardOnceSomeTimeAfterTheFirstClick)
{
    openSession();
    const auto item = advertisement()["ads"][0];
    const auto poll = [&] { return get(path(item["pollingUrl"])); };
    const JSON no{{"status", false}};
    advance(6s);
    EXPECT_EQ(poll(), no);
    post(path(item["clickTracker"]), "{}", 204);
    advance(3s);
    put("/app/sess/", "{}");
    post(path(item["clickTracker"]), "{}", 204);
    advance(1999ms);
    EXPECT_EQ(poll(), no);
    advance(1ms);
    EXPECT_EQ(poll(), JSON({{"status", true},
                            {"cid", "summit/1"},
                            {"title", "Summit"},
                            {"currencyAmount", "50"},
                            {"currencyType", "coins"}}));
    EXPECT_EQ(poll(), no);

    const auto other = path(advertisement()["ads"][0]["pollingUrl"]);
    EXPECT_EQ(get(other), no);
    server.grantRewards();
    EXPECT_EQ(get(other)["status"], true);
    EXPECT_EQ(get(other), no);
    EXPECT_EQ(poll(), no);
}

TEST_F(Protocol, ChoosesByPlacementAndRequestedTypeAndTakesTurns)
{
    const auto add = [this](const std::string& name, const std::string& rules, const std::string& type) {
        server.addCampaign(name, R"({"rules":)" + rules + R"(,"advertisement":{"type":")" + type +
                                     R"(","ads":[{"cid":")" + name + R"("}]}})");
    };
    add("grid", R"([{"placement":"*"}])", "discovery");
    add("one", R"([{"placement":"LevelUp"}])", "engagement");
    add("two", R"([{"placement":"LevelUp"}])", "engagement");
    openSession();
    const auto cid = [this](const std::string& placement, const std::string& type = {}) {
        return advertisement(placement, type)["ads"][0]["cid"].get<std::string>();
    };
    EXPECT_EQ(cid("AppClose"), "grid");
    EXPECT_THAT((std::vector{cid("LevelUp"), cid("LevelUp"), cid("LevelUp")}),
                ElementsAre("one", "two", "one"));
    EXPECT_EQ(cid("LevelUp", "discovery"), "grid");
    EXPECT_EQ(cid("Pause", "featured"), "summit/1");
    EXPECT_EQ(get("/ad/req?app=a&placement=LevelUp&type=video", 404)["error"], "NO_AD");
    server.reset();
    openSession();
    EXPECT_EQ(cid("LevelUp"), "one");
}

TEST_F(Protocol, RefusesRequestsThatLackSomething)
{
    openSession();
    get("/nowhere", 404);
    post("/app/inst/", "{}", 400);
    EXPECT_EQ(post("/app/sess/a", "{}", 400)["reason"], "\"state\" must be \"start\"");
    put("/app/sess/", R"({"connectionSpeed":"fast"})", 400);
    get("/ad/req?app=a", 400);
    post("/ad/imp/0123/summit%2F1", "{}", 404);
    get("/store/nothing", 404);
}
