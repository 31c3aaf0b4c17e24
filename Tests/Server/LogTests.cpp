#include "ServerTest.h"

#include <gmock/gmock.h>

#include <sstream>

/// The request log, and the control endpoints that show and change what the server holds.
class Log : public ServerTest
{
protected:
    [[nodiscard]] std::vector<JSON> lines() const
    {
        std::vector<JSON> all;
        std::istringstream text(folder.read("requests.jsonl").value_or(""));
        for (std::string line; std::getline(text, line);)
            all.push_back(JSON::parse(line, nullptr, false));
        return all;
    }
};

TEST_F(Log, HasALineForEachRequestButThoseOfTheControlPath)
{
    const auto session = openSession();
    advertisement();
    post("/nowhere", "no \xff JSON", 404);
    server.setFault({.path = "/dropped", .drop = true});
    EXPECT_FALSE(makeClient().Get("/dropped"));
    EXPECT_EQ(get("/control/requests").size(), 4U);
    restart();
    makeClient().Post("/large", std::string(500'000, 'x'), "text/plain");

    const auto all = lines();
    ASSERT_EQ(all.size(), 5U);
    EXPECT_TRUE(all[0]["session"].is_null());
    EXPECT_EQ(all[0]["body"], JSON::object());
    EXPECT_EQ(all[1]["method"], "GET");
    EXPECT_EQ(all[1]["path"], "/ad/req");
    EXPECT_EQ(all[1]["query"], "app=com.example.game&placement=AppLaunch");
    EXPECT_EQ(all[1]["session"], session);
    EXPECT_TRUE(all[1]["body"].is_null());
    EXPECT_EQ(all[1]["status"], 200);
    EXPECT_GT(all[1]["bytes"], 500);
    EXPECT_THAT(all[1]["time"].get<std::string>(), testing::MatchesRegex("....-..-..T..:..:..\\....Z"));
    EXPECT_EQ(all[2]["body"], "no \xef\xbf\xbd JSON");
    EXPECT_EQ(all[3]["status"], 0);
    EXPECT_EQ(all[3]["bytes"], 0);
    EXPECT_EQ(all[4]["body"].get<std::string>().size(), 65536U);
}

TEST_F(Log, TellsConnectionsApart)
{
    auto client = makeClient();
    client.Get("/a?x=1%202", {{"X-Probe", "here"}});
    client.Get("/b");
    makeClient().Get("/c");
    const auto requests = server.requests();
    ASSERT_EQ(requests.size(), 3U);
    EXPECT_EQ(requests[0].connection, requests[1].connection);
    EXPECT_NE(requests[1].connection, requests[2].connection);
    EXPECT_EQ(requests[0].headers.at("x-probe"), "here");
    EXPECT_EQ(requests[0].queryItem("x"), "1 2");
}

TEST_F(Log, ControlSetsFaultsSessionsAndRewards)
{
    post("/control/faults", R"([{"path":"/a","status":500,"times":1,"body":{"error":"X"}},
                                {"path":"/*","method":"PUT","delay":0.01,"status":501}])",
         204);
    EXPECT_EQ(get("/a", 500)["error"], "X");
    get("/a", 404);
    put("/a", "{}", 501);
    remove("/control/faults", 204);
    EXPECT_EQ(post("/control/faults", R"({"path":"/a","delay":"long"})", 400)["reason"],
              "delay: must be a number from 0 to 86400");
    const std::string deep = "{\"user\":" + std::string(200'000, '[') + std::string(200'000, ']') + '}';
    put("/app/sess/", deep, 400);

    openSession();
    put("/control/ping-interval", R"({"seconds":0.5})", 204);
    EXPECT_EQ(put("/app/sess/", "{}")["pingInterval"], 0.5);
    const auto poll = path(advertisement()["ads"][0]["pollingUrl"]);
    post("/control/rewards", "", 204);
    EXPECT_EQ(get(poll)["status"], true);
    remove("/control/sessions", 204);
    put("/app/sess/", "{}", 401);
    post("/control/reset", "", 204);
    openSession();
    EXPECT_EQ(put("/app/sess/", "{}")["pingInterval"], 2.5);
    get(poll, 404);
}

TEST_F(Log, ControlIsRefusedToWebPagesAndForeignNamesAndHasNoFaults)
{
    auto client = makeClient();
    EXPECT_EQ(client.Get("/control/requests", {{"Origin", "https://evil.example"}})->status, 403);
    EXPECT_EQ(client.Get("/control/requests", {{"Host", "evil.example"}})->status, 403);
    EXPECT_EQ(client.Get("/control/requests", {{"Host", "127.0.0.1:1"}})->status, 200);
    server.setFault({.path = "*", .drop = true});
    remove("/control/faults", 204);
}
