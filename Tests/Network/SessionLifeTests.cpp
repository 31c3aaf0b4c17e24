#include "NetworkTest.h"
#include "RawServer.h"

#include <algorithm>
#include <atomic>
#include <random>
#include <set>
#include <thread>

namespace virlo::test
{
namespace
{

using namespace std::chrono_literals;

class SessionLifeTest : public NetworkTest
{
protected:
    SessionLifeTest()
    {
        serve("/");
        server.setFault({.path = "/slow", .delay = 20ms, .status = 200, .body = "{}"});
    }

    [[nodiscard]] std::size_t connectionsSeen() const
    {
        std::set<std::uint64_t> connections;
        for (const auto& entry : server.requests())
            connections.insert(entry.connection);
        return connections.size();
    }

    static void start(URLSession& session, const std::string& url, const Outcome& outcome)
    {
        session.dataTask(request(url), outcome.completion())->resume();
    }
};

TEST_F(SessionLifeTest, ThousandRequestsAtOnceShareSixConnections)
{
    std::vector<Outcome> outcomes(1000);
    for (const Outcome& outcome : outcomes)
        start(*session, url("/"), outcome);
    for (const Outcome& outcome : outcomes)
        ASSERT_EQ(outcome.wait().status(), 200);
    EXPECT_LE(connectionsSeen(), 6U);
}

TEST_F(SessionLifeTest, ConnectionsOutliveTheirSession)
{
    for (int round = 0; round < 5; ++round)
        ASSERT_EQ(get(*trusting(), url("/")).status(), 200);
    EXPECT_EQ(connectionsSeen(), 1U);
}

// A server closes idle connections within the TLS stream, where libcurl finds it only once it sends.
TEST_F(SessionLifeTest, RequestSurvivesThatTheServerClosedEveryIdleConnection)
{
    std::vector<Outcome> outcomes(6);
    for (const Outcome& outcome : outcomes)
        start(*session, url("/slow"), outcome);
    for (const Outcome& outcome : outcomes)
        ASSERT_EQ(outcome.wait().status(), 200);
    const std::string late = url("/");
    const auto port = server.port();
    server.stop();
    adserver::AdServer again({.port = port, .stateFolder = folder.path("server")});
    again.setFault({.path = "/", .status = 200, .body = "{}"});
    again.start();
    const auto result = get(*session, late);
    EXPECT_EQ(result.status(), 200) << (result.error ? describe(*result.error) : "");
}

TEST_F(SessionLifeTest, CompletionsRunOneAtATimeAndNeverOnTheCallersStack)
{
    std::mutex callers; // held by every caller: a completion on its stack would find it locked by itself
    std::atomic<int> running{0};
    std::atomic<int> done{0};
    const auto note = [&] {
        EXPECT_EQ(++running, 1);
        {
            const std::lock_guard lock(callers);
        }
        --running;
        ++done;
    };
    std::vector<std::shared_ptr<URLSessionTask>> tasks;
    for (int count = 0; count < 60; ++count)
        tasks.push_back(
            session->dataTask(request(url("/")), [&](const auto&, const auto&, const auto&) { note(); }));
    {
        const std::lock_guard lock(callers);
        for (std::size_t index = 0; index < tasks.size(); ++index) {
            if (index % 3 == 0)
                tasks[index]->cancel(); // never resumed
            tasks[index]->resume();
        }
        session->queue().async(note);
        session->invalidateAndCancel();
        std::this_thread::sleep_for(5ms);
    }
    session->queue().sync([] {});
    EXPECT_TRUE(URLSession::drain(Seconds(5)));
    EXPECT_EQ(done, 61);
}

TEST_F(SessionLifeTest, CancelAtAnyMomentCompletesExactlyOnce)
{
    std::mt19937 random(7);
    std::vector<Outcome> outcomes(300);
    std::vector<std::shared_ptr<URLSessionTask>> tasks;
    for (Outcome& outcome : outcomes)
        tasks.push_back(session->dataTask(request(url("/")), outcome.completion()));
    std::thread canceller([&] {
        for (const auto& task : tasks) {
            std::this_thread::sleep_for(std::chrono::microseconds(random() % 200));
            task->cancel();
        }
    });
    for (const auto& task : tasks)
        task->resume();
    canceller.join();
    const auto cancelled = std::count_if(outcomes.begin(), outcomes.end(), [](const Outcome& outcome) {
        const auto result = outcome.wait();
        EXPECT_TRUE(result.code() == URLSession::cancelled || (result.code() == 0 && result.status() == 200));
        return result.code() != 0;
    });
    EXPECT_GT(cancelled, 0);
}

TEST_F(SessionLifeTest, FinishedOrReleasedSessionLetsRunningTasksEndAndRefusesNewOnes)
{
    const Outcome running;
    const Outcome late;
    start(*session, url("/slow"), running);
    const auto lateTask = session->dataTask(request(url("/")), late.completion());
    session->finishTasksAndInvalidate();
    lateTask->resume();
    session.reset();
    const Outcome released;
    start(*trusting(), url("/slow"), released);
    EXPECT_EQ(late.wait().code(), URLSession::sessionEnded);
    EXPECT_EQ(running.wait().status(), 200);
    EXPECT_EQ(released.wait().status(), 200);
}

TEST_F(SessionLifeTest, InvalidatingCancelsActiveAndWaitingTransfersAndStartsNone)
{
    server.setFault({.path = "/silent", .neverResponds = true});
    const auto two = trusting(2);
    std::vector<Outcome> outcomes(50);
    for (const Outcome& outcome : outcomes)
        start(*two, url("/silent"), outcome);
    EXPECT_TRUE(server.waitForRequests("GET", "/silent", 2, 5s));
    two->invalidateAndCancel();
    for (const Outcome& outcome : outcomes)
        EXPECT_EQ(outcome.wait().code(), URLSession::cancelled);
    EXPECT_EQ(get(*session, url("/")).status(), 200);
    EXPECT_EQ(server.requests().size(), 3U);
}

} // namespace
} // namespace virlo::test
