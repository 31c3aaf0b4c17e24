#include "LoopbackServer.h"

#include <gtest/gtest.h>

namespace virlo::test
{

LoopbackServer::LoopbackServer(const TestAuthority* authority) : m_secure(authority != nullptr)
{
    if (m_secure)
        m_server =
            std::make_unique<httplib::SSLServer>(authority->serverCertificate(), authority->serverKey());
    else
        m_server = std::make_unique<httplib::Server>();
    m_server->new_task_queue = [] { return new httplib::ThreadPool(16); };
    m_server->set_tcp_nodelay(true);
    m_server->set_keep_alive_max_count(1'000'000);
    m_server->set_keep_alive_timeout(1); // its end waits so long for connections at rest
}

LoopbackServer::~LoopbackServer()
{
    m_server->stop();
    if (m_thread.joinable())
        m_thread.join();
}

void LoopbackServer::start()
{
    m_port = m_server->bind_to_any_port("127.0.0.1");
    ASSERT_GT(m_port, 0);
    m_thread = std::thread([this] { m_server->listen_after_bind(); });
    while (!m_server->is_running()) // before that it could not be stopped
        std::this_thread::yield();
}

std::string LoopbackServer::url(const std::string& path) const
{
    return (m_secure ? "https://127.0.0.1:" : "http://127.0.0.1:") + std::to_string(m_port) + path;
}

} // namespace virlo::test
