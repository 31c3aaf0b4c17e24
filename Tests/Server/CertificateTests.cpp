#include "ServerTest.h"

#include <filesystem>
#include <sys/stat.h>

using namespace std::chrono_literals;

class Certificates : public ServerTest
{
protected:
    [[nodiscard]] std::string stateFile(const std::string& name) const
    {
        return folder.read("state/" + name).value_or("");
    }
};

TEST_F(Certificates, KeepTheirKeysPrivateAndAreTrustedThroughTheAuthorityOnly)
{
    for (const auto* name : {"state/authority.key", "state/server.key"}) {
        struct stat facts {
        };

        ASSERT_EQ(::stat(folder.path(name).c_str(), &facts), 0);
        EXPECT_EQ(facts.st_mode & 0777U, 0600U) << name;
    }
    httplib::Client byAddress("https://127.0.0.1:" + std::to_string(server.port()));
    byAddress.set_ca_cert_path(server.authorityFile().string());
    EXPECT_TRUE(byAddress.Get("/nowhere"));
    EXPECT_EQ(httplib::Client(server.baseURL()).Get("/nowhere").error(),
              httplib::Error::SSLServerVerification);
}

TEST_F(Certificates, OfTheServerAreRenewedBeforeTheyExpireUnderTheSameAuthority)
{
    const auto authority = stateFile("authority.pem");
    const auto certificate = stateFile("server.pem");
    advance(330 * 24h);
    restart();
    EXPECT_EQ(stateFile("server.pem"), certificate);
    advance(10 * 24h);
    restart();
    EXPECT_NE(stateFile("server.pem"), certificate);
    EXPECT_EQ(stateFile("authority.pem"), authority);
}
