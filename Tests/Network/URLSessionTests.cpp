#include "NetworkTest.h"
#include "RawServer.h"
#include "RowName.h"

#include <gmock/gmock.h>

namespace virlo::test
{
namespace
{

using URLSessionTest = NetworkTest;

struct MethodRow {
    const char* name;
    const char* method;
    std::optional<std::string> body;
};

class MethodTest : public URLSessionTest, public testing::WithParamInterface<MethodRow>
{
};

TEST_P(MethodTest, ArrivesWithItsBodyUnchanged)
{
    serve("/echo");
    URLRequest sent = request(url("/echo"), GetParam().method);
    sent.body = GetParam().body;
    const auto result = send(*session, sent);
    EXPECT_EQ(result.status(), 200);
    EXPECT_FALSE(result.error);
    const auto seen = server.requests().at(0);
    EXPECT_EQ(seen.method, GetParam().method);
    EXPECT_EQ(seen.body, GetParam().body.value_or(""));
    EXPECT_FALSE(seen.headers.contains("content-type"));
}

INSTANTIATE_TEST_SUITE_P(Rows, MethodTest,
                         testing::Values(MethodRow{"Get", "GET", {}}, MethodRow{"Post", "POST", "{\"a\":1}"},
                                         MethodRow{"PostNothing", "POST", {}},
                                         MethodRow{"PutLong", "PUT", std::string(500'000, 'p')},
                                         MethodRow{"Delete", "DELETE", {}},
                                         MethodRow{"DeleteBody", "DELETE", "{}"}),
                         rowName);

TEST_F(URLSessionTest, RequestsOwnHeadersOverrideTheSessionsWhateverTheirCase)
{
    std::string head;
    RawServer raw([&](RawServer::Connection& connection) {
        head = connection.readHead();
        connection.write("HTTP/1.1 204 No Content\r\n\r\n");
    });
    URLSessionConfiguration configuration;
    configuration.additionalHeaders = {{"User-Agent", "session"}, {"Accept", "application/json"}};
    URLRequest sent = request(raw.url("/"));
    sent.headers = {{"user-agent", "own\r\nX-Injected: yes"}};
    const auto result = send(*URLSession::sessionWithConfiguration(configuration), sent);
    EXPECT_EQ(result.status(), 204);
    EXPECT_EQ(result.data, "");
    EXPECT_FALSE(result.error);
    EXPECT_THAT(head, testing::HasSubstr("\r\nuser-agent: own  X-Injected: yes\r\n"));
    EXPECT_THAT(head, testing::Not(testing::HasSubstr("User-Agent")));
    EXPECT_THAT(head, testing::HasSubstr("\r\nAccept: application/json\r\n"));
}

TEST_F(URLSessionTest, CompressedResponseArrivesUnpackedAndLimitedByItsUnpackedLength)
{
    using namespace std::string_literals;
    const std::string packed =
        "\x1f\x8b\x08\0\0\0\0\0\x02\x03\xed\xc1\x31\x01\0\0\0\xc2\xa0\xda\x8b\x6f\x06\x7f\xa0"s +
        std::string(193, '\0') + "\x80\xd7\0\x72\x02\xbf\x51\x40\x0d\x03\0"s;
    server.setFault(
        {.path = "/text", .status = 200, .body = packed, .headers = {{"Content-Encoding", "gzip"}}});
    EXPECT_EQ(get(*session, url("/text")).data, std::string(200'000, 'x'));

    URLRequest limited = request(url("/text"));
    limited.maximumBodySize = 50'000;
    const auto cut = send(*session, limited);
    EXPECT_EQ(cut.code(), URLSession::bodyTooLong);
    EXPECT_LE(cut.data.size(), limited.maximumBodySize);
    EXPECT_EQ(cut.status(), 200);
}

TEST_F(URLSessionTest, RedirectsLeadToTheFinalResponseAndItsURL)
{
    server.setFault({.path = "/hop", .status = 302, .headers = {{"Location", "/hop2"}}});
    server.setFault({.path = "/hop2", .status = 301, .headers = {{"Location", "/end"}}});
    serve("/end");
    const auto result = get(*session, url("/hop"));
    EXPECT_EQ(result.status(), 200);
    EXPECT_EQ(result.response->url.absoluteString(), url("/end"));
    EXPECT_FALSE(result.response->headers.contains("location")) << "a header of an earlier response";
    EXPECT_EQ(server.requests().back().method, "GET");
}

struct RedirectRow {
    const char* name;
    const char* method;
    int status;
    const char* followed;
};

class RedirectMethodTest : public URLSessionTest, public testing::WithParamInterface<RedirectRow>
{
};

TEST_P(RedirectMethodTest, IsThatOfBrowsers)
{
    server.setFault({.path = "/from", .status = GetParam().status, .headers = {{"Location", "/to"}}});
    serve("/to");
    URLRequest sent = request(url("/from"), GetParam().method);
    sent.body = "{}";
    EXPECT_EQ(send(*session, sent).status(), 200);
    const auto seen = server.requests().back();
    EXPECT_EQ(seen.method, GetParam().followed);
    EXPECT_EQ(seen.body, seen.method == "GET" ? "" : "{}");
}

INSTANTIATE_TEST_SUITE_P(Rows, RedirectMethodTest,
                         testing::Values(RedirectRow{"SeeOtherPost", "POST", 303, "GET"},
                                         RedirectRow{"SeeOtherPut", "PUT", 303, "GET"},
                                         RedirectRow{"FoundPost", "POST", 302, "GET"},
                                         RedirectRow{"FoundPut", "PUT", 302, "PUT"},
                                         RedirectRow{"TemporaryPost", "POST", 307, "POST"}),
                         rowName);

struct BrokenRedirectRow {
    const char* name;
    std::string location;
    long code;
};

class BrokenRedirectTest : public URLSessionTest, public testing::WithParamInterface<BrokenRedirectRow>
{
};

TEST_P(BrokenRedirectTest, IsNoResponse)
{
    server.setFault(
        {.path = "/hop", .status = 302, .body = "moved", .headers = {{"Location", GetParam().location}}});
    const auto result = get(*session, url("/hop"));
    EXPECT_EQ(result.code(), GetParam().code);
    EXPECT_FALSE(result.response);
    EXPECT_EQ(result.data, "");
}

INSTANTIATE_TEST_SUITE_P(
    Rows, BrokenRedirectTest,
    testing::Values(BrokenRedirectRow{"Loop", "/hop", URLSession::failed},
                    BrokenRedirectRow{"Unreachable", unreachableURL(), URLSession::failed},
                    BrokenRedirectRow{"Forbidden", "file:///etc/passwd", URLSession::unsupportedURL},
                    BrokenRedirectRow{"NoURL", "http://", URLSession::unsupportedURL}),
    rowName);

TEST_F(URLSessionTest, RedirectWithoutATargetIsAResponse)
{
    server.setFault({.path = "/nowhere", .status = 302, .body = "stay"});
    const auto result = get(*session, url("/nowhere"));
    EXPECT_EQ(result.status(), 302);
    EXPECT_EQ(result.data, "stay");
    EXPECT_FALSE(result.error);
}

TEST_F(URLSessionTest, MacrosKeepTheirBracketsAndTheRestIsEncoded)
{
    std::string head;
    RawServer raw([&](RawServer::Connection& connection) {
        head = connection.readHead();
        connection.write("HTTP/1.1 200 OK\r\nContent-Length: 0\r\nConnection: close\r\n\r\n");
    });
    const std::string text = raw.url("/[CACHEBUSTING]/\xC3\xBC?a=[TS]&b={x|y}&c=%5B#f");
    const auto result = get(*session, text);
    EXPECT_EQ(result.status(), 200);
    EXPECT_EQ(result.response->url.absoluteString(), text);
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

TEST_P(BadRequestTest, FailsWithoutAResponse)
{
    URLRequest bad = request(GetParam().url, GetParam().method);
    bad.headers[GetParam().header] = "x";
    const auto result = send(*makeSession(), bad);
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
    rowName);

class TLSTest : public NetworkTest
{
};

TEST_F(TLSTest, SessionWithoutTheAuthorityNeverUsesATrustingOnesConnection)
{
    serve("/");
    URLSessionConfiguration::setDefaultTrustedAuthoritiesFile(server.authorityFile().string());
    const auto trusted =
        URLSession::sessionWithConfiguration(URLSessionConfiguration::defaultConfiguration());
    URLSessionConfiguration::setDefaultTrustedAuthoritiesFile({});
    ASSERT_EQ(get(*trusted, url("/")).status(), 200);
    const TemporaryFolder other;
    adserver::AdServer stranger({.stateFolder = other.path("server")});
    stranger.start();
    for (const auto& wary : {makeSession(), makeSession(stranger.authorityFile().string())}) {
        const auto result = get(*wary, url("/"));
        EXPECT_EQ(result.code(), URLSession::untrusted);
        EXPECT_FALSE(result.response);
    }
    EXPECT_EQ(get(*trusted, url("/")).status(), 200);
    EXPECT_EQ(server.requests().size(), 2U);
}

TEST_F(TLSTest, MissingAuthoritiesFileIsAnErrorThatNamesIt)
{
    const auto result = get(*makeSession("/nowhere/authority.pem"), url("/"));
    EXPECT_EQ(result.code(), URLSession::untrusted);
    ASSERT_TRUE(result.error);
    EXPECT_THAT(result.error->userInfo["Reason"].get<std::string>(),
                testing::HasSubstr("/nowhere/authority.pem"));
}

} // namespace
} // namespace virlo::test
