#include "ServerTest.h"

#include <filesystem>
#include <sys/stat.h>

using namespace std::chrono_literals;

namespace
{

constexpr auto day = std::chrono::hours(24);

class Certificates : public ServerTest
{
protected:
    [[nodiscard]] std::string stateFile(const std::string& name) const
    {
        return folder.read("state/" + name).value_or("");
    }

    [[nodiscard]] mode_t mode(const std::string& name) const
    {
        struct stat facts {
        };

        EXPECT_EQ(::stat(folder.path("state/" + name).c_str(), &facts), 0);
        return facts.st_mode & 0777U;
    }

    void restart()
    {
        server.stop();
        server.start();
    }
};

} // namespace

TEST_F(Certificates, KeepTheirKeysPrivateAndOutliveARestart)
{
    EXPECT_EQ(mode("authority.key"), 0600U);
    EXPECT_EQ(mode("server.key"), 0600U);
    EXPECT_EQ(mode(""), 0700U);
    const auto authority = stateFile("authority.pem");
    const auto certificate = stateFile("server.pem");
    restart();
    EXPECT_EQ(stateFile("authority.pem"), authority);
    EXPECT_EQ(stateFile("server.pem"), certificate);
}

TEST_F(Certificates, AreTrustedThroughTheAuthorityOnly)
{
    EXPECT_TRUE(makeClient().Get("/nowhere"));
    httplib::Client byAddress("https://127.0.0.1:" + std::to_string(server.port()));
    byAddress.set_ca_cert_path(server.authorityFile().string());
    EXPECT_TRUE(byAddress.Get("/nowhere"));
    httplib::Client stranger(server.baseURL());
    const auto refused = stranger.Get("/nowhere");
    EXPECT_EQ(refused.error(), httplib::Error::SSLServerVerification);
}

TEST_F(Certificates, OfTheServerAreRenewedBeforeTheyExpireUnderTheSameAuthority)
{
    const auto authority = stateFile("authority.pem");
    const auto certificate = stateFile("server.pem");
    advance(330 * day);
    restart();
    EXPECT_EQ(stateFile("server.pem"), certificate);
    advance(10 * day);
    restart();
    EXPECT_NE(stateFile("server.pem"), certificate);
    EXPECT_EQ(stateFile("authority.pem"), authority);
}

TEST_F(Certificates, ThatAreDamagedOrDoNotFitAreMadeAnew)
{
    folder.write("state/server.pem", "no certificate");
    restart();
    EXPECT_TRUE(makeClient().Get("/nowhere"));
    const auto authority = stateFile("authority.pem");
    std::filesystem::remove(folder.path("state/authority.key"));
    restart();
    EXPECT_NE(stateFile("authority.pem"), authority);
    EXPECT_TRUE(makeClient().Get("/nowhere"));
}

TEST_F(Certificates, CannotBeKeptWhereAFileIsInTheWay)
{
    folder.write("blocked", "a file");
    adserver::AdServer other({.stateFolder = folder.path("blocked/state")});
    EXPECT_THROW(other.start(), std::runtime_error);
}
