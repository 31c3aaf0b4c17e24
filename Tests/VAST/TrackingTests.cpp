#include "Exception.h"
#include "FakeTransport.h"
#include "LogCapture.h"
#include "Settle.h"
#include "VASTServer.h"
#include "VASTText.h"
#include "VIRLOAdFrameworkLogger.h"
#include "VIRLOVASTTrackingManager.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>

namespace virlo::test
{
namespace
{

class TrackingTest : public testing::Test
{
protected:
    TrackingTest() { VIRLOAdFrameworkLogger::setDebugLevel(3); }

    ~TrackingTest() override
    {
        settleAll();
        VIRLOAdFrameworkLogger::setDebugLevel(2);
    }

    std::shared_ptr<FakeTransport> transport = FakeTransport::make();
    std::shared_ptr<VIRLOVASTTrackingManager> manager = VIRLOVASTTrackingManager::initWithSession(
        transport->session(VIRLOVASTTrackingManager::sessionConfiguration()));
};

TEST_F(TrackingTest, PingsImpressionsInListOrderAndSkipsThoseWithoutAURL)
{
    for (const char* path : {"/c", "/a", "/b"})
        transport->expect("GET", path, {204, ""});
    manager->reportImpressionForAd(
        *recordsOf(vast(inlineAd("1", impression("http://t/c") + impression(" ") + impression("http://t/a") +
                                          impression("http://t/b"))))
             .front());
    settleAll();
    std::string asked;
    for (const URLRequest& request : transport->requests()) {
        asked += request.url.path();
        EXPECT_EQ(request.method, "GET");
        EXPECT_FALSE(request.body);
        EXPECT_EQ(request.headers.at("Accept"), "application/json");
        EXPECT_EQ(request.headers.at("Content-Type"), "application/json");
        EXPECT_THAT(request.headers.at("User-Agent"), testing::StartsWith("VIRLOAdFramework 1.3.1 / linux "));
    }
    EXPECT_EQ(asked, "/c/a/b");
}

TEST_F(TrackingTest, PingsTheURLsOfAnEventAndOfNoOther)
{
    VIRLOAdFrameworkLogger::setDebugLevel(4);
    const auto ads = recordsOf(vast(
        inlineAd("1", creative("AdID='c'", tracking("start", "http://t/1") + tracking("start", "http://t/2") +
                                               tracking("close", "http://t/3")))));
    const auto& creative = *ads.front()->creatives().front();
    transport->expect("GET", "/1");
    transport->expect("GET", "/2");
    manager->reportEventForCreative("start", creative);
    settleAll();
    expectLog("Reporting Event start for Creative: <VIRLOVASTCreative id=c sequence=0>");
    expectLog("Reporting at URL: http://t/1");
    expectLog("Reporting at URL: http://t/2");

    manager->reportEventForCreative("Start", creative);
    expectLog("Reporting Event Start for Creative: <VIRLOVASTCreative id=c sequence=0>");
    manager->reportEventForCreative(
        "start",
        *recordsOf(vast(inlineAd("2", virlo::test::creative("AdID='d'", "")))).front()->creatives().front());
    expectLog("Reporting Event start for Creative: <VIRLOVASTCreative id=d sequence=0>");
}

TEST_F(TrackingTest, LogsPingsThatWereNotDelivered)
{
    for (const auto& [status, delivered] :
         std::map<long, bool>{{101, false}, {200, true}, {204, true}, {399, true}, {404, false}}) {
        const std::string url = "http://t/" + std::to_string(status);
        transport->expect("GET", "/" + std::to_string(status), {status, "ignored"});
        manager->reportAtURL(*URL::fromString(url));
        if (!delivered)
            expectLog(testing::StrEq("Failed to report event at URL " + url +
                                     ", status: " + std::to_string(status) + ", error: (null)"));
    }
    transport->expect("GET", "/dead", noResponse());
    manager->reportAtURL(*URL::fromString("http://t/dead"));
    expectLog(testing::StartsWith(
        "Failed to report event at URL http://t/dead, status: 0, error: Error Domain=com.virlohq.error.url"));
}

TEST_F(TrackingTest, IsASingletonWithAUserAgentOfItsBundle)
{
    EXPECT_THROW(VIRLOVASTTrackingManager::init(), Exception);
    EXPECT_EQ(VIRLOVASTTrackingManager::generateUserAgentFromBundle(
                  Bundle({{"CFBundleName", "Player"}, {"DTPlatformVersion", "6.1"}})),
              "Player (null) / (null) 6.1");
}

using TrackingServerTest = VASTServer;

TEST_F(TrackingServerTest, FinishesItsPingsWhenItIsDestroyed)
{
    using namespace std::chrono_literals;
    VIRLOAdFrameworkLogger::setDebugLevel(3);
    server.setFault({.path = "/ping", .delay = 100ms, .body = "GIF89a"});
    server.setFault({.path = "/long", .bodySize = 10 << 20});
    VIRLOVASTTrackingManager::initSingleton()->reportAtURL(*URL::fromString(url("/ping?x=[CB]")));
    VIRLOVASTTrackingManager::initSingleton()->reportAtURL(*URL::fromString(url("/long")));
    ASSERT_TRUE(URLSession::drain(Seconds(10)));
    ASSERT_EQ(requestCount("/ping"), 1U);
    // Its response is cut off, so the server logs the request only when it gives up.
    EXPECT_TRUE(server.waitForRequests("GET", "/long", 1, 10s));
    for (const auto& request : server.requests()) {
        EXPECT_EQ(request.method, "GET");
        EXPECT_EQ(request.headers.at("accept"), "application/json");
        EXPECT_EQ(request.headers.at("content-type"), "application/json");
    }
    settleAll();
    VIRLOAdFrameworkLogger::setDebugLevel(2);
}

} // namespace
} // namespace virlo::test
