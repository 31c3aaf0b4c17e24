#include "LoopbackServer.h"
#include "Outcome.h"

#include <gtest/gtest.h>

#include <atomic>

namespace virlo::test
{
namespace
{

class TLSTest : public testing::Test
{
protected:
    TLSTest()
    {
        m_server.routes().Get("/", [this](const auto&, auto& response) {
            ++m_requests;
            response.set_content("{}", "application/json");
        });
        m_server.start();
    }

    TestAuthority m_authority;
    std::atomic<int> m_requests{0};
    LoopbackServer m_server{&m_authority}; // last: its threads use the others
};

TEST_F(TLSTest, PrivateAuthorityIsTrustedWhereTheSessionSaysSo)
{
    const auto result = get(*makeSession(m_authority.file()), m_server.url("/"));
    EXPECT_EQ(result.status(), 200) << (result.error ? describe(*result.error) : "");
    EXPECT_EQ(result.data, "{}");
}

TEST_F(TLSTest, SessionWithoutTheAuthorityNeverRidesOnATrustingOnesConnection)
{
    const auto trusting = makeSession(m_authority.file());
    ASSERT_EQ(get(*trusting, m_server.url("/")).status(), 200);
    for (const auto& session : {makeSession(), makeSession(TestAuthority().file())}) {
        const auto result = get(*session, m_server.url("/"));
        EXPECT_EQ(result.code(), URLSession::failed);
        EXPECT_FALSE(result.response);
    }
    EXPECT_EQ(get(*trusting, m_server.url("/")).status(), 200);
    EXPECT_EQ(m_requests, 2);
}

TEST_F(TLSTest, MissingAuthoritiesFileIsAnErrorThatNamesIt)
{
    const auto result = get(*makeSession("/nowhere/authority.pem"), m_server.url("/"));
    EXPECT_EQ(result.code(), URLSession::failed);
    ASSERT_TRUE(result.error);
    EXPECT_NE(result.error->userInfo["Reason"].get<std::string>().find("/nowhere/authority.pem"),
              std::string::npos);
}

TEST_F(TLSTest, DefaultConfigurationCarriesTheProcessWideFile)
{
    URLSessionConfiguration::setDefaultTrustedAuthoritiesFile(m_authority.file());
    const auto session =
        URLSession::sessionWithConfiguration(URLSessionConfiguration::defaultConfiguration());
    URLSessionConfiguration::setDefaultTrustedAuthoritiesFile({});
    EXPECT_EQ(get(*session, m_server.url("/")).status(), 200);
}

TEST_F(TLSTest, PlainAnswerOnASecurePortIsAnError)
{
    std::string plain = m_server.url("/");
    plain.erase(4, 1);
    const auto result = get(*makeSession(m_authority.file()), plain);
    EXPECT_EQ(result.code(), URLSession::failed);
    EXPECT_FALSE(result.response);
}

} // namespace
} // namespace virlo::test
