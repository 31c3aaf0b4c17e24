#include "AdServer.h"
#include "RawConnection.h"
#include "TemporaryFolder.h"

#include <gmock/gmock.h>
#include <httplib.h>
#include <nlohmann/json.hpp>

#include <algorithm>

using namespace std::chrono_literals;
using testing::HasSubstr;
using testing::StartsWith;

namespace
{

class HostileRequests : public testing::Test
{
protected:
    HostileRequests() { server.start(); }

    /// The server must still respond to everybody else.
    ~HostileRequests() override
    {
        const auto response = httplib::Client(server.baseURL()).Get("/nowhere");
        EXPECT_TRUE(response && response->status == 404);
    }

    [[nodiscard]] std::string roundTrip(const std::string& request) const
    {
        const RawConnection connection(server.port());
        connection.send(request);
        return connection.receiveAll();
    }

    adserver::AdServer server{{.plainHTTP = true}};
};

constexpr auto closing = "Host: localhost\r\nConnection: close\r\n";

} // namespace

TEST_F(HostileRequests, NoiseIsRefusedAndTheConnectionClosed)
{
    EXPECT_THAT(roundTrip("garbage\r\n\r\n"), StartsWith("HTTP/1.1 400"));
    EXPECT_THAT(roundTrip("GET /" + std::string(20'000, 'a') + " HTTP/1.1\r\n\r\n"),
                StartsWith("HTTP/1.1 414"));
    EXPECT_THAT(roundTrip(std::string("\x16\x03\x01\x02\x00\x01\x00\r\n\r\n", 11)),
                StartsWith("HTTP/1.1 400"));
    EXPECT_EQ(server.requests().size(), 3U);
}

TEST_F(HostileRequests, AHostThatIsNoneIsRefused)
{
    EXPECT_THAT(roundTrip("GET /ad/req HTTP/1.1\r\nHost: a\"b/c\r\nConnection: close\r\n\r\n"),
                StartsWith("HTTP/1.1 400"));
    EXPECT_THAT(roundTrip("GET /ad/req HTTP/1.1\r\nConnection: close\r\n\r\n"), StartsWith("HTTP/1.1 400"));
}

TEST_F(HostileRequests, ABodyTooLargeIsRefusedWhetherItsLengthIsSaidOrNot)
{
    httplib::Client client(server.baseURL());
    const std::string large(2'000'000, 'x');
    const auto said = client.Post("/app/inst/a", large, "application/json");
    ASSERT_TRUE(said);
    EXPECT_EQ(said->status, 413);
    EXPECT_THAT(said->body, HasSubstr("TOO_LARGE"));

    const auto chunked = client.Post(
        "/app/inst/a",
        [&](size_t offset, httplib::DataSink& sink) {
            if (offset < large.size())
                sink.write(large.data(), 100'000);
            else
                sink.done();
            return true;
        },
        "application/json");
    ASSERT_TRUE(chunked);
    EXPECT_EQ(chunked->status, 413);
}

TEST_F(HostileRequests, ADeleteWithoutALengthIsNotWaitedFor)
{
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_THAT(roundTrip(std::string("DELETE /app/sess/ HTTP/1.1\r\n") + closing + "\r\n"),
                HasSubstr("INVALID_SESSION"));
    EXPECT_LT(std::chrono::steady_clock::now() - begin, 4s);
}

TEST_F(HostileRequests, DeepJSONIsRefused)
{
    const std::string deep = "{\"user\":" + std::string(500'000, '[') + std::string(500'000, ']') + '}';
    httplib::Client client(server.baseURL());
    const auto response = client.Put("/app/sess/", deep, "application/json");
    ASSERT_TRUE(response);
    EXPECT_EQ(response->status, 400);
    const auto noted = server.requests();
    ASSERT_EQ(noted.size(), 1U);
    EXPECT_TRUE(noted[0].toJSON()["body"].is_string());
}

TEST_F(HostileRequests, AClientThatLeavesInTheMiddleLeavesNothingBehind)
{
    for (int client = 0; client < 50; ++client) {
        const RawConnection connection(server.port());
        connection.send("POST /app/inst/a HTTP/1.1\r\nHost: localhost\r\nContent-Length: 1000\r\n\r\n{");
    }
    EXPECT_TRUE(server.waitUntil([](const auto& all) { return all.size() >= 50; }, 20s));
    const auto noted = server.requests();
    EXPECT_TRUE(std::all_of(noted.begin(), noted.end(), [](const auto& one) { return one.status != 200; }));
}

TEST_F(HostileRequests, ASecondServerCannotShareThePort)
{
    adserver::AdServer other({.port = server.port(), .plainHTTP = true});
    EXPECT_THROW(other.start(), std::runtime_error);
    EXPECT_EQ(other.port(), 0);
}

TEST_F(HostileRequests, PipelinedRequestsAreAnsweredInOrder)
{
    const std::string first = "GET /first HTTP/1.1\r\nHost: localhost\r\n\r\n";
    server.setFault({.path = "/first", .body = "ONE"});
    server.setFault({.path = "/second", .body = "TWO"});
    const auto all = roundTrip(first + "GET /second HTTP/1.1\r\n" + closing + "\r\n");
    EXPECT_LT(all.find("ONE"), all.find("TWO"));
    EXPECT_NE(all.find("TWO"), std::string::npos);
}
