#include "SocketPoll.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <cerrno>

namespace virlo
{

SocketPoll::~SocketPoll()
{
    close();
}

bool SocketPoll::open()
{
    close();
    m_epoll = ::epoll_create1(EPOLL_CLOEXEC);
    m_wake = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    epoll_event event{};
    event.events = EPOLLIN | EPOLLET; // edges, so that nobody has to read the count away
    event.data.fd = m_wake;
    return m_epoll >= 0 && m_wake >= 0 && ::epoll_ctl(m_epoll, EPOLL_CTL_ADD, m_wake, &event) == 0;
}

void SocketPoll::adopt(int socket)
{
    m_sockets[socket] = {.adopted = true};
}

void SocketPoll::forget(int socket)
{
    const auto found = m_sockets.find(socket);
    if (found == m_sockets.end())
        return;
    // Its close alone would not do where the host has forked and the child holds the socket too.
    if (found->second.known != 0)
        ::epoll_ctl(m_epoll, EPOLL_CTL_DEL, socket, nullptr);
    m_sockets.erase(found);
}

void SocketPoll::want(int socket, std::uint32_t events)
{
    Socket& entry = m_sockets[socket];
    entry.wanted = events;
    if (events == 0 && !entry.adopted)
        forget(socket);
    if (events == 0 || entry.known == events)
        return;
    epoll_event event{};
    event.events = events;
    event.data.fd = socket;
    if (::epoll_ctl(m_epoll, entry.known != 0 ? EPOLL_CTL_MOD : EPOLL_CTL_ADD, socket, &event) == 0)
        entry.known = events;
}

const std::vector<epoll_event>& SocketPoll::wait(int milliseconds)
{
    m_events.resize(64);
    const int count = ::epoll_wait(m_epoll, m_events.data(), static_cast<int>(m_events.size()), milliseconds);
    m_events.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
    std::erase_if(m_events, [this](const epoll_event& event) {
        const auto found = m_sockets.find(event.data.fd);
        if (found == m_sockets.end())
            return true; // the wake-up
        if (found->second.wanted != 0)
            return false;
        ::epoll_ctl(m_epoll, EPOLL_CTL_DEL, event.data.fd, nullptr);
        found->second.known = 0;
        return true;
    });
    return m_events;
}

void SocketPoll::wake() const
{
    const std::uint64_t one = 1;
    static_cast<void>(!::write(m_wake, &one, sizeof one));
}

void SocketPoll::close()
{
    for (int* descriptor : {&m_epoll, &m_wake}) {
        if (*descriptor >= 0)
            ::close(*descriptor);
        *descriptor = -1;
    }
}

} // namespace virlo
