#include "AdServer.h"

#include <gmock/gmock.h>
#include <httplib.h>

#include <arpa/inet.h>
#include <array>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

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

    /// What comes back until the server closes, or five seconds have passed.
    [[nodiscard]] std::string roundTrip(const std::string& bytes, bool leave = false) const
    {
        const int client = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        const timeval limit{.tv_sec = 5, .tv_usec = 0};
        ::setsockopt(client, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(server.port());
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        EXPECT_EQ(::connect(client, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
        ::send(client, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        std::string all;
        std::array<char, 4096> buffer{};
        ssize_t count = 0;
        while (!leave && (count = ::recv(client, buffer.data(), buffer.size(), 0)) > 0)
            all.append(buffer.data(), static_cast<size_t>(count));
        ::close(client);
        return count == 0 ? all : all + "<no end>";
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
    EXPECT_THAT(roundTrip("GET /ad/req HTTP/1.1\r\nHost: a\"b/c\r\nConnection: close\r\n\r\n"),
                StartsWith("HTTP/1.1 400"));
    EXPECT_EQ(server.requests().size(), 3U);
}

TEST_F(HostileRequests, ADeleteWithoutALengthIsNotWaitedFor)
{
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_THAT(roundTrip(std::string("DELETE /app/sess/ HTTP/1.1\r\n") + closing + "\r\n"),
                HasSubstr("INVALID_SESSION"));
    EXPECT_LT(std::chrono::steady_clock::now() - begin, 4s);
}

TEST_F(HostileRequests, ClientsThatLeaveInTheMiddleFreeTheirThreads)
{
    for (int client = 0; client < 150; ++client)
        static_cast<void>(
            roundTrip("POST /app/inst/a HTTP/1.1\r\nHost: localhost\r\nContent-Length: 1000\r\n\r\n{", true));
    EXPECT_TRUE(server.waitUntil([](const auto& all) { return all.size() >= 150; }, 20s));
}

TEST_F(HostileRequests, ASecondServerCannotShareThePort)
{
    adserver::AdServer other({.port = server.port(), .plainHTTP = true});
    EXPECT_THROW(other.start(), std::runtime_error);
}
