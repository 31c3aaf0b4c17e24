#pragma once

#include <cstdint>
#include <string>

/// A client's end of a plain TCP connection to 127.0.0.1: sends exactly what it is told.
class RawConnection
{
public:
    explicit RawConnection(std::uint16_t port);
    ~RawConnection();
    RawConnection(const RawConnection&) = delete;
    RawConnection& operator=(const RawConnection&) = delete;

    void send(const std::string& bytes) const;
    /// Until the server closes, or five seconds have passed.
    [[nodiscard]] std::string receiveAll() const;

private:
    int m_socket;
};
