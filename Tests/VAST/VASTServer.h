#pragma once

#include "AdServer.h"
#include "TemporaryFolder.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>

namespace virlo::test
{

/// The local ad server over plain HTTP, serving VAST documents that the test says.
class VASTServer : public testing::Test
{
protected:
    VASTServer();
    ~VASTServer() override;

    void serve(const std::string& path, const std::string& document);

    [[nodiscard]] std::string url(const std::string& path) const { return server.baseURL() + path; }

    /// How often a path was asked for.
    [[nodiscard]] std::size_t asked(const std::string& path) const;

    TemporaryFolder folder;
    adserver::AdServer server;
};

} // namespace virlo::test
