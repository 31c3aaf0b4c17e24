#include "JSON.h"
#include "LoopbackServer.h"
#include "Outcome.h"
#include "RawServer.h"

#include <gmock/gmock.h>

namespace virlo::test
{
namespace
{

class URLSessionTest : public testing::Test
{
protected:
    URLSessionTest()
    {
        const auto echo = [](const httplib::Request& request, httplib::Response& response) {
            JSON headers = JSON::object();
            for (const auto& [name, value] : request.headers)
                headers[name] = value;
            response.set_content(
                JSON{{"method", request.method}, {"body", request.body}, {"headers", headers}}.dump(),
                "application/json");
        };
        auto& routes = m_server.routes();
        routes.Get("/echo", echo).Post("/echo", echo).Put("/echo", echo).Delete("/echo", echo);
        routes.Get("/none", [](const auto&, auto& response) { response.status = 204; });
        routes.Get("/text", [](const auto&, auto& response) {
            response.set_content(std::string(1 << 20, 'x'), "text/plain"); // which this server compresses
        });
        const auto redirect = [](int status, const char* location) {
            return [=](const auto&, auto& response) {
                response.status = status;
                response.set_header("Location", location);
                response.set_content("moved", "text/plain");
            };
        };
        routes.Get("/hop", redirect(302, "/hop2")).Get("/hop2", redirect(301, "/echo"));
        routes.Get("/loop", redirect(302, "/loop")).Get("/file", redirect(302, "file:///etc/passwd"));
        routes.Post("/303", redirect(303, "/echo")).Put("/303", redirect(303, "/echo"));
        routes.Post("/307", redirect(307, "/echo")).Put("/302", redirect(302, "/echo"));
        m_server.start();
    }

    static JSON echoed(const Outcome::Result& result)
    {
        const JSON seen = JSON::parse(result.data, nullptr, false);
        EXPECT_TRUE(seen.is_object()) << result.data << (result.error ? describe(*result.error) : "");
        return seen.is_object() ? seen : JSON::object();
    }

    LoopbackServer m_server;
    std::shared_ptr<URLSession> m_session = makeSession();
};

struct MethodRow {
    const char* method;
    std::optional<std::string> body;
};

class MethodTest : public URLSessionTest, public testing::WithParamInterface<MethodRow>
{
};

TEST_P(MethodTest, ArrivesWithItsBodyAsItIs)
{
    // One after the other on the same handle: nothing of a request may cling to the next.
    for (int round = 0; round < 2; ++round) {
        URLRequest sent = request(m_server.url("/echo"), GetParam().method);
        sent.body = GetParam().body;
        const auto result = exchange(*m_session, sent);
        EXPECT_EQ(result.status(), 200);
        EXPECT_FALSE(result.error);
        JSON seen = echoed(result);
        EXPECT_EQ(seen["method"], GetParam().method);
        EXPECT_EQ(seen["body"], GetParam().body.value_or(""));
        EXPECT_FALSE(seen["headers"].contains("Content-Type")) << seen;
        EXPECT_FALSE(seen["headers"].contains("Expect")) << seen;
        EXPECT_EQ(echoed(get(*m_session, m_server.url("/echo")))["method"], "GET");
    }
}

INSTANTIATE_TEST_SUITE_P(Rows, MethodTest,
                         testing::Values(MethodRow{"GET", {}}, MethodRow{"POST", "{\"a\":1}"},
                                         MethodRow{"POST", {}}, MethodRow{"PUT", std::string(3 << 20, 'p')},
                                         MethodRow{"DELETE", {}}, MethodRow{"DELETE", "{}"}),
                         [](const auto& row) {
                             return row.param.method + std::to_string(row.param.body.value_or("").size());
                         });

TEST_F(URLSessionTest, RequestsOwnHeadersWinOverTheSessionsWhateverTheirCase)
{
    URLSessionConfiguration configuration;
    configuration.additionalHeaders = {{"User-Agent", "session"}, {"Accept", "application/json"}};
    URLRequest sent = request(m_server.url("/echo"));
    sent.headers = {{"user-agent", "own\r\nX-Injected: yes"}};
    JSON headers = echoed(exchange(*URLSession::sessionWithConfiguration(configuration), sent))["headers"];
    EXPECT_EQ(headers["user-agent"], "own  X-Injected: yes");
    EXPECT_FALSE(headers.contains("User-Agent"));
    EXPECT_FALSE(headers.contains("X-Injected"));
    EXPECT_EQ(headers["Accept"], "application/json");
}

TEST_F(URLSessionTest, EmptyAnswerIsNoError)
{
    const auto result = get(*m_session, m_server.url("/none"));
    EXPECT_EQ(result.status(), 204);
    EXPECT_EQ(result.data, "");
    EXPECT_FALSE(result.error);
}

TEST_F(URLSessionTest, CompressedAnswerArrivesUnpackedAndBoundedByItsUnpackedLength)
{
    const auto whole = get(*m_session, m_server.url("/text"));
    EXPECT_EQ(whole.header("content-encoding"), "gzip");
    EXPECT_EQ(whole.data, std::string(1 << 20, 'x'));

    URLRequest bounded = request(m_server.url("/text"));
    bounded.maximumBodySize = 100'000; // the wire carries about one thousand bytes
    const auto cut = exchange(*m_session, bounded);
    EXPECT_EQ(cut.code(), URLSession::bodyTooLong);
    EXPECT_LE(cut.data.size(), bounded.maximumBodySize);
    EXPECT_EQ(cut.status(), 200);
}

TEST_F(URLSessionTest, RedirectsLeadToTheFinalAnswerAndItsURL)
{
    const auto result = get(*m_session, m_server.url("/hop"));
    EXPECT_EQ(result.status(), 200);
    EXPECT_EQ(result.response->url.absoluteString(), m_server.url("/echo"));
    EXPECT_EQ(result.header("location"), "") << "a header of an earlier answer";
    EXPECT_EQ(echoed(result)["method"], "GET");
}

TEST_F(URLSessionTest, RedirectedMethods)
{
    for (const char* method : {"POST", "PUT"}) {
        URLRequest sent = request(m_server.url("/303"), method);
        sent.body = "{}";
        JSON seen = echoed(exchange(*m_session, sent));
        EXPECT_EQ(seen["method"], "GET") << method;
        EXPECT_EQ(seen["body"], "");
    }
    const std::pair<const char*, const char*> kept[] = {{"POST", "/307"}, {"PUT", "/302"}};
    for (const auto& [method, path] : kept) {
        URLRequest sent = request(m_server.url(path), method);
        sent.body = "{}";
        JSON seen = echoed(exchange(*m_session, sent));
        EXPECT_EQ(seen["method"], method);
        EXPECT_EQ(seen["body"], "{}");
    }
}

TEST_F(URLSessionTest, EndlessAndForbiddenRedirectsEndWithTheRedirectInHand)
{
    const auto loop = get(*m_session, m_server.url("/loop"));
    EXPECT_EQ(loop.code(), URLSession::failed);
    EXPECT_EQ(loop.status(), 302);
    const auto file = get(*m_session, m_server.url("/file"));
    EXPECT_EQ(file.code(), URLSession::unsupportedURL);
    EXPECT_EQ(file.status(), 302);
    EXPECT_EQ(file.data.find("root"), std::string::npos);
}

TEST_F(URLSessionTest, MacrosTravelInBracketsAndTheRestEncoded)
{
    std::mutex mutex;
    std::string head;
    RawServer server([&](RawServer::Connection& connection) {
        const std::lock_guard lock(mutex);
        head = connection.readHead();
        connection.write("HTTP/1.1 200 OK\r\nContent-Length: 0\r\nConnection: close\r\n\r\n");
    });
    const std::string url = server.url("/[CACHEBUSTING]/\xC3\xBC?a=[TS]&b={x|y}&c=%5B#f");
    const auto result = get(*m_session, url);
    EXPECT_EQ(result.status(), 200);
    EXPECT_EQ(result.response->url.absoluteString(), url);
    const std::lock_guard lock(mutex);
    EXPECT_THAT(head,
                testing::StartsWith("GET /[CACHEBUSTING]/%C3%BC?a=[TS]&b=%7Bx%7Cy%7D&c=%5B HTTP/1.1\r\n"));
}

struct BadRequestRow {
    const char* name;
    const char* url;
    const char* method;
    const char* header;
    long code;
};

class BadRequestTest : public testing::TestWithParam<BadRequestRow>
{
};

TEST_P(BadRequestTest, FailsWithoutAnAnswer)
{
    URLRequest bad = request(GetParam().url, GetParam().method);
    bad.headers[GetParam().header] = "x";
    const auto result = exchange(*makeSession(), bad);
    EXPECT_EQ(result.code(), GetParam().code);
    EXPECT_FALSE(result.response);
    ASSERT_TRUE(result.error);
    EXPECT_EQ(result.error->domain, URLSession::errorDomain);
    EXPECT_EQ(result.error->userInfo["URL"], GetParam().url);
    EXPECT_NE(result.error->userInfo["Reason"], "");
}

INSTANTIATE_TEST_SUITE_P(
    Rows, BadRequestTest,
    testing::Values(BadRequestRow{"FileURL", "file:///etc/passwd", "GET", "A", URLSession::unsupportedURL},
                    BadRequestRow{"RelativeURL", "a/b", "GET", "A", URLSession::unsupportedURL},
                    BadRequestRow{"NoHost", "http://", "GET", "A", URLSession::unsupportedURL},
                    BadRequestRow{"MacroForHost", "http://[HOST]/", "GET", "A", URLSession::unsupportedURL},
                    BadRequestRow{"Port", "http://127.0.0.1:99999/", "GET", "A", URLSession::unsupportedURL},
                    BadRequestRow{"Method", "http://127.0.0.1/", "GET /x HTTP/1.1\r\nA: b\r\n\r\n", "A",
                                  URLSession::failed},
                    BadRequestRow{"HeaderName", "http://127.0.0.1/", "GET", "A: b\r\nC", URLSession::failed}),
    [](const auto& row) { return row.param.name; });

} // namespace
} // namespace virlo::test
