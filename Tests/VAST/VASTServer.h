#pragma once

#include "AdServer.h"
#include "TemporaryFolder.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>

namespace virlo::test
{

/// The local ad server over plain HTTP, with VAST documents of the test.
class VASTServer : public testing::Test
{
protected:
    VASTServer();
    ~VASTServer() override;

    void serve(const std::string& path, const std::string& document);

    [[nodiscard]] std::string url(const std::string& path) const { return server.baseURL() + path; }

    /// How often a path was requested.
    [[nodiscard]] std::size_t requestCount(const std::string& path) const;

    TemporaryFolder folder;
    adserver::AdServer server;
};

} // namespace virlo::test
