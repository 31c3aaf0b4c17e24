#include "RawConnection.h"

#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <array>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

RawConnection::RawConnection(std::uint16_t port) : m_socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0))
{
    const timeval patience{.tv_sec = 5, .tv_usec = 0};
    ::setsockopt(m_socket, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    EXPECT_EQ(::connect(m_socket, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
}

RawConnection::~RawConnection()
{
    ::close(m_socket);
}

void RawConnection::send(const std::string& bytes) const
{
    ::send(m_socket, bytes.data(), bytes.size(), MSG_NOSIGNAL);
}

std::string RawConnection::receiveAll() const
{
    std::string all;
    std::array<char, 4096> buffer{};
    for (;;) {
        const auto count = ::recv(m_socket, buffer.data(), buffer.size(), 0);
        if (count <= 0)
            return count == 0 ? all : all + "<no end>";
        all.append(buffer.data(), static_cast<size_t>(count));
    }
}
