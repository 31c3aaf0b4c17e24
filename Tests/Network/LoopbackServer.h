#pragma once

#include "TestAuthority.h"

#include <httplib.h>

#include <memory>
#include <string>
#include <thread>

namespace virlo::test
{

/// An HTTP server on 127.0.0.1, with TLS where it is given an authority. Routes are added to `routes` before
/// `start`; every handler runs on a thread of the server's.
class LoopbackServer
{
public:
    explicit LoopbackServer(const TestAuthority* authority = nullptr);
    ~LoopbackServer();
    LoopbackServer(const LoopbackServer&) = delete;
    LoopbackServer& operator=(const LoopbackServer&) = delete;

    httplib::Server& routes() { return *m_server; }

    void start();

    /// `path` begins with a slash.
    [[nodiscard]] std::string url(const std::string& path) const;

private:
    bool m_secure;
    std::unique_ptr<httplib::Server> m_server;
    int m_port = 0;
    std::thread m_thread;
};

} // namespace virlo::test
