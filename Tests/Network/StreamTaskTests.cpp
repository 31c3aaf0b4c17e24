#include "Outcome.h"
#include "RawServer.h"
#include "RowName.h"

#include <gtest/gtest.h>

namespace virlo::test
{
namespace
{

using Connection = RawServer::Connection;

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
