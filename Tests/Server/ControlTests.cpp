#include "ServerTest.h"

using namespace std::chrono_literals;

namespace
{

class Control : public ServerTest
{
protected:
    [[nodiscard]] std::string wrongFault(const std::string& text)
    {
        return post("/control/faults", text, 400).value("reason", "");
    }
};

} // namespace

TEST_F(Control, SetsFaultsAndTakesThemAway)
{
    post("/control/faults", R"([{"path":"/a","status":500,"times":1,"body":{"error":"X"}},
                                {"path":"/*","method":"PUT","delay":0.01,"status":501}])",
         204);
    EXPECT_EQ(get("/a", 500)["error"], "X");
    get("/a", 404);
    put("/a", "{}", 501);
    remove("/control/faults", 204);
    put("/a", "{}", 404);
}

TEST_F(Control, NamesWhatIsWrongWithAFault)
{
    EXPECT_EQ(wrongFault(R"({"status":500})"), "path: is missing");
    EXPECT_EQ(wrongFault(R"({"path":"/a","status":99})"), "status: must be a whole number from 200 to 599");
    EXPECT_EQ(wrongFault(R"({"path":"/a","delay":"long"})"), "delay: must be a number from 0 to 86400");
    EXPECT_EQ(wrongFault(R"({"path":"/a","wait":1})"), "wait: is no key known here");
    EXPECT_EQ(wrongFault(R"({"path":"/a","stallFor":2})"), "stallFor: needs \"stallBodyAfter\" beside it");
    EXPECT_EQ(wrongFault(R"([7])"), "must be an object");
    EXPECT_NE(wrongFault("{"), "");
}

TEST_F(Control, ShowsRequestsButNotItsOwn)
{
    openSession();
    get("/control/requests");
    const auto all = get("/control/requests");
    ASSERT_EQ(all.size(), 1U);
    EXPECT_EQ(all[0]["path"], "/app/sess/com.example.game");
    EXPECT_EQ(all[0]["headers"]["content-type"], "application/json");
    remove("/control/requests", 204);
    EXPECT_TRUE(get("/control/requests").empty());
}

TEST_F(Control, DrivesSessionsRewardsAndTheirReset)
{
    openSession();
    put("/control/ping-interval", R"({"seconds":0.5})", 204);
    put("/control/ping-interval", R"({"seconds":-1})", 400);
    EXPECT_EQ(put("/app/sess/", "{}")["pingInterval"], 0.5);
    const auto poll = path(advertisement()["ads"][0]["pollingUrl"]);
    post("/control/rewards", "", 204);
    EXPECT_EQ(get(poll)["status"], true);
    remove("/control/sessions", 204);
    EXPECT_EQ(put("/app/sess/", "{}", 401)["error"], "INVALID_SESSION");
    post("/control/reset", "", 204);
    openSession();
    EXPECT_EQ(put("/app/sess/", "{}")["pingInterval"], 2.5);
    get(poll, 404);
}

TEST_F(Control, IsRefusedToWebPagesAndForeignNames)
{
    auto client = makeClient();
    EXPECT_EQ(client.Get("/control/requests", {{"Origin", "https://evil.example"}})->status, 403);
    EXPECT_EQ(client.Get("/control/requests", {{"Host", "evil.example"}})->status, 403);
    EXPECT_EQ(client.Get("/control/requests", {{"Host", "127.0.0.1:1"}})->status, 200);
    get("/control/nothing", 404);
    post("/control/requests", "", 405);
    server.setFault({.path = "*", .drop = true});
    remove("/control/faults", 204);
}
