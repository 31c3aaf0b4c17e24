#pragma once

#include "AdServer.h"
#include "Outcome.h"
#include "TemporaryFolder.h"

#include <gtest/gtest.h>

#include <string>

namespace virlo::test
{

/// The local ad server over HTTPS, and a session that trusts it.
class NetworkTest : public testing::Test
{
protected:
    NetworkTest()
    {
        server.start();
        session = trusting();
    }

    ~NetworkTest() override { EXPECT_TRUE(URLSession::drain(Seconds(10))); }

    [[nodiscard]] std::string url(const std::string& path) const { return server.baseURL() + path; }

    [[nodiscard]] std::shared_ptr<URLSession> trusting(int connections = 6) const
    {
        return makeSession(server.authorityFile().string(), connections);
    }

    void serve(const std::string& path, const std::string& body = "{}")
    {
        server.setFault({.path = path, .status = 200, .body = body});
    }

    TemporaryFolder folder;
    adserver::AdServer server{{.stateFolder = folder.path("server")}};
    std::shared_ptr<URLSession> session;
};

} // namespace virlo::test
