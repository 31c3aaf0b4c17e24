#include "ServerTest.h"

#include <gmock/gmock.h>

#include <future>

using namespace std::chrono_literals;
using adserver::AdServerFault;

namespace
{

class Faults : public ServerTest
{
protected:
    const std::string file = "/campaigns/image.jpg";

    [[nodiscard]] httplib::Result ask(const std::string& path) { return makeClient().Get(path); }

    /// Status and bytes of the only entry in the log.
    [[nodiscard]] std::pair<int, std::uint64_t> logged() const
    {
        const auto requests = server.requests();
        EXPECT_EQ(requests.size(), 1U);
        return requests.empty() ? std::pair<int, std::uint64_t>()
                                : std::pair(requests[0].status, requests[0].bytes);
    }
};

double secondsOf(const std::function<void()>& work)
{
    const auto begin = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

} // namespace

TEST_F(Faults, ResponsesThatNeverComeHoldUpNobodyElseAndEndWithTheStop)
{
    server.setFault({.path = file, .neverResponds = true});
    std::vector<std::future<bool>> waiting;
    for (int client = 0; client < 20; ++client)
        waiting.push_back(std::async(std::launch::async, [this] { return static_cast<bool>(ask(file)); }));
    ASSERT_TRUE(server.waitForRequests("GET", file, waiting.size(), 20s));
    EXPECT_EQ(server.requests()[0].status, 0);
    EXPECT_EQ(ask("/store/second")->status, 200);
    EXPECT_EQ(waiting[0].wait_for(0s), std::future_status::timeout);
    EXPECT_LT(secondsOf([this] { server.stop(); }), 4.0);
    for (auto& client : waiting)
        EXPECT_FALSE(client.get());
    server.start();
    EXPECT_TRUE(server.requests().empty());
}

TEST_F(Faults, ACannedResponseReplacesTheRightOneAndChangesNothing)
{
    openSession();
    const auto item = advertisement()["ads"][0];
    server.setFault({.path = "/ad/click/*", .method = "POST", .status = 503, .body = "<html>", .times = 1});
    EXPECT_TRUE(post(path(item["clickTracker"]), "{}", 503).is_discarded());
    advance(6s);
    EXPECT_EQ(get(path(item["pollingUrl"]))["status"], false);
    post(path(item["clickTracker"]), "{}", 204);

    server.setFault(
        {.path = "/moved", .status = 302, .headers = {{"Location", "/here"}, {"Content-Type", "text/x"}}});
    EXPECT_EQ(ask("/moved")->get_header_value("Location"), "/here");
}

TEST_F(Faults, ADroppedConnectionHasNoHead)
{
    server.setFault({.path = file, .drop = true, .times = 1});
    EXPECT_FALSE(ask(file));
    EXPECT_EQ(logged(), std::pair(0, std::uint64_t{0}));
    EXPECT_TRUE(ask(file));
}

TEST_F(Faults, ACutBodyIsShorterThanItsHeadSays)
{
    server.setFault({.path = file, .cutBodyAfter = 4});
    std::string received;
    auto client = makeClient();
    EXPECT_FALSE(client.Get(
        file, [&](const httplib::Response& head) { return head.get_header_value("Content-Length") == "10"; },
        [&](const char* data, size_t size) {
            received.append(data, size);
            return true;
        }));
    EXPECT_EQ(received, "0123");
    EXPECT_EQ(logged().first, 200);
}

TEST_F(Faults, SlowBytesTakeTheirTime)
{
    server.setFault({.path = file, .body = std::string(300, 'x'), .bytesPerSecond = 1000});
    std::string body;
    EXPECT_GE(secondsOf([&] { body = ask(file)->body; }), 0.3);
    EXPECT_EQ(body.size(), 300U);
    server.setFault({.path = file, .bytesPerSecond = 1});
    auto waiting = std::async(std::launch::async, [this] { return ask(file); });
    EXPECT_EQ(waiting.wait_for(200ms), std::future_status::timeout);
    EXPECT_LT(secondsOf([this] { server.stop(); }), 4.0);
}

TEST_F(Faults, ABodyStallsAtItsByteAndGoesOn)
{
    for (const bool chunked : {false, true}) {
        server.setFault({.path = file, .chunked = chunked, .stallBodyAfter = 3, .stallFor = 400ms});
        const auto begin = std::chrono::steady_clock::now();
        std::string beforeTheStall;
        std::string received;
        auto client = makeClient();
        ASSERT_TRUE(client.Get(file, {{"Range", "bytes=1-"}}, [&](const char* data, size_t size) {
            received.append(data, size);
            if (std::chrono::steady_clock::now() - begin < 300ms)
                beforeTheStall = received;
            return true;
        }));
        EXPECT_GE(std::chrono::steady_clock::now() - begin, 400ms);
        EXPECT_EQ(beforeTheStall, "123");
        EXPECT_EQ(received, "123456789");
    }
    server.setFault({.path = file, .stallBodyAfter = 10, .stallFor = 10s});
    EXPECT_LT(secondsOf([this] { EXPECT_EQ(ask(file)->body, "0123456789"); }), 5.0);
}

TEST_F(Faults, TheLastSetComesFirstAndCountsDown)
{
    folder.write("campaigns/faulty.json", R"({"rules":[{"placement":"x"}],"advertisement":{},
        "faults":[{"path":"/a?c","status":501}]})");
    server.stop();
    server.start();
    auto client = makeClient();
    server.setFault({.path = "/a*", .status = 500, .times = 2});
    server.setFault({.path = "/abc", .status = 502, .times = 1});
    const auto status = [&] { return client.Get("/abc")->status; };
    EXPECT_THAT((std::vector{status(), status(), status(), status()}),
                testing::ElementsAre(502, 500, 500, 501));
    server.clearFaults();
    EXPECT_EQ(status(), 404);
    server.reset();
    EXPECT_EQ(status(), 501);
}
