#include "RawServer.h"
#include "RowName.h"
#include "TransferMeter.h"
#include "VideoDownload.h"

#include <gtest/gtest.h>

#include <future>
#include <numeric>

namespace virlo::test
{

namespace
{

using namespace std::chrono_literals;
using Connection = RawServer::Connection;
using Progress = VideoDownload::Progress;

/// Bytes that tell their position.
std::string clipOf(std::size_t size)
{
    std::string bytes(size, '\0');
    std::iota(bytes.begin(), bytes.end(), '\0');
    for (std::size_t at = 0; at < size; at += 256)
        bytes[at] = static_cast<char>(at / 256);
    return bytes;
}

/// Where the requested range begins; nothing for the whole file.
std::optional<std::size_t> rangeStart(const std::string& head)
{
    constexpr std::string_view name = "Range: bytes=";
    const auto at = head.find(name);
    return at != std::string::npos ? std::optional(std::stoul(head.substr(at + name.size()))) : std::nullopt;
}

/// Responds from `start` on, and breaks off after `count` bytes.
void respond(Connection& connection, const std::string& clip, std::optional<std::size_t> start,
             std::size_t count = std::string::npos)
{
    std::string head = start ? "HTTP/1.1 206 Partial Content\r\nContent-Range: bytes " +
                                   std::to_string(*start) + "-" + std::to_string(clip.size() - 1) + "/" +
                                   std::to_string(clip.size())
                             : "HTTP/1.1 200 OK";
    const std::size_t from = start.value_or(0);
    head += "\r\nContent-Length: " + std::to_string(clip.size() - from) + "\r\n\r\n";
    connection.write(head + clip.substr(from, count));
}

/// A server that sends at most so much at a time.
void respondInParts(Connection& connection, const std::string& clip, std::size_t most)
{
    const auto start = rangeStart(connection.readHead()).value_or(0);
    const std::size_t count = std::min(most, clip.size() - start);
    connection.write("HTTP/1.1 206 Part\r\nContent-Range: bytes " + std::to_string(start) + "-" +
                     std::to_string(start + count - 1) + "/" + std::to_string(clip.size()) +
                     "\r\nContent-Length: " + std::to_string(count) + "\r\n\r\n" + clip.substr(start, count));
}

class Download
{
public:
    explicit Download(const RawServer& server, std::chrono::milliseconds timeout = 5s)
        : meter(std::make_shared<TransferMeter>())
        , clip(*URL::fromString(server.url("/clip")), meter, {.timeout = timeout, .retryPause = 20ms})
    {
    }

    Progress readAll()
    {
        std::string chunk;
        Progress progress{};
        while ((progress = clip.read(chunk)) == Progress::Chunk)
            bytes += chunk;
        return progress;
    }

    std::shared_ptr<TransferMeter> meter;
    VideoDownload clip;
    std::string bytes;
};

TEST(VideoDownload, ResumesWhereAConnectionBroke)
{
    const std::string clip = clipOf(1'000'000);
    std::vector<std::optional<std::size_t>> starts;
    RawServer server([&](Connection& connection) {
        starts.push_back(rangeStart(connection.readHead()));
        respond(connection, clip, starts.back(), 400'000);
    });
    Download download(server);
    EXPECT_EQ(download.readAll(), Progress::End);
    EXPECT_TRUE(download.bytes == clip);
    ASSERT_EQ(starts.size(), 3U);
    EXPECT_EQ(starts[0], std::nullopt);
    EXPECT_EQ(starts[1], 400'000U);
    EXPECT_EQ(starts[2], 800'000U);
    EXPECT_EQ(download.clip.size(), clip.size());
    EXPECT_EQ(download.meter->bytes(), clip.size());
    EXPECT_TRUE(download.meter->isFinished());
}

TEST(VideoDownload, ReadsFromAnyPositionAndKnowsTheWholeSize)
{
    const std::string clip = clipOf(3000);
    RawServer server([&](Connection& connection) {
        const auto start = rangeStart(connection.readHead());
        if (start.value_or(0) < clip.size())
            respond(connection, clip, start);
        else
            connection.write("HTTP/1.1 416 Too Far\r\nContent-Length: 0\r\n\r\n");
    });
    Download download(server);
    download.clip.seek(2000);
    EXPECT_EQ(download.readAll(), Progress::End);
    EXPECT_TRUE(download.bytes == clip.substr(2000));
    EXPECT_EQ(download.clip.size(), 3000U);
    download.bytes.clear();
    download.clip.seek(0);
    EXPECT_EQ(download.readAll(), Progress::End);
    EXPECT_TRUE(download.bytes == clip);
    download.clip.seek(3000);
    EXPECT_EQ(download.readAll(), Progress::End);
}

TEST(VideoDownload, RequestsTheRestWhereAServerSendsLess)
{
    const std::string clip = clipOf(5000);
    RawServer server([&](Connection& connection) { respondInParts(connection, clip, 2000); });
    Download download(server);
    EXPECT_EQ(download.readAll(), Progress::End);
    EXPECT_TRUE(download.bytes == clip);
    EXPECT_EQ(server.connections(), 3);
}

TEST(VideoDownload, HoldsTheServerBackUntilSomebodyReads)
{
    const std::string clip = clipOf(std::size_t{24} << 20);
    std::atomic<std::size_t> written{0};
    RawServer server([&](Connection& connection) {
        connection.readHead();
        connection.write("HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(clip.size()) + "\r\n\r\n");
        for (std::size_t at = 0; at < clip.size(); at += 65'536) {
            if (!connection.write(std::string_view(clip).substr(at, 65'536)))
                return;
            written += 65'536;
        }
    });
    Download download(server, 200ms); // which does not count while the reader is the one that waits
    ASSERT_EQ(download.clip.read(download.bytes), Progress::Chunk);
    for (std::size_t before = 0; before != written;) {
        before = written;
        std::this_thread::sleep_for(300ms);
    }
    EXPECT_LT(written, clip.size() - (std::size_t{8} << 20)) << "nothing holds the server back";
    EXPECT_EQ(download.readAll(), Progress::End);
    EXPECT_TRUE(download.bytes == clip);
    EXPECT_TRUE(download.meter->isThrottled());
    EXPECT_EQ(server.connections(), 1);
}

TEST(VideoDownload, WakesAReaderThatIsInterrupted)
{
    std::promise<void> asked;
    RawServer server([&](Connection& connection) {
        const auto start = rangeStart(connection.readHead());
        if (start) {
            respond(connection, "clip", start);
            return;
        }
        connection.write("HTTP/1.1 200 OK\r\nContent-Length: 4\r\n\r\nc");
        asked.set_value();
        connection.waitForEnd();
    });
    Download download(server);
    auto end = std::async(std::launch::async, [&] { return download.readAll(); });
    asked.get_future().wait();
    EXPECT_EQ(end.wait_for(50ms), std::future_status::timeout);
    download.clip.setInterrupted(true);
    EXPECT_EQ(end.get(), Progress::Interrupted);
    EXPECT_EQ(download.readAll(), Progress::Interrupted);
    download.clip.setInterrupted(false);
    download.clip.seek(1);
    EXPECT_EQ(download.readAll(), Progress::End);
    EXPECT_EQ(download.bytes, "clip");
}

struct RefusalRow {
    const char* name;
    const char* first;  ///< the response to the request for the whole
    const char* second; ///< to one for a part; null: it must not be asked for
    Progress end;
    const char* bytes;
};

class Refusals : public testing::TestWithParam<RefusalRow>
{
};

TEST_P(Refusals, EndTheReading)
{
    RawServer server([](Connection& connection) {
        const bool isPart = rangeStart(connection.readHead()).has_value();
        ASSERT_TRUE(!isPart || GetParam().second != nullptr);
        connection.write(isPart ? GetParam().second : GetParam().first);
    });
    Download download(server);
    EXPECT_EQ(download.readAll(), GetParam().end);
    EXPECT_EQ(download.bytes, GetParam().bytes);
    EXPECT_EQ(download.clip.failure().empty(), GetParam().end == Progress::End);
}

INSTANTIATE_TEST_SUITE_P(
    , Refusals,
    testing::Values(
        RefusalRow{"NotThere", "HTTP/1.1 404 No\r\nContent-Length: 3\r\n\r\nabc", nullptr, Progress::Missing,
                   ""},
        RefusalRow{"NoResponse", "", nullptr, Progress::Failed, ""},
        RefusalRow{"NothingAtAll", "HTTP/1.1 200 OK\r\nContent-Length: 3\r\n\r\n", nullptr, Progress::Failed,
                   ""},
        RefusalRow{"NoParts", "HTTP/1.1 200 OK\r\nAccept-Ranges: none\r\nContent-Length: 3\r\n\r\na", nullptr,
                   Progress::Failed, "a"},
        RefusalRow{"TheWholeForAPart", "HTTP/1.1 200 OK\r\nContent-Length: 3\r\n\r\na",
                   "HTTP/1.1 200 OK\r\nContent-Length: 3\r\n\r\nabc", Progress::Failed, "a"},
        RefusalRow{"AnotherPart", "HTTP/1.1 200 OK\r\nContent-Length: 3\r\n\r\na",
                   "HTTP/1.1 206 Part\r\nContent-Range: bytes 2-2/3\r\nContent-Length: 1\r\n\r\nc",
                   Progress::Failed, "a"},
        RefusalRow{"APartOfNothing", "HTTP/1.1 200 OK\r\nContent-Length: 3\r\n\r\na",
                   "HTTP/1.1 206 Part\r\nContent-Range: bytes 1-2/3\r\nContent-Length: 2\r\n\r\n",
                   Progress::Failed, "a"},
        RefusalRow{"NoLength", "HTTP/1.1 200 OK\r\n\r\nabc", nullptr, Progress::End, "abc"}),
    rowName);

} // namespace

} // namespace virlo::test
