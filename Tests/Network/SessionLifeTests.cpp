#include "LoopbackServer.h"
#include "Outcome.h"
#include "RawServer.h"

#include <gtest/gtest.h>

#include <atomic>
#include <latch>
#include <random>
#include <set>
#include <thread>

namespace virlo::test
{
namespace
{

class SessionLifeTest : public testing::Test
{
protected:
    SessionLifeTest()
    {
        m_server.routes().Get("/", [this](const httplib::Request& request, httplib::Response& response) {
            {
                const std::lock_guard lock(m_mutex);
                m_clientPorts.insert(request.remote_port);
            }
            response.set_content("{}", "application/json");
        });
        m_server.routes().Get("/slow", [](const auto&, auto& response) {
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
            response.set_content("{}", "application/json");
        });
        m_server.start();
    }

    std::size_t connectionsSeen()
    {
        const std::lock_guard lock(m_mutex);
        return m_clientPorts.size();
    }

    TestAuthority m_authority;
    std::mutex m_mutex;
    std::set<int> m_clientPorts;
    LoopbackServer m_server{&m_authority}; // last: its threads use the others
};

TEST_F(SessionLifeTest, ThousandRequestsAtOnceShareSixConnections)
{
    const auto session = makeSession(m_authority.file());
    std::vector<Outcome> outcomes(1000);
    for (Outcome& outcome : outcomes)
        session->dataTask(request(m_server.url("/")), outcome.completion())->resume();
    for (const Outcome& outcome : outcomes)
        ASSERT_EQ(outcome.wait().status(), 200);
    EXPECT_LE(connectionsSeen(), 6U);
    EXPECT_TRUE(URLSession::drain(Seconds(5)));
}

TEST_F(SessionLifeTest, ConnectionsOutliveTheirSession)
{
    for (int round = 0; round < 5; ++round)
        ASSERT_EQ(get(*makeSession(m_authority.file()), m_server.url("/")).status(), 200);
    EXPECT_EQ(connectionsSeen(), 1U);
}

// A server that closes what idles says so within the TLS stream, where it is met only once a request is sent.
TEST_F(SessionLifeTest, RequestAfterAPauseSurvivesThatTheServerClosedEveryConnection)
{
    LoopbackServer server(&m_authority);
    server.routes().set_keep_alive_timeout(1);
    server.routes().Get("/", [](const auto&, auto& response) {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        response.set_content("{}", "application/json");
    });
    server.start();
    const auto session = makeSession(m_authority.file());
    std::vector<Outcome> outcomes(6);
    for (Outcome& outcome : outcomes)
        session->dataTask(request(server.url("/")), outcome.completion())->resume();
    for (const Outcome& outcome : outcomes)
        ASSERT_EQ(outcome.wait().status(), 200);
    std::this_thread::sleep_for(std::chrono::milliseconds(1500));
    const auto late = get(*session, server.url("/"));
    EXPECT_EQ(late.status(), 200) << (late.error ? describe(*late.error) : "");
}

TEST_F(SessionLifeTest, CompletionsRunOneAtATimeAndInNoCallersStack)
{
    const auto session = makeSession(m_authority.file());
    std::mutex callers; // held by every caller: a completion on its stack would find it locked by itself
    std::atomic<int> running{0};
    std::atomic<int> done{0};
    std::vector<std::shared_ptr<URLSessionTask>> tasks;
    for (int count = 0; count < 60; ++count) {
        tasks.push_back(session->dataTask(request(m_server.url("/")), [&](auto, const auto&, const auto&) {
            EXPECT_EQ(++running, 1);
            {
                const std::lock_guard lock(callers);
            }
            --running;
            ++done;
        }));
    }
    {
        const std::lock_guard lock(callers);
        for (std::size_t index = 0; index < tasks.size(); ++index) {
            if (index % 3 == 0)
                tasks[index]->cancel(); // never resumed
            tasks[index]->resume();
        }
        session->invalidateAndCancel();
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    EXPECT_TRUE(URLSession::drain(Seconds(5)));
    EXPECT_EQ(done, 60);
}

TEST_F(SessionLifeTest, CompletionsThatBlockHoldUpOnlyTheirOwnSessions)
{
    std::latch held(3);
    std::latch free(1);
    std::vector<std::shared_ptr<URLSession>> blocked;
    for (int index = 0; index < 3; ++index) {
        blocked.push_back(makeSession(m_authority.file()));
        blocked.back()
            ->dataTask(request(m_server.url("/")),
                       [&](const auto&, const auto&, const auto&) {
                           held.count_down();
                           free.wait();
                       })
            ->resume();
    }
    held.wait();
    const auto session = makeSession(m_authority.file());
    for (int index = 0; index < 20; ++index) {
        Outcome outcome;
        session->dataTask(request(m_server.url("/")), outcome.completion())->resume();
        ASSERT_EQ(outcome.wait().status(), 200);
    }
    Outcome behind;
    blocked.front()->dataTask(request(m_server.url("/")), behind.completion())->resume();
    EXPECT_FALSE(URLSession::drain(Seconds(0.05)));
    EXPECT_FALSE(behind.arrived());
    free.count_down();
    EXPECT_EQ(behind.wait().status(), 200);
    EXPECT_TRUE(URLSession::drain(Seconds(5)));
}

TEST_F(SessionLifeTest, CancelAtAnyMomentCompletesExactlyOnce)
{
    std::mt19937 random(7);
    const auto session = makeSession(m_authority.file());
    std::vector<Outcome> outcomes(300);
    std::vector<std::shared_ptr<URLSessionTask>> tasks;
    for (Outcome& outcome : outcomes)
        tasks.push_back(session->dataTask(request(m_server.url("/")), outcome.completion()));
    std::thread canceller([&] {
        for (const auto& task : tasks) {
            std::this_thread::sleep_for(std::chrono::microseconds(random() % 200));
            task->cancel();
        }
    });
    for (const auto& task : tasks)
        task->resume();
    canceller.join();
    int cancelled = 0;
    for (const Outcome& outcome : outcomes) {
        const auto result = outcome.wait();
        if (result.code() == 0)
            EXPECT_EQ(result.status(), 200);
        else
            EXPECT_EQ(result.code(), URLSession::cancelled);
        cancelled += result.code() != 0 ? 1 : 0;
    }
    EXPECT_GT(cancelled, 0);
    EXPECT_TRUE(URLSession::drain(Seconds(5)));
}

TEST_F(SessionLifeTest, FinishingLetsRunningTasksEndAndRefusesNewOnes)
{
    auto session = makeSession(m_authority.file());
    Outcome running;
    Outcome late;
    session->dataTask(request(m_server.url("/slow")), running.completion())->resume();
    const auto lateTask = session->dataTask(request(m_server.url("/")), late.completion());
    session->finishTasksAndInvalidate();
    lateTask->resume();
    session.reset();
    EXPECT_EQ(late.wait().code(), URLSession::sessionEnded);
    EXPECT_EQ(running.wait().status(), 200);
}

TEST_F(SessionLifeTest, InvalidatingCancelsWhatRunsAndWhatWaits)
{
    RawServer silent([](RawServer::Connection& connection) { connection.waitForEnd(); });
    const auto session = makeSession({}, 2);
    std::vector<Outcome> outcomes(50);
    for (Outcome& outcome : outcomes)
        session->dataTask(request(silent.url("/")), outcome.completion())->resume();
    session->invalidateAndCancel();
    for (const Outcome& outcome : outcomes)
        EXPECT_EQ(outcome.wait().code(), URLSession::cancelled);
    EXPECT_LE(silent.connections(), 2);
}

TEST_F(SessionLifeTest, ReleasedSessionLetsItsTasksFinish)
{
    Outcome outcome;
    makeSession(m_authority.file())->dataTask(request(m_server.url("/slow")), outcome.completion())->resume();
    EXPECT_EQ(outcome.wait().status(), 200);
}

TEST_F(SessionLifeTest, DrainTellsWhetherExchangesAreLeft)
{
    RawServer silent([](RawServer::Connection& connection) { connection.waitForEnd(); });
    const auto session = makeSession();
    Outcome outcome;
    const auto task = session->dataTask(request(silent.url("/")), outcome.completion());
    EXPECT_TRUE(URLSession::drain(Seconds(5)));
    task->resume();
    EXPECT_FALSE(URLSession::drain(Seconds(0.01)));
    task->cancel();
    EXPECT_TRUE(URLSession::drain(Seconds(5)));
    EXPECT_TRUE(outcome.arrived());
}

} // namespace
} // namespace virlo::test
