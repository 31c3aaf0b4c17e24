#include "CoreTest.h"

namespace virlo::test
{

CoreTest::CoreTest()
    : api(VIRLOAdServerAPI::initWithBaseURLMakingSession(
          *URL::fromString("https://ads.example"), [this](URLSessionConfiguration configuration) {
              return transport->session(std::move(configuration));
          }))
{
    api->setAppIdentifier("host");
}

CoreTest::~CoreTest()
{
    settleAll();
}

Date CoreTest::freshDate()
{
    static Date date{std::chrono::seconds(1456827630)};
    return date += std::chrono::hours(1);
}

FakeResponse CoreTest::sessionResponse(const std::string& more, const std::string& state)
{
    std::string body =
        R"({"sessionId":"s-1","status":")" + state + R"(","timestamp":"2016-03-01T10:20:30.123Z")";
    if (!more.empty())
        body += "," + more;
    return {200, body + "}"};
}

void CoreTest::startSession()
{
    transport->expect("POST", startPath, sessionResponse());
    api->startSession();
    settleAll();
}

} // namespace virlo::test
