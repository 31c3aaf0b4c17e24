#include "GlobalQueue.h"
#include "MainLoop.h"
#include "NotificationCenter.h"
#include "Outcome.h"
#include "RawServer.h"
#include "SystemLog.h"
#include "Timer.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace virlo::test
{
namespace
{

/// Keeps the queues, the timers and the log busy after `main`, too.
void startEndlessWork()
{
    setSystemLogSink([](std::string_view) {});
    static auto* const queue = new SerialQueue("endless");
    static auto* const work = new std::function<void()>;
    *work = [] {
        queue->sync([] {});
        queue->async([] { systemLog("still running"); });
        NotificationCenter::defaultCenter().post("still running");
        MainLoop::shared().post([] {});
        GlobalQueue::background().after(Seconds(0.0001), *work);
    };
    for (int index = 0; index < 20; ++index)
        GlobalQueue::standard().async(*work);
    static const auto timer = Timer::repeating(Seconds(0.0005), [] {});
    static const auto observation =
        NotificationCenter::defaultCenter().addObserver("still running", [](const auto&) {});
}

/// Keeps a request active for ever: each completion sends the next.
void requestForever(const std::shared_ptr<URLSession>& session, const std::string& url)
{
    session
        ->dataTask(request(url),
                   [session, url](const auto&, const auto&, const auto&) { requestForever(session, url); })
        ->resume();
}

struct RequestsAtExit {
    std::shared_ptr<URLSession> session;
    std::string url;

    ~RequestsAtExit() { requestForever(session, url); }
};

[[noreturn]] void exitWhileEverythingRuns(int milliseconds)
{
    static RawServer server([](RawServer::Connection& connection) {
        while (!connection.readHead().empty())
            connection.write("HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\n{}");
    });
    static const RequestsAtExit atExit{makeSession(), server.url("/")};
    for (int count = 0; count < 12; ++count)
        requestForever(atExit.session, atExit.url);
    startEndlessWork();
    MainLoop::shared().runUntil([] { return false; }, Seconds(milliseconds / 1000.0));
    std::exit(0);
}

/// Each exits in a process of its own.
class ProcessExitDeathTest : public testing::TestWithParam<int>
{
protected:
    void SetUp() override { testing::FLAGS_gtest_death_test_style = "threadsafe"; }
};

TEST_P(ProcessExitDeathTest, AtAnyMomentIsCleanWhileEverythingRuns)
{
    EXPECT_EXIT(exitWhileEverythingRuns(GetParam()), testing::ExitedWithCode(0), "");
}

INSTANTIATE_TEST_SUITE_P(Milliseconds, ProcessExitDeathTest, testing::Values(0, 1, 3, 10, 50));

} // namespace
} // namespace virlo::test
