#include "ServerTest.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <sstream>

namespace
{

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

} // namespace

TEST_F(Log, HasALineForEachRequestOnceItIsAnswered)
{
    const auto session = openSession();
    advertisement();
    post("/nowhere", "no \xff JSON", 404);
    server.setFault({.path = "/dropped", .drop = true});
    EXPECT_FALSE(makeClient().Get("/dropped"));
    get("/control/sessions");

    const auto all = lines();
    ASSERT_EQ(all.size(), 4U);
    const auto& line = all[1];
    EXPECT_EQ(line["method"], "GET");
    EXPECT_EQ(line["path"], "/ad/req");
    EXPECT_EQ(line["query"], "app=com.example.game&placement=AppLaunch");
    EXPECT_EQ(line["session"], session);
    EXPECT_TRUE(line["body"].is_null());
    EXPECT_EQ(line["status"], 200);
    EXPECT_GT(line["bytes"], 500);
    EXPECT_THAT(line["time"].get<std::string>(), testing::MatchesRegex("....-..-..T..:..:..\\....Z"));
    EXPECT_EQ(all[0]["body"], JSON::object());
    EXPECT_TRUE(all[0]["session"].is_null());
    EXPECT_EQ(all[2]["body"], "no \xef\xbf\xbd JSON");
    EXPECT_EQ(all[3]["status"], 0);
    EXPECT_EQ(all[3]["bytes"], 0);
}

TEST_F(Log, KeepsWhatEarlierRunsWroteAndCutsLargeBodies)
{
    post("/first", "{}", 404);
    server.stop();
    server.start();
    const auto response = makeClient().Post("/second", std::string(500'000, 'x'), "text/plain");
    ASSERT_TRUE(response);
    const auto all = lines();
    ASSERT_EQ(all.size(), 2U);
    EXPECT_EQ(all[1]["body"].get<std::string>().size(), 65536U);
    ASSERT_EQ(server.requests().size(), 1U);
    EXPECT_EQ(server.requests()[0].body.size(), 500'000U);
}

TEST_F(Log, TellsConnectionsAndHeadersApart)
{
    auto client = makeClient();
    client.Get("/a?x=1%202&x=3", {{"X-Probe", "here"}});
    client.Get("/b");
    makeClient().Get("/c");
    const auto requests = server.requests();
    ASSERT_EQ(requests.size(), 3U);
    EXPECT_EQ(requests[0].connection, requests[1].connection);
    EXPECT_NE(requests[1].connection, requests[2].connection);
    EXPECT_EQ(requests[0].headers.at("x-probe"), "here");
    EXPECT_FALSE(requests[1].headers.contains("x-probe"));
    EXPECT_EQ(requests[0].queryItem("x"), "1 2");
}

TEST(LogFile, ThatCannotBeWrittenStopsTheStart)
{
    const virlo::test::TemporaryFolder folder;
    adserver::AdServer server({.plainHTTP = true, .logFile = folder.path("missing/log.jsonl")});
    EXPECT_THROW(server.start(), std::runtime_error);
    EXPECT_EQ(server.port(), 0);
}
