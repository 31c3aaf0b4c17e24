#include "Bundle.h"
#include "CoreTest.h"
#include "JSONSerialization.h"
#include "NotificationCenter.h"
#include "RowName.h"
#include "VIRLOReachability.h"

#include <mutex>
#include <thread>

namespace virlo::test
{
namespace
{

struct Outcome {
    std::optional<JSON> object;
    OptionalError error;
    VIRLOAdServerAPI::Response response;
};

class Request : public CoreTest
{
protected:
    [[nodiscard]] VIRLOAdServerAPI::RequestCompletion collect()
    {
        return [this](const std::optional<JSON>& object, const OptionalError& error,
                      const VIRLOAdServerAPI::Response& response) {
            const std::lock_guard lock(mutex);
            outcomes.push_back({object, error, response});
        };
    }

    /// The outcome of a GET with this response.
    [[nodiscard]] Outcome get(const FakeResponse& response)
    {
        transport->expect("GET", "/x", response);
        api->sessionGETtoURLWithCompletionHandler(URL::fromString("https://ads.example/x"), collect());
        settleAll();
        EXPECT_EQ(outcomes.size(), 1U);
        return outcomes.empty() ? Outcome() : outcomes.front();
    }

    std::mutex mutex;
    std::vector<Outcome> outcomes;
};

const JSON unexpected = {{"Reason", "Unexpected server response."}};
constexpr const char* httpDomain = "com.virlohq.error.ServerRespondedWithHTTPError";
constexpr const char* unexpectedDomain = "com.virlohq.error.unexpectedServerResponse";
constexpr const char* noPayloadDomain = "com.virlohq.error.noPayload";

struct Row {
    const char* name;
    FakeResponse response;
    std::optional<JSON> object;
    OptionalError error; ///< of a JSON error only the domain is compared
};

class ResponseSorting : public Request, public testing::WithParamInterface<Row>
{
};

TEST_P(ResponseSorting, GivesObjectOrError)
{
    const Row& row = GetParam();
    const Outcome outcome = get(row.response);
    EXPECT_EQ(outcome.object, row.object);
    ASSERT_EQ(outcome.error.has_value(), row.error.has_value());
    if (row.error && row.error->domain == JSONSerialization::errorDomain)
        EXPECT_EQ(outcome.error->domain, row.error->domain);
    else
        EXPECT_EQ(outcome.error, row.error);
    EXPECT_EQ(outcome.response.has_value(), row.response.arrives);
}

const Error noJSON{JSONSerialization::errorDomain, 0, {}};

INSTANTIATE_TEST_SUITE_P(
    Table, ResponseSorting,
    testing::Values(
        Row{"Object", {200, R"({"a":1})"}, JSON{{"a", 1}}, {}},
        Row{"RedirectCountsAsSuccess", {304, R"({"a":1})"}, JSON{{"a", 1}}, {}},
        Row{"Array", {200, "[1]"}, JSON::array({1}), {}}, Row{"NumberIsNoJSON", {200, "1"}, {}, noJSON},
        Row{"NoContentWithContent", {204, R"({"a":1})"}, {}, {}},
        Row{"NoPayload",
            {200, ""},
            {},
            Error{noPayloadDomain, 0, {{"Reason", "Server response does not contain payload."}}}},
        Row{"NoJSON", {200, "<html>"}, {}, noJSON},
        Row{"CodeOfARefusal", {404, R"({"error":"X"})"}, {}, Error{httpDomain, 404, {{"error", "X"}}}},
        Row{"PageOfARefusal", {500, "<html>"}, {}, Error{httpDomain, 500, unexpected}},
        Row{"RefusalWithoutBody", {400, ""}, {}, Error{httpDomain, 400, unexpected}},
        Row{"ArrayOfARefusal", {403, "[1]"}, {}, Error{httpDomain, 403, unexpected}},
        Row{"BelowSuccess", {199, "{}"}, {}, Error{httpDomain, 199, JSON::object()}},
        Row{"NoResponse", noResponse(), {}, Error{unexpectedDomain, 0, unexpected}}),
    rowName);

TEST_F(Request, HasTheCommonHeadersAndTheSessions)
{
    (void)get({});
    auto request = transport->lastRequest("GET", "/x");
    EXPECT_EQ(request.headers.at("Accept"), "application/json");
    EXPECT_EQ(request.headers.at("Content-Type"), "application/json");
    EXPECT_THAT(request.headers.at("User-Agent"), testing::StartsWith("VIRLOAdFramework 1.3.1 / linux "));
    EXPECT_FALSE(request.headers.contains("VRL-SessionId"));
    EXPECT_FALSE(request.body);
    EXPECT_EQ(VIRLOAdServerAPI::generateUserAgentFromBundle(
                  Bundle({{"CFBundleName", "N"}, {"DTPlatformName", "P"}})),
              "N (null) / P (null)");

    startSession();
    transport->expect("PUT", "/x");
    api->sessionPUTwithDicitonaryToURLWithCompletionHandler(JSON{{"k", "v"}},
                                                            URL::fromString("https://ads.example/x"), {});
    settleAll();
    request = transport->lastRequest("PUT", "/x");
    EXPECT_EQ(request.headers.at("VRL-SessionId"), "s-1");
    EXPECT_EQ(request.body, R"({"k":"v"})");
}

TEST_F(Request, RequestWhoseBodyCannotBeEncodedIsStillSent)
{
    transport->expectHeld("POST", "/x");
    api->sessionPOSTwithDicitonaryToURLWithCompletionHandler(
        JSON{{"k", "\xff"}}, URL::fromString("https://ads.example/x"), collect());
    ASSERT_EQ(outcomes.size(), 1U) << "at once";
    EXPECT_EQ(outcomes.front().error->domain, JSONSerialization::errorDomain);
    transport->release("POST", "/x");
    settleAll();
    ASSERT_EQ(outcomes.size(), 2U);
    EXPECT_FALSE(outcomes.back().error);
    EXPECT_FALSE(transport->lastRequest("POST", "/x").body);
}

TEST_F(Request, WithoutURLFailsAsWithoutResponseOnAWorker)
{
    std::optional<std::thread::id> thread;
    api->sessionGETtoURLWithCompletionHandler(
        std::nullopt,
        [&](const std::optional<JSON>&, const OptionalError& error, const VIRLOAdServerAPI::Response&) {
            EXPECT_EQ(error, (Error{unexpectedDomain, 0, unexpected}));
            thread = std::this_thread::get_id();
        });
    settleAll();
    ASSERT_TRUE(thread);
    EXPECT_NE(*thread, std::this_thread::get_id());
}

class Parking : public CoreTest
{
protected:
    void park()
    {
        api->checkSessionAndDo([this] { ++ran; });
    }

    std::atomic<int> ran{0};
};

TEST_F(Parking, WaitsForAnActiveSession)
{
    park();
    park();
    settleAll();
    EXPECT_EQ(ran, 0);

    transport->expect("POST", startPath, sessionResponse("", "SESSION_PENDING"));
    api->startSession();
    settleAll();
    EXPECT_EQ(ran, 0) << "a session in another state releases nothing";

    startSession();
    EXPECT_EQ(ran, 2);
    park();
    EXPECT_EQ(ran, 3) << "at once, on the caller's thread";
}

TEST_F(Parking, WorkOfManyThreadsRunsOnceWhileASessionStarts)
{
    constexpr int threads = 8;
    constexpr int each = 20;
    transport->expect("POST", startPath, sessionResponse());
    std::vector<std::jthread> callers;
    for (int thread = 0; thread < threads; ++thread)
        callers.emplace_back([this] {
            for (int call = 0; call < each; ++call)
                park();
        });
    api->startSession();
    callers.clear();
    settleAll();
    EXPECT_EQ(ran, threads * each);
}

TEST_F(Parking, WaitsForTheNetwork)
{
    startSession();
    network.setReachable(false);
    park();
    const auto reachability = VIRLOReachability::reachabilityForInternetConnection();
    NotificationCenter::defaultCenter().post(kVIRLOReachabilityChangedNotification, reachability.get());
    settleAll();
    EXPECT_EQ(ran, 0) << "another object's notification, and still offline";

    network.setReachable(true);
    startSession();
    EXPECT_EQ(ran, 1);
}

TEST_F(Parking, ReleaseBetweenCheckAndParkingIsNotMissed)
{
    startSession();
    network.setReachable(false);
    network.duringNextQuery([this] {
        network.setReachable(true);
        api->retryQueuedRequests();
    });
    park();
    EXPECT_EQ(ran, 1);
}

} // namespace
} // namespace virlo::test
