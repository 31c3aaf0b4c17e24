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

TEST_F(Faults, ABodyStallsAtItsByteAndGoesOn)
{
    for (const bool chunked : {false, true}) {
        server.setFault({.path = file, .chunked = chunked, .stallBodyAfter = 3, .stallFor = 400ms});
        auto client = makeClient();
        client.Get("/nowhere"); // a handshake on a busy machine may take longer than the stall
        const auto begin = std::chrono::steady_clock::now();
        std::string beforeTheStall;
        std::string received;
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
