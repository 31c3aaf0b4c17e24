#include "Outcome.h"
#include "RawServer.h"
#include "RowName.h"

#include <gtest/gtest.h>

#include <dlfcn.h>
#include <netdb.h>

#include <cstring>
#include <future>
#include <latch>

namespace
{
std::latch resolving(1);
std::latch resolved(1);
} // namespace

/// Replaces the C library's: the look-up of "slow.invalid" waits for `resolved` and then fails.
extern "C" __attribute__((visibility("default"))) int getaddrinfo(const char* node, const char* service,
                                                                  const addrinfo* hints, addrinfo** result)
{
    if (node != nullptr && std::strcmp(node, "slow.invalid") == 0) {
        if (!resolving.try_wait())
            resolving.count_down();
        resolved.wait();
        return EAI_AGAIN;
    }
    static const auto next = reinterpret_cast<decltype(&getaddrinfo)>(::dlsym(RTLD_NEXT, "getaddrinfo"));
    return next(node, service, hints, result);
}

namespace virlo::test
{
namespace
{

using Connection = RawServer::Connection;

struct BrokenResponse {
    const char* name;
    std::string bytes; // then the server closes
    long code;
    long status; // 0 where no head arrives
    std::string data;
};

class BrokenResponseTest : public testing::TestWithParam<BrokenResponse>
{
};

TEST_P(BrokenResponseTest, EndsWithWhatArrived)
{
    RawServer server([](Connection& connection) {
        if (!connection.readHead().empty())
            connection.write(GetParam().bytes);
    });
    const auto result = get(*makeSession(), server.url("/"));
    EXPECT_EQ(result.code(), GetParam().code);
    EXPECT_EQ(result.status(), GetParam().status);
    EXPECT_EQ(result.data, GetParam().data);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, BrokenResponseTest,
    testing::Values(
        BrokenResponse{"Nothing", "", URLSession::failed, 0, ""},
        BrokenResponse{"Garbage", "\x16\x03\x01 what\r\n\r\n", URLSession::failed, 0, ""},
        BrokenResponse{"NoStatusLine", "<html>hello</html>", URLSession::failed, 0, ""},
        BrokenResponse{"HeadCut", "HTTP/1.1 200 OK\r\nContent-Le", URLSession::failed, 0, ""},
        BrokenResponse{"NegativeLength", "HTTP/1.1 200 OK\r\nContent-Length: -5\r\n\r\nhello",
                       URLSession::failed, 0, ""},
        BrokenResponse{"HeadTooLong",
                       "HTTP/1.1 200 OK\r\n" +
                           [] {
                               std::string lines;
                               for (int line = 0; line < 200; ++line)
                                   lines +=
                                       "X-" + std::to_string(line) + ": " + std::string(8000, 'x') + "\r\n";
                               return lines;
                           }() +
                           "\r\n",
                       URLSession::failed, 0, ""},
        BrokenResponse{"BodyCut", "HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\n0123456789",
                       URLSession::failed, 200, "0123456789"},
        BrokenResponse{"ChunkCut",
                       "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n5\r\nhello\r\n5\r\nwo",
                       URLSession::failed, 200, "hellowo"},
        BrokenResponse{"ChunkSizeWrong", "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\nxyz\r\n",
                       URLSession::failed, 200, ""},
        BrokenResponse{"NotCompressedAsSaid",
                       "HTTP/1.1 200 OK\r\nContent-Encoding: gzip\r\nContent-Length: 5\r\n\r\nhello",
                       URLSession::failed, 200, ""},
        BrokenResponse{"EarlyHints",
                       "HTTP/1.1 103 Early\r\nA: b\r\n\r\nHTTP/1.1 404 No\r\nContent-Length: 2\r\n\r\nno", 0,
                       404, "no"},
        BrokenResponse{"NoLengthAtAll", "HTTP/1.0 200 OK\r\n\r\nall", 0, 200, "all"}),
    rowName);

TEST(TransferFailure, BodyAnnouncedTooLongIsRefusedBeforeItArrivesButNotForHead)
{
    RawServer server([](Connection& connection) {
        connection.readHead();
        connection.write("HTTP/1.1 200 OK\r\nContent-Length: 1073741824\r\n\r\n");
        connection.waitForEnd();
    });
    for (const char* method : {"GET", "HEAD"}) {
        const auto result = send(*makeSession(), request(server.url("/"), method));
        EXPECT_EQ(result.code(), method == std::string("GET") ? URLSession::bodyTooLong : 0);
        EXPECT_EQ(result.status(), 200);
        EXPECT_EQ(result.data, "");
    }
}

TEST(TransferFailure, UnannouncedBodyTakesMemoryForItsLengthOnlyAndNeverMoreThanItsLimit)
{
    constexpr std::size_t limit = (5 << 20) + 3;
    for (const std::size_t length : {limit - 100'000, 2 * limit}) {
        RawServer server([length](Connection& connection) {
            connection.readHead();
            connection.write("HTTP/1.1 200 OK\r\n\r\n");
            connection.write(std::string(length, 'x'));
        });
        URLRequest limited = request(server.url("/"));
        limited.maximumBodySize = limit;
        std::promise<std::pair<std::size_t, std::size_t>> sizes;
        OptionalError failure;
        makeSession()
            ->dataTask(limited,
                       [&](const std::string& data, const auto&, const OptionalError& error) {
                           failure = error;
                           sizes.set_value({data.size(), data.capacity()});
                       })
            ->resume();
        const auto [size, capacity] = sizes.get_future().get();
        EXPECT_EQ(failure ? failure->code : 0, length > limit ? URLSession::bodyTooLong : 0);
        EXPECT_LE(capacity, size + 16);
        EXPECT_GE(size, limit - 100'000);
        EXPECT_LE(size, limit);
    }
}

TEST(TransferFailure, TimesOutAfterATimeWithoutAByteButNotWhileBytesArrive)
{
    RawServer silent([](Connection& connection) { connection.waitForEnd(); });
    RawServer slow([](Connection& connection) {
        connection.readHead();
        connection.write("HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\n");
        for (int count = 0; count < 8; ++count) {
            std::this_thread::sleep_for(std::chrono::milliseconds(200));
            connection.write("x");
        }
        connection.waitForEnd();
    });
    for (const RawServer* server : {&silent, &slow}) {
        URLRequest limited = request(server->url("/"));
        limited.timeout = Seconds(0.8);
        const auto start = std::chrono::steady_clock::now();
        const auto result = send(*makeSession(), limited);
        EXPECT_EQ(result.code(), URLSession::timedOut);
        EXPECT_EQ(result.data, server == &silent ? "" : "xxxxxxxx");
        EXPECT_EQ(result.status(), server == &silent ? 0 : 200);
        EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(790));
    }
}

TEST(TransferFailure, WaitingForAConnectionCountsTowardsTheTimeOut)
{
    RawServer silent([](Connection& connection) { connection.waitForEnd(); });
    const auto session = makeSession({}, 1);
    Outcome first;
    Outcome second;
    const auto holder = session->dataTask(request(silent.url("/")), first.completion());
    holder->resume();
    URLRequest brief = request(silent.url("/"));
    brief.timeout = Seconds(0.1);
    session->dataTask(brief, second.completion())->resume();
    EXPECT_EQ(second.wait().code(), URLSession::timedOut);
    EXPECT_FALSE(first.arrived());
    EXPECT_EQ(silent.connections(), 1);
    holder->cancel();
    EXPECT_EQ(first.wait().code(), URLSession::cancelled);
}

TEST(TransferFailure, LookUpThatHangsHoldsUpNobodyElse)
{
    RawServer server([](Connection& connection) {
        while (!connection.readHead().empty())
            connection.write("HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\nok");
    });
    const auto session = makeSession();
    URLRequest lost = request("http://slow.invalid/");
    lost.timeout = Seconds(0.1);
    EXPECT_EQ(send(*session, lost).code(), URLSession::timedOut);
    EXPECT_EQ(get(*session, server.url("/")).data, "ok");
    EXPECT_TRUE(resolving.try_wait()) << "nothing was looked up";
    resolved.count_down();
}

} // namespace
} // namespace virlo::test
