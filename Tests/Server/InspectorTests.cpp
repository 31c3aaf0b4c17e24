#include "ServerTest.h"

#include <gmock/gmock.h>

#include <future>
#include <thread>

using namespace std::chrono_literals;
using testing::HasSubstr;

namespace
{

/// What the inspector page lives on: complete records, its own port, the event stream, replays.
class Inspector : public ServerTest
{
protected:
    [[nodiscard]] httplib::Client page() const { return httplib::Client(server.pageURL()); }

    [[nodiscard]] JSON read(const std::string& path) const
    {
        const auto response = page().Get(path);
        return response ? JSON::parse(response->body, nullptr, false) : JSON();
    }
};

} // namespace

TEST_F(Inspector, ARecordTellsTransactionFaultAndResponse)
{
    folder.write("campaigns/vast/one.xml", "<VAST><![CDATA[{origin}/campaigns/a%20clip.mp4]]></VAST>");
    folder.write("campaigns/a clip.mp4", "binary");
    openSession();
    const auto first = advertisement()["txid"].get<std::string>();
    makeClient().Get("/campaigns/image.jpg");
    const auto second = advertisement()["txid"].get<std::string>();
    makeClient().Get("/campaigns/image.jpg");
    makeClient().Get("/vast/one?tx=" + first);
    server.setFault({.path = "*.mp4", .delay = 60ms, .cutBodyAfter = 2, .times = 1});
    makeClient().Get("/campaigns/a%20clip.mp4");
    EXPECT_EQ(read("/control/faults"), JSON::array());

    const auto all = read("/records/all");
    ASSERT_EQ(all.size(), 7U);
    const std::vector<JSON> expected{nullptr, first, first, second, second, first, first};
    for (std::size_t i = 0; i < all.size(); ++i)
        EXPECT_EQ(all[i]["transaction"], expected[i]) << i;
    EXPECT_THAT(all[1]["responseBody"].get<std::string>(), HasSubstr("\"txid\":\"" + first));
    EXPECT_EQ(all[5]["responseHeaders"]["content-type"], "application/xml");
    EXPECT_EQ(all[6]["fault"]["cutBodyAfter"], 2);
    EXPECT_TRUE(all[6]["responseBody"].is_null());
    EXPECT_GE(server.requests().back().end - server.requests().back().time, 60ms);
    const auto number = all[6]["id"].get<int>();
    EXPECT_EQ(read("/records/" + std::to_string(number)), all[6]);
    EXPECT_EQ(page().Get("/records/" + std::to_string(number + 1))->status, 404);
}

TEST_F(Inspector, ThePagesPortTakesItsOwnHostAndOriginOnly)
{
    const auto port = server.pageURL().substr(server.pageURL().rfind(':'));

    struct Row {
        const char* method;
        std::string host, origin;
        int status;
    };

    for (const auto& [method, host, origin, status] :
         std::vector<Row>{{"GET", "127.0.0.1" + port, "", 200},
                          {"GET", "127.0.0.1" + port, server.pageURL(), 200},
                          {"GET", "127.0.0.1" + port, "http://127.0.0.1:1", 403},
                          {"GET", "evil.example" + port, "", 403},
                          {"GET", "localhost" + port, "", 403},
                          {"POST", "127.0.0.1" + port, server.pageURL(), 204},
                          {"POST", "127.0.0.1" + port, "", 403},
                          {"POST", "127.0.0.1" + port, "null", 403},
                          {"POST", "127.0.0.1" + port, "https://evil.example", 403}}) {
        httplib::Request request;
        request.method = method;
        request.path = "/control/faults";
        request.headers = {{"Host", host}, {"Content-Type", "text/plain"}};
        if (!origin.empty())
            request.headers.emplace("Origin", origin);
        if (request.method == "POST")
            request.body = R"({"path":"/never"})";
        EXPECT_EQ(page().send(request)->status, status) << method << ' ' << host << ' ' << origin;
    }
    EXPECT_EQ(read("/control/faults").size(), 1U);
    EXPECT_TRUE(server.requests().empty());
}

TEST_F(Inspector, EventsTellBeginAndEndAndTheStreamEndsWithTheServer)
{
    server.setFault({.path = "/slow", .neverResponds = true});
    std::mutex mutex;
    std::string events;
    const auto heard = [&](const std::string& text) {
        for (const auto end = std::chrono::steady_clock::now() + 10s; std::chrono::steady_clock::now() < end;
             std::this_thread::sleep_for(2ms)) {
            const std::lock_guard lock(mutex);
            if (events.find(text) != events.npos)
                return true;
        }
        return false;
    };
    auto stream = std::async(std::launch::async, [&] {
        page().Get("/events", [&](const char* data, std::size_t size) {
            const std::lock_guard lock(mutex);
            events.append(data, size);
            return true;
        });
    });
    ASSERT_TRUE(heard("hello"));
    auto waiting = std::async(std::launch::async, [&] { return makeClient().Get("/slow").error(); });
    EXPECT_TRUE(heard("event: began\ndata: {\"id\":1,"));
    makeClient().Get("/fast");
    EXPECT_TRUE(heard("event: ended\ndata: {\"id\":2,"));
    const auto begin = std::chrono::steady_clock::now();
    server.stop();
    EXPECT_LT(std::chrono::steady_clock::now() - begin, 5s);
    EXPECT_EQ(stream.wait_for(5s), std::future_status::ready);
    EXPECT_NE(waiting.get(), httplib::Error::Success);
}

TEST_F(Inspector, ServesTheWantedCampaignNextAndOnce)
{
    server.addCampaign("wanted.json",
                       R"({"rules":[{"placement":"Never"}],"advertisement":{"type":"video","ads":[]}})");
    openSession();
    post("/control/next", R"({"placement":"AppLaunch","campaign":"none.json"})", 400);
    post("/control/next", R"({"placement":"AppLaunch","campaign":"wanted.json"})", 204);
    EXPECT_EQ(advertisement("Pause", "featured")["type"], "engagement");
    EXPECT_EQ(advertisement()["type"], "video");
    EXPECT_EQ(advertisement()["type"], "engagement");
}

TEST_F(Inspector, AReplayServesTheLoggedResponsesUnderItsOwnAddress)
{
    openSession();
    const auto first = advertisement();
    const auto second = advertisement();
    makeClient().Get("/campaigns/image.jpg");
    server.stop();
    adserver::AdServer replay(
        {.stateFolder = folder.path("state"), .replayFile = folder.path("requests.jsonl")});
    replay.start();
    httplib::Client client(replay.baseURL());
    client.set_ca_cert_path(replay.authorityFile().string());
    const auto ask = [&] {
        const auto response = client.Get("/ad/req?placement=AppLaunch&app=com.example.game");
        return response ? JSON::parse(response->body) : JSON();
    };
    EXPECT_EQ(ask()["txid"], first["txid"]);
    const auto served = ask();
    EXPECT_EQ(served["txid"], second["txid"]);
    EXPECT_EQ(served["ads"][0]["backgroundUrl"], replay.baseURL() + "/campaigns/image.jpg");
    EXPECT_EQ(ask()["txid"], second["txid"]);
    EXPECT_EQ(replay.requests().back().transaction, second["txid"]);
    EXPECT_EQ(client.Get("/campaigns/image.jpg")->status, 404);
}
