#pragma once

#include "AdServer.h"
#include "TemporaryFolder.h"

#include <gtest/gtest.h>
#include <httplib.h>
#include <nlohmann/json.hpp>

#include <atomic>
#include <chrono>
#include <memory>
#include <string>

/// A started server with one campaign, spoken to over TLS by a client that trusts its authority. Its clock
/// does not move until `advance`.
class ServerTest : public testing::Test
{
protected:
    using JSON = nlohmann::json;

    ServerTest();

    [[nodiscard]] adserver::AdServerOptions options();
    [[nodiscard]] httplib::Client makeClient() const;

    void advance(std::chrono::milliseconds time) { m_time = m_time.load() + time; }

    /// Reads the campaigns again; the port changes.
    void restart();

    /// Opens a session; what follows belongs to it.
    std::string openSession();

    [[nodiscard]] httplib::Headers sessionHeader() const { return {{"VRL-SessionId", m_session}}; }

    /// The response must have that status and, where it has a body, be JSON.
    JSON get(const std::string& path, int status = 200);
    JSON post(const std::string& path, const std::string& body, int status = 200);
    JSON put(const std::string& path, const std::string& body, int status = 200);
    JSON remove(const std::string& path, int status = 200);
    /// An advertisement for the placement, in an open session.
    JSON advertisement(const std::string& placement = "AppLaunch", const std::string& type = {});
    /// The path of one of this server's own addresses.
    [[nodiscard]] std::string path(const JSON& address) const;

    virlo::test::TemporaryFolder folder;

private:
    std::atomic<std::chrono::system_clock::time_point> m_time = std::chrono::system_clock::now();

protected:
    adserver::AdServer server;

private:
    [[nodiscard]] static JSON read(const httplib::Result& result, int status);

    std::string m_session;
    std::unique_ptr<httplib::Client> m_client;
};
