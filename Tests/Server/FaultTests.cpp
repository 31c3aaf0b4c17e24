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
    const std::string file = "/campaigns/picture.jpg";

    [[nodiscard]] httplib::Result ask(const std::string& path) { return makeClient().Get(path); }

    /// The status and bytes noted for the only entry.
    [[nodiscard]] std::pair<int, std::uint64_t> noted() const
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

TEST_F(Faults, ADelayComesBeforeTheRightResponse)
{
    server.setFault({.path = file, .delay = 300ms});
    EXPECT_GE(secondsOf([this] { EXPECT_EQ(ask(file)->body, "0123456789"); }), 0.3);
}

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

TEST_F(Faults, WrongJSONIsASuccessThatDoesNotParse)
{
    server.setFault({.path = "/ad/req", .wrongJSON = true});
    EXPECT_TRUE(get("/ad/req").is_discarded());
}

TEST_F(Faults, ADroppedConnectionHasNoHead)
{
    server.setFault({.path = file, .drop = true, .times = 1});
    EXPECT_FALSE(ask(file));
    EXPECT_EQ(noted(), std::pair(0, std::uint64_t{0}));
    EXPECT_TRUE(ask(file));
}

TEST_F(Faults, ACutBodyIsShorterThanItsHeadSays)
{
    for (const bool madeUp : {false, true}) {
        server.clearRequests();
        server.setFault({.path = file,
                         .body = madeUp ? std::optional<std::string>("abcdefghij") : std::nullopt,
                         .cutBodyAfter = 4});
        std::string received;
        std::string length;
        auto client = makeClient();
        EXPECT_FALSE(client.Get(
            file,
            [&](const httplib::Response& head) {
                length = head.get_header_value("Content-Length");
                return true;
            },
            [&](const char* data, size_t size) {
                received.append(data, size);
                return true;
            }));
        EXPECT_EQ(length, "10");
        EXPECT_EQ(received, madeUp ? "abcd" : "0123");
        EXPECT_EQ(noted().first, 200);
    }
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

TEST_F(Faults, AStallWithoutAnEndLastsUntilTheClientGoesAndMayBeFollowedByACut)
{
    server.setFault({.path = file, .stallBodyAfter = 0});
    auto client = makeClient();
    client.set_read_timeout(300ms);
    EXPECT_FALSE(client.Get(file));
    ASSERT_TRUE(server.waitForRequests("GET", file, 1, 5s));
    EXPECT_EQ(noted().first, 200);

    server.setFault({.path = file, .cutBodyAfter = 6, .stallBodyAfter = 4, .stallFor = 100ms});
    std::string received;
    EXPECT_FALSE(makeClient().Get(file, [&](const char* data, size_t size) {
        received.append(data, size);
        return true;
    }));
    EXPECT_EQ(received, "012345");
}

TEST_F(Faults, AClipComesAsFastAsItIsToldAndEvenly)
{
    folder.write("campaigns/clip.mp4", std::string(150'000, 'v'));
    server.setFault({.path = "/campaigns/*.mp4", .bytesPerSecond = 200'000});
    size_t received = 0;
    size_t atHalfTime = 0;
    const auto begin = std::chrono::steady_clock::now();
    const double seconds = secondsOf([&] {
        auto client = makeClient();
        ASSERT_TRUE(client.Get("/campaigns/clip.mp4", [&](const char*, size_t size) {
            received += size;
            if (std::chrono::steady_clock::now() - begin < 375ms)
                atHalfTime = received;
            return true;
        }));
    });
    EXPECT_EQ(received, 150'000U);
    EXPECT_GE(seconds, 0.7);
    EXPECT_LT(seconds, 2.5);
    EXPECT_GT(atHalfTime, 10'000U);
    EXPECT_LT(atHalfTime, 100'000U);
}

TEST_F(Faults, AHugeBodyIsMadeWhileItIsSent)
{
    for (const bool chunked : {false, true}) {
        const auto size = std::uint64_t{1} << (chunked ? 24U : 30U);
        server.setFault({.path = "/huge", .bodySize = size, .chunked = chunked});
        std::uint64_t received = 0;
        bool isRight = true;
        std::string end;
        auto client = makeClient();
        const auto response = client.Get("/huge", [&](const char* data, size_t count) {
            isRight =
                isRight && (received > 0 || std::string_view(data, count).starts_with("{\"filler\":\"a"));
            received += count;
            end = std::string(data + count - 1, 1);
            return true;
        });
        ASSERT_TRUE(response);
        EXPECT_EQ(response->has_header("Content-Length"), !chunked);
        EXPECT_EQ(received, size);
        EXPECT_TRUE(isRight);
        EXPECT_EQ(end, "}");
    }
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
