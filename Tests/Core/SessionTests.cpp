#include "CoreTest.h"
#include "VIRLOConnectionQualityMonitor.h"
#include "VIRLOSession.h"
#include "VIRLOUserProfile.h"

namespace virlo::test
{
namespace
{

class Session : public CoreTest
{
protected:
    Session() { VIRLOUserProfile::sharedProfile()->reset(); }

    void expectPing(Answer answer) { transport->expect("PUT", sessionPath, std::move(answer)); }

    [[nodiscard]] std::size_t starts() const { return transport->requests("POST", startPath).size(); }

    [[nodiscard]] std::size_t pings() const { return transport->requests("PUT", sessionPath).size(); }
};

TEST_F(Session, StartSendsTheDeviceAndKeepsWhatTheServerAnswers)
{
    startSession();

    const auto request = transport->lastRequest("POST", startPath);
    EXPECT_EQ(request.url.absoluteString(), "https://ads.example/app/sess/host?state=start");
    EXPECT_FALSE(request.headers.contains("VRL-SessionId"));
    const JSON body = JSON::parse(request.body.value());
    EXPECT_EQ(body["sdkVersion"], "1.3.1");
    EXPECT_TRUE(body.contains("systemName"));
    EXPECT_FALSE(body.contains("identifierForAds")) << "none is sent unless the host holds one";

    ASSERT_TRUE(api->serverSession());
    EXPECT_EQ(api->serverSession()->identifier(), "s-1");
    EXPECT_FALSE(api->updatingServerSession());
}

TEST_F(Session, IsUpdatingFromTheCallUntilTheAnswerIsHandled)
{
    transport->expectHeld("POST", startPath);
    api->startSession();
    EXPECT_TRUE(api->updatingServerSession());
    settleAll();
    EXPECT_TRUE(api->updatingServerSession());
    transport->release("POST", startPath, sessionAnswer());
    settleAll();
    EXPECT_FALSE(api->updatingServerSession());
}

struct Interval {
    const char* name;
    const char* start;
    const char* ping;
    double first;
    double second;
};

class PingInterval : public Session, public testing::WithParamInterface<Interval>
{
};

TEST_P(PingInterval, PingsComeWhenTheServerSaid)
{
    const Interval& row = GetParam();
    transport->expect("POST", startPath, sessionAnswer(row.start));
    api->startSession();
    settleAll();

    if (row.first > 0) {
        clock.advance(Seconds(row.first - 0.5));
        EXPECT_EQ(pings(), 0U);
    }
    expectPing(sessionAnswer(row.ping));
    transport->expectHeld("PUT", sessionPath);
    clock.advance(Seconds(row.first > 0 ? 0.5 : 0));
    if (row.second > 0) {
        EXPECT_EQ(pings(), 1U);
        clock.advance(Seconds(row.second - 0.5));
        EXPECT_EQ(pings(), 1U);
        clock.advance(Seconds(0.5));
    }
    EXPECT_EQ(pings(), 2U);
}

INSTANTIATE_TEST_SUITE_P(
    Intervals, PingInterval,
    testing::Values(Interval{"AsSent", R"("pingInterval":30)", R"("pingInterval":12.5)", 30, 12.5},
                    Interval{"FirstWithoutIs60", "", R"("pingInterval":7)", 60, 7},
                    Interval{"LaterWithoutIs0", R"("pingInterval":30)", "", 30, 0},
                    Interval{"TextIsRead", R"("pingInterval":"20")", R"("pingInterval":"5")", 20, 5},
                    Interval{"OtherShapes", R"("pingInterval":[9])", R"("pingInterval":{})", 60, 0},
                    Interval{"NegativeIs0", R"("pingInterval":-5)", R"("pingInterval":-1e300)", 0, 0},
                    Interval{"HugeIsADay", R"("pingInterval":1e300)", R"("pingInterval":4)", 86400, 4}),
    rowName());

struct FailedStart {
    const char* name;
    Answer answer;
};

class StartFailure : public Session, public testing::WithParamInterface<FailedStart>
{
};

TEST_P(StartFailure, IsTriedAgainAfterAMinute)
{
    expectLog("Cannot initiate session: ");
    transport->expect("POST", startPath, GetParam().answer);
    api->startSession();
    settleAll();
    EXPECT_FALSE(api->serverSession());
    EXPECT_FALSE(api->updatingServerSession());

    clock.advance(Seconds(59.5));
    EXPECT_EQ(starts(), 1U);
    transport->expect("POST", startPath, sessionAnswer());
    clock.advance(Seconds(0.5));
    EXPECT_EQ(starts(), 2U);
    EXPECT_TRUE(api->serverSession());
}

INSTANTIATE_TEST_SUITE_P(
    Answers, StartFailure,
    testing::Values(
        FailedStart{"None", noAnswer()}, FailedStart{"Refusal", {500, "<html>", true, {}}},
        FailedStart{"NoBody", {204, "", true, {}}}, FailedStart{"NoObject", {200, "[1]", true, {}}},
        FailedStart{"NoIdentifier",
                    {200, R"({"status":"SESSION_ACTIVE","timestamp":"2016-03-01T10:20:30.123Z"})", true, {}}},
        FailedStart{"NoState",
                    {200, R"({"sessionId":"s","timestamp":"2016-03-01T10:20:30.123Z"})", true, {}}},
        FailedStart{"DateOfAnotherForm",
                    {200, R"({"sessionId":"s","status":"SESSION_ACTIVE","timestamp":"today"})", true, {}}}),
    rowName());

TEST_F(Session, PingCarriesTheUserAndTheSession)
{
    VIRLOUserProfile::sharedProfile()->setAge(30);
    startSession();
    expectPing(sessionAnswer());
    clock.advance(Seconds(30));

    const auto ping = transport->lastRequest("PUT", sessionPath);
    EXPECT_EQ(ping.url.absoluteString(), "https://ads.example/app/sess/");
    EXPECT_EQ(ping.headers.at("VRL-SessionId"), "s-1");
    EXPECT_EQ(JSON::parse(ping.body.value()), JSON({{"user", {{"age", 30}}}}))
        << "nothing measured, no speed";
}

TEST_F(Session, PingTellsTheAverageOfTheLastTenRequestsWhereTheIntervalHasOne)
{
    startSession();
    const auto monitor = VIRLOConnectionQualityMonitor::sharedMonitor();
    // The slow one lies before the interval and still counts among the last ten.
    monitor->probeDownload()->registerNumberOfBytesWithDuration(1024 * 1024, 9);
    clock.advance(Seconds(29));
    transport->expect("PUT", sessionPath, sessionAnswer(R"("pingInterval":2)"));
    clock.advance(Seconds(1));
    monitor->probeDownload()->registerNumberOfBytesWithDuration(1024 * 1024, 1);
    expectPing(sessionAnswer());
    clock.advance(Seconds(2));
    const JSON body = JSON::parse(transport->lastRequest("PUT", sessionPath).body.value());
    EXPECT_NEAR(body.value("connectionSpeed", 0.0), 2 * 8192.0 / 10, 0.1);

    transport->expectHeld("PUT", sessionPath);
    clock.advance(Seconds(30));
    EXPECT_FALSE(
        JSON::parse(transport->lastRequest("PUT", sessionPath).body.value()).contains("connectionSpeed"));
}

TEST_F(Session, InvalidSessionIsReopenedAtOnce)
{
    startSession();
    expectLog("Cannot send request to maintain session which is likely to expire. Error: ");
    expectPing({401, R"({"error":"INVALID_SESSION"})", true, {}});
    transport->expect("POST", startPath, sessionAnswer());
    clock.advance(Seconds(30));
    EXPECT_EQ(starts(), 2U);
    EXPECT_TRUE(api->serverSession());
}

TEST_F(Session, AnyOtherPingFailureDropsTheSessionAndStartsAnewAfterAMinute)
{
    startSession();
    expectLog("Cannot send request to maintain session");
    expectPing({500, R"({"error":"BUSY"})", true, {}});
    clock.advance(Seconds(30));
    EXPECT_FALSE(api->serverSession());
    EXPECT_EQ(starts(), 1U);

    transport->expect("POST", startPath, sessionAnswer());
    clock.advance(Seconds(60));
    EXPECT_EQ(starts(), 2U);
    EXPECT_EQ(pings(), 1U);
}

TEST_F(Session, PingAnsweredAfterTheSessionWasClearedIsHarmless)
{
    startSession();
    transport->expectHeld("PUT", sessionPath);
    clock.advance(Seconds(30));
    api->setServerSession(nullptr);
    transport->expect("POST", startPath, sessionAnswer());
    transport->release("PUT", sessionPath, sessionAnswer());
    clock.advance(Seconds(0));
    EXPECT_EQ(starts(), 2U) << "with no session the delay is 0 and the ping becomes a start";
}

TEST_F(Session, EndTellsTheServerAndNothingRevivesIt)
{
    startSession();
    transport->expectHeld("PUT", sessionPath);
    clock.advance(Seconds(30));

    expectLog("Cannot close session. Error: ");
    transport->expect("DELETE", sessionPath, {503, "", true, {}});
    api->endSession();
    settleAll();
    EXPECT_FALSE(transport->lastRequest("DELETE", sessionPath).body);
    EXPECT_TRUE(api->serverSession()) << "it stays as it is";

    expectLog("Cannot send request to maintain session");
    transport->release("PUT", sessionPath, {401, R"({"error":"INVALID_SESSION"})", true, {}});
    clock.advance(Seconds(600));
    EXPECT_EQ(starts(), 1U);
    EXPECT_EQ(clock.pendingCount(), 0U);
}

TEST_F(Session, TwoStartsLeaveOneChainOfPings)
{
    transport->expect("POST", startPath, sessionAnswer());
    transport->expect("POST", startPath, sessionAnswer());
    api->startSession();
    api->startSession();
    settleAll();
    expectPing(sessionAnswer());
    clock.advance(Seconds(30));
    EXPECT_EQ(pings(), 1U);
    EXPECT_EQ(clock.pendingCount(), 1U);
}

TEST_F(Session, TimersDoNotKeepTheServerObject)
{
    startSession();
    const std::weak_ptr<VIRLOAdServerAPI> weak = api;
    api = nullptr;
    EXPECT_TRUE(weak.expired());
    EXPECT_EQ(clock.pendingCount(), 0U);
}

} // namespace
} // namespace virlo::test
