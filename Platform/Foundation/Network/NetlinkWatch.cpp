#include "NetlinkWatch.h"

#include "DetachedThread.h"

#include <linux/netlink.h>
#include <linux/rtnetlink.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdint>
#include <mutex>
#include <utility>

namespace virlo
{

class NetlinkWatch::State
{
public:
    explicit State(std::function<void()> changed) : m_changed(std::move(changed)) {}

    ~State()
    {
        for (const int descriptor : {m_netlink, m_wake}) {
            if (descriptor >= 0)
                ::close(descriptor);
        }
    }

    State(const State&) = delete;
    State& operator=(const State&) = delete;

    bool open()
    {
        m_netlink = ::socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC | SOCK_NONBLOCK, NETLINK_ROUTE);
        m_wake = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
        sockaddr_nl groups{};
        groups.nl_family = AF_NETLINK;
        groups.nl_groups =
            RTMGRP_LINK | RTMGRP_IPV4_IFADDR | RTMGRP_IPV4_ROUTE | RTMGRP_IPV6_IFADDR | RTMGRP_IPV6_ROUTE;
        return m_netlink >= 0 && m_wake >= 0 &&
               ::bind(m_netlink, reinterpret_cast<const sockaddr*>(&groups), sizeof groups) == 0;
    }

    void run()
    {
        while (waitForMessage()) {
            const std::lock_guard lock(m_callMutex);
            if (m_ended)
                return;
            m_calling = this;
            m_changed();
            m_calling = nullptr;
        }
    }

    void end()
    {
        m_ended = true;
        const std::uint64_t one = 1;
        static_cast<void>(!::write(m_wake, &one, sizeof one));
        if (m_calling != this)
            const std::lock_guard waitForCall(m_callMutex);
    }

private:
    /// Reads all messages. False once the watch has ended.
    bool waitForMessage() const
    {
        pollfd descriptors[] = {{m_netlink, POLLIN, 0}, {m_wake, POLLIN, 0}};
        int ready = 0;
        do {
            ready = ::poll(descriptors, 2, -1);
        } while (ready < 0 && errno == EINTR);
        if (ready <= 0 || descriptors[1].revents != 0)
            return false;
        // The content does not matter, nor that some were lost (ENOBUFS): the flags are read anew.
        char message[8192];
        while (::recv(m_netlink, message, sizeof message, 0) > 0 || errno == ENOBUFS || errno == EINTR) {
        }
        return true;
    }

    const std::function<void()> m_changed;
    int m_netlink = -1;
    int m_wake = -1;
    std::atomic<bool> m_ended{false};
    std::mutex m_callMutex;
    static thread_local const State* m_calling;
};

thread_local const NetlinkWatch::State* NetlinkWatch::State::m_calling = nullptr;

std::unique_ptr<NetlinkWatch> NetlinkWatch::start(std::function<void()> changed)
{
    const auto state = std::make_shared<State>(std::move(changed));
    if (!state->open() || !startDetachedThread("virlo-netlink", [state] { state->run(); }))
        return nullptr;
    return std::unique_ptr<NetlinkWatch>(new NetlinkWatch(state));
}

NetlinkWatch::NetlinkWatch(std::shared_ptr<State> state) : m_state(std::move(state)) {}

NetlinkWatch::~NetlinkWatch()
{
    m_state->end();
}

} // namespace virlo
