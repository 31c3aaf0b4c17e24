#include "RawServer.h"

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>

#include <gtest/gtest.h>

namespace virlo::test
{

namespace
{
int listenOnLoopback(int& port)
{
    const int listener = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    EXPECT_EQ(::bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    EXPECT_EQ(::listen(listener, 128), 0);
    socklen_t size = sizeof address;
    EXPECT_EQ(::getsockname(listener, reinterpret_cast<sockaddr*>(&address), &size), 0);
    port = ntohs(address.sin_port);
    return listener;
}
} // namespace

std::string RawServer::Connection::readHead()
{
    std::string head;
    for (char byte = 0; ::recv(m_descriptor, &byte, 1, 0) == 1;) {
        head += byte;
        if (head.ends_with("\r\n\r\n"))
            return head;
    }
    return {};
}

bool RawServer::Connection::write(std::string_view bytes)
{
    while (!bytes.empty()) {
        const ssize_t sent = ::send(m_descriptor, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (sent <= 0)
            return false;
        bytes.remove_prefix(static_cast<std::size_t>(sent));
    }
    return true;
}

void RawServer::Connection::waitForEnd()
{
    char bytes[4096];
    while (::recv(m_descriptor, bytes, sizeof bytes, 0) > 0) {
    }
}

RawServer::RawServer(std::function<void(Connection&)> serve) : m_serve(std::move(serve))
{
    m_listener = listenOnLoopback(m_port);
    m_acceptor = std::thread([this] { accept(); });
}

RawServer::~RawServer()
{
    ::shutdown(m_listener, SHUT_RDWR);
    m_acceptor.join();
    {
        const std::lock_guard lock(m_mutex);
        for (const int descriptor : m_open)
            ::shutdown(descriptor, SHUT_RDWR);
    }
    for (std::thread& thread : m_threads)
        thread.join();
    ::close(m_listener);
}

std::string RawServer::url(const std::string& path) const
{
    return "http://127.0.0.1:" + std::to_string(m_port) + path;
}

void RawServer::accept()
{
    for (;;) {
        const int descriptor = ::accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC);
        if (descriptor < 0)
            return;
        ++m_connections;
        const std::lock_guard lock(m_mutex);
        m_open.push_back(descriptor);
        m_threads.emplace_back([this, descriptor] {
            Connection connection(descriptor);
            m_serve(connection);
            const std::lock_guard closing(m_mutex);
            m_open.erase(std::find(m_open.begin(), m_open.end(), descriptor));
            ::close(descriptor);
        });
    }
}

std::string unreachableURL()
{
    int port = 0;
    ::close(listenOnLoopback(port));
    return "http://127.0.0.1:" + std::to_string(port) + "/";
}

} // namespace virlo::test
