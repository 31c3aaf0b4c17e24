#include "Outcome.h"
#include "RawServer.h"
#include "RowName.h"
#include "Settle.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace virlo::test
{
namespace
{

using Connection = RawServer::Connection;

TEST(StreamTask, SuspendedStreamHoldsTheServerBackAndLosesNothing)
{
    std::string body;
    for (int line = 0; body.size() < (24 << 20); ++line)
        body += std::to_string(line) + ' ';
    std::atomic<std::size_t> written{0};
    RawServer server([&](Connection& connection) {
        connection.readHead();
        connection.write("HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n");
        for (std::size_t at = 0; at < body.size(); at += 65'536) {
            if (!connection.write(std::string_view(body).substr(at, 65'536)))
                return;
            written += 65'536;
        }
    });

    std::shared_ptr<URLSessionTask> task;
    std::string received;
    std::atomic<int> chunks{0};
    const Outcome outcome;
    URLRequest sent = request(server.url("/"));
    sent.timeout = Seconds(0.2); // does not count while the receiver is the one that waits
    task = makeSession()->streamTask(
        sent,
        [&](std::string_view chunk, const HTTPURLResponse& response) {
            EXPECT_EQ(response.headers.find("content-length")->second, std::to_string(body.size()));
            received += chunk;
            if (chunks < 2)
                task->suspend();
            ++chunks; // last: the test resumes once it has counted
            return true;
        },
        outcome.completion());
    task->resume();

    // Until the server is blocked: what it has written is in buffers.
    for (std::size_t before = 1; before != written || before == 0;) {
        before = written;
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
    }
    EXPECT_LT(written, body.size() - (8 << 20)) << "the server is not held back";
    EXPECT_EQ(chunks, 1);
    EXPECT_FALSE(outcome.arrived());
    task->resume();
    EXPECT_TRUE(settle([&] { return chunks == 2; }));
    task->resume();
    const auto result = outcome.wait();
    EXPECT_FALSE(result.error);
    EXPECT_EQ(result.status(), 200);
    EXPECT_EQ(result.data, "");
    EXPECT_TRUE(received == body);
}

struct StreamRow {
    const char* name;
    const char* response;
    std::string streamed;
    std::string gathered;
    long code;
    std::size_t limit = 1000;
    bool isRefused = false;
};

class StreamResponseTest : public testing::TestWithParam<StreamRow>
{
};

TEST_P(StreamResponseTest, ChunksAndDataAreKeptApart)
{
    RawServer server([](Connection& connection) {
        connection.readHead();
        connection.write(GetParam().response);
    });
    std::string streamed;
    Outcome outcome;
    URLRequest limited = request(server.url("/"));
    limited.maximumBodySize = GetParam().limit;
    makeSession()
        ->streamTask(
            limited,
            [&](std::string_view chunk, const auto&) {
                streamed += chunk;
                return !GetParam().isRefused;
            },
            outcome.completion())
        ->resume();
    const auto result = outcome.wait();
    EXPECT_EQ(streamed, GetParam().streamed);
    EXPECT_EQ(result.data, GetParam().gathered);
    EXPECT_EQ(result.code(), GetParam().code);
    EXPECT_TRUE(result.response);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, StreamResponseTest,
    testing::Values(StreamRow{"Found", "HTTP/1.1 200 OK\r\nContent-Length: 3\r\n\r\nabc", "abc", "", 0},
                    StreamRow{"NotFound", "HTTP/1.1 404 No\r\nContent-Length: 3\r\n\r\nabc", "", "abc", 0},
                    StreamRow{"Cut", "HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\nabc", "abc", "",
                              URLSession::failed},
                    StreamRow{"TooLong", "HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\nabc", "", "",
                              URLSession::bodyTooLong, 5},
                    StreamRow{"Refused", "HTTP/1.1 200 OK\r\nContent-Length: 3\r\n\r\nabc", "abc", "",
                              URLSession::cancelled, 1000, true}),
    rowName);

} // namespace
} // namespace virlo::test
