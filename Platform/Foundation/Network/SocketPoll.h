#pragma once

#include <sys/epoll.h>

#include <cstdint>
#include <unordered_map>
#include <vector>

namespace virlo
{

/// epoll for a set of sockets, and a way to interrupt its sleep. An adopted socket that is not wanted for the
/// moment stays known to the kernel until it makes itself heard: a connection that serves one request after
/// the other costs no system calls that way. One thread; `wake` any.
class SocketPoll
{
public:
    SocketPoll() = default;
    ~SocketPoll();
    SocketPoll(const SocketPoll&) = delete;
    SocketPoll& operator=(const SocketPoll&) = delete;

    /// False where the system gives no descriptors; it may be tried again.
    [[nodiscard]] bool open();

    /// Promises that `forget` will come before the socket is closed.
    void adopt(int socket);
    void forget(int socket);
    /// `events` as epoll names them; 0 for none.
    void want(int socket, std::uint32_t events);

    /// Sleeps until a wanted event, `wake`, or so many milliseconds (-1: without end), and gives the events
    /// that were wanted, errors included. They are good until the next call.
    [[nodiscard]] const std::vector<epoll_event>& wait(int milliseconds);
    void wake() const;

private:
    struct Socket {
        bool adopted = false;
        std::uint32_t wanted = 0;
        std::uint32_t known = 0; // to the kernel
    };

    void close();

    int m_epoll = -1;
    int m_wake = -1;
    std::unordered_map<int, Socket> m_sockets;
    std::vector<epoll_event> m_events;
};

} // namespace virlo
