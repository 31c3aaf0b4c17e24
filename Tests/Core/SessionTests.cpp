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

    void expectPing(FakeResponse response) { transport->expect("PUT", sessionPath, std::move(response)); }

    [[nodiscard]] std::size_t starts() const { return transport->requests("POST", startPath).size(); }

    [[nodiscard]] std::size_t pings() const { return transport->requests("PUT", sessionPath).size(); }
};

TEST_F(Session, StartSendsDeviceDataAndKeepsTheSession)
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

struct Interval {
    const char* start;
    const char* ping;
    double first;
    double second;
};

class PingInterval : public Session, public testing::WithParamInterface<Interval>
{
};

TEST_P(PingInterval, IsTheServers)
{
    const Interval& row = GetParam();
    transport->expect("POST", startPath, sessionResponse(row.start));
    api->startSession();
    settleAll();
    std::size_t seen = 0;
    for (const double interval : {row.first, row.second}) {
        if (interval > 0) {
            clock.advance(Seconds(interval - 0.5));
            EXPECT_EQ(pings(), seen);
        }
        expectPing(sessionResponse(++seen == 1 ? row.ping : R"("pingInterval":100)"));
        clock.advance(Seconds(interval > 0 ? 0.5 : 0));
        EXPECT_EQ(pings(), seen);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Intervals, PingInterval,
    testing::Values(Interval{R"("pingInterval":30)", R"("pingInterval":12.5)", 30, 12.5},
                    Interval{"", R"("pingInterval":7)", 60, 7}, // only the start has a default
                    Interval{R"("pingInterval":"20")", R"("pingInterval":"5")", 20, 5},
                    Interval{R"("pingInterval":[9])", R"("pingInterval":0.5)", 60, 0.5},
                    Interval{R"("pingInterval":1e300)", R"("pingInterval":4)", 3153600000, 4}));

TEST_F(Session, ShortIntervalsArePacedAfterFiveInARow)
{
    const auto longer = sessionResponse(R"("pingInterval":30)");
    const auto none = sessionResponse("");
    const auto short6 = [&](const FakeResponse& sixth) {
        for (int ping = 0; ping < 5; ++ping)
            expectPing(none);
        expectPing(sixth);
    };
    transport->expect("POST", startPath, longer);
    api->startSession();
    settleAll();
    short6(none);
    clock.advance(Seconds(30));
    EXPECT_EQ(pings(), 6U) << "five intervals of 0";
    clock.advance(Seconds(0.9));
    EXPECT_EQ(pings(), 6U);
    expectPing(longer); // names a longer interval, so that the next five may be short again
    clock.advance(Seconds(0.1));
    EXPECT_EQ(pings(), 7U);
    short6(longer);
    clock.advance(Seconds(30));
    EXPECT_EQ(pings(), 13U);
}

TEST_F(Session, ServerThatRefusesEveryPingAtOnceIsPacedToo)
{
    allowLog(testing::HasSubstr("Cannot send request to maintain session"));
    for (int start = 0; start < 6; ++start) {
        transport->expect("POST", startPath, sessionResponse(R"("pingInterval":0)"));
        if (start < 5)
            expectPing({401, R"({"error":"INVALID_SESSION"})"});
    }
    api->startSession();
    settleAll();
    clock.advance(Seconds(0.9));
    EXPECT_EQ(starts(), 6U);
    EXPECT_EQ(pings(), 5U);
}

TEST_F(Session, FailedStartIsRetriedAfterAMinute)
{
    const FakeResponse failures[] = {
        noResponse(),
        {500, "<html>"},
        {204, ""},
        {200, "[1]"},
        {200, R"({"status":"SESSION_ACTIVE","timestamp":"2016-03-01T10:20:30.123Z"})"},
        {200, R"({"sessionId":"s","timestamp":"2016-03-01T10:20:30.123Z"})"},
        {200, R"({"sessionId":"s","status":"SESSION_ACTIVE","timestamp":"today"})"}};
    expectLog("Cannot initiate session: ");
    transport->expect("POST", startPath, failures[0]);
    api->startSession();
    settleAll();
    for (std::size_t attempt = 1; attempt <= std::size(failures); ++attempt) {
        EXPECT_FALSE(api->serverSession());
        EXPECT_FALSE(api->updatingServerSession());
        clock.advance(Seconds(59.5));
        EXPECT_EQ(starts(), attempt);
        const bool isLast = attempt == std::size(failures);
        if (!isLast)
            expectLog("Cannot initiate session: ");
        transport->expect("POST", startPath, isLast ? sessionResponse() : failures[attempt]);
        clock.advance(Seconds(0.5));
    }
    EXPECT_TRUE(api->serverSession());
}

TEST_F(Session, PingCarriesTheUserTheSessionAndTheAverageOfTheLastTenRequestsIfTheIntervalHasAny)
{
    VIRLOUserProfile::sharedProfile()->setAge(30);
    startSession();
    const auto monitor = VIRLOConnectionQualityMonitor::sharedMonitor();
    // The slow probe is older than the interval, but among the last ten.
    monitor->probeDownload()->registerNumberOfBytesWithDuration(1024 * 1024, 9);
    clock.advance(Seconds(29));
    transport->expect("PUT", sessionPath, sessionResponse(R"("pingInterval":2)"));
    clock.advance(Seconds(1));
    monitor->probeDownload()->registerNumberOfBytesWithDuration(1024 * 1024, 1);
    expectPing(sessionResponse());
    clock.advance(Seconds(2));
    const JSON body = JSON::parse(transport->lastRequest("PUT", sessionPath).body.value());
    EXPECT_NEAR(body.value("connectionSpeed", 0.0), 2 * 8192.0 / 10, 0.1);

    transport->expectHeld("PUT", sessionPath);
    clock.advance(Seconds(30));
    const auto ping = transport->lastRequest("PUT", sessionPath);
    EXPECT_EQ(ping.url.absoluteString(), "https://ads.example/app/sess/");
    EXPECT_EQ(ping.headers.at("VRL-SessionId"), "s-1");
    EXPECT_EQ(JSON::parse(ping.body.value()), JSON({{"user", {{"age", 30}}}}))
        << "nothing measured, no speed";
}

TEST_F(Session, OtherPingFailureDropsTheSessionAndRestartsAfterAMinute)
{
    startSession();
    expectLog("Cannot send request to maintain session which is likely to expire. Error: ");
    expectPing({500, R"({"error":"BUSY"})"});
    clock.advance(Seconds(30));
    EXPECT_FALSE(api->serverSession());
    EXPECT_EQ(starts(), 1U);

    transport->expect("POST", startPath, sessionResponse());
    clock.advance(Seconds(60));
    EXPECT_EQ(starts(), 2U);
    EXPECT_EQ(pings(), 1U);
}

TEST_F(Session, EndIsFinal)
{
    startSession();
    transport->expectHeld("PUT", sessionPath);
    clock.advance(Seconds(30));

    expectLog("Cannot close session. Error: ");
    transport->expect("DELETE", sessionPath, {503, ""});
    api->endSession();
    settleAll();
    EXPECT_FALSE(transport->lastRequest("DELETE", sessionPath).body);
    EXPECT_TRUE(api->serverSession()) << "it stays as it is";

    expectLog("Cannot send request to maintain session");
    transport->release("PUT", sessionPath, {401, R"({"error":"INVALID_SESSION"})"});
    clock.advance(Seconds(600));
    EXPECT_EQ(starts(), 1U);
    EXPECT_EQ(clock.pendingCount(), 0U);
}

TEST_F(Session, TwoStartsLeaveOneChainOfPings)
{
    transport->expect("POST", startPath, sessionResponse());
    transport->expect("POST", startPath, sessionResponse());
    api->startSession();
    api->startSession();
    settleAll();
    expectPing(sessionResponse());
    clock.advance(Seconds(30));
    EXPECT_EQ(pings(), 1U);
    EXPECT_EQ(clock.pendingCount(), 1U);
    api = nullptr;
    EXPECT_EQ(clock.pendingCount(), 0U) << "the timer does not keep the server object";
}

} // namespace
} // namespace virlo::test
