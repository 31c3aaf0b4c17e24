#include "KernelNetworkFlags.h"

#include "NetlinkWatch.h"

#include <arpa/inet.h>
#include <ifaddrs.h>
#include <linux/netlink.h>
#include <linux/rtnetlink.h>
#include <net/if.h>
#include <netinet/in.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <fstream>
#include <string_view>

namespace virlo
{

namespace
{
// Public addresses that nobody owns: only the route to them is read.
constexpr std::uint32_t publicAddress = 0xCB007101;                                          // 203.0.113.1
constexpr in6_addr publicAddress6 = {{{0x20, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1}}}; // 2000::1

class Descriptor
{
public:
    explicit Descriptor(int value) : m_value(value) {}

    ~Descriptor()
    {
        if (m_value >= 0)
            ::close(m_value);
    }

    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    operator int() const { return m_value; } // NOLINT(google-explicit-constructor)

private:
    int m_value;
};

struct Route {
    bool exists = false;
    bool local = false;
    bool direct = true;
    int link = 0;
};

Route readRoute(const nlmsghdr& header)
{
    const auto* message = static_cast<const rtmsg*>(NLMSG_DATA(&header));
    Route route;
    route.exists = true;
    route.local = message->rtm_type == RTN_LOCAL;
    auto left = static_cast<int>(RTM_PAYLOAD(&header));
    for (const auto* attribute = RTM_RTA(message); RTA_OK(attribute, left);
         attribute = RTA_NEXT(attribute, left)) {
        if (attribute->rta_type == RTA_OIF && RTA_PAYLOAD(attribute) >= sizeof route.link)
            std::memcpy(&route.link, RTA_DATA(attribute), sizeof route.link);
        else if (attribute->rta_type == RTA_GATEWAY || attribute->rta_type == RTA_VIA)
            route.direct = false;
    }
    return route;
}

/// Nothing where the kernel cannot be queried.
std::optional<Route> routeTo(int family, const void* address, std::size_t addressSize)
{
    const Descriptor socket(::socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC, NETLINK_ROUTE));
    if (socket < 0)
        return std::nullopt;

    struct {
        nlmsghdr header;
        rtmsg message;
        rtattr attribute;
        unsigned char address[sizeof(in6_addr)];
    } request{};

    request.header.nlmsg_len = static_cast<std::uint32_t>(offsetof(decltype(request), address) + addressSize);
    request.header.nlmsg_type = RTM_GETROUTE;
    request.header.nlmsg_flags = NLM_F_REQUEST;
    request.message.rtm_family = static_cast<unsigned char>(family);
    request.message.rtm_dst_len = static_cast<unsigned char>(addressSize * 8);
    request.attribute.rta_type = RTA_DST;
    request.attribute.rta_len = static_cast<unsigned short>(RTA_LENGTH(addressSize));
    std::memcpy(request.address, address, addressSize);
    sockaddr_nl kernel{};
    kernel.nl_family = AF_NETLINK;
    if (::sendto(socket, &request, request.header.nlmsg_len, 0, reinterpret_cast<const sockaddr*>(&kernel),
                 sizeof kernel) < 0)
        return std::nullopt;

    // The kernel has replied by the time `sendto` returns.
    alignas(nlmsghdr) char reply[4096];
    const ssize_t size = ::recv(socket, reply, sizeof reply, MSG_DONTWAIT);
    const auto& header = *reinterpret_cast<const nlmsghdr*>(reply);
    if (size < 0 || !NLMSG_OK(&header, static_cast<std::size_t>(size)))
        return std::nullopt;
    if (header.nlmsg_type == RTM_NEWROUTE)
        return readRoute(header);
    if (header.nlmsg_type != NLMSG_ERROR)
        return std::nullopt;
    switch (-static_cast<const nlmsgerr*>(NLMSG_DATA(&header))->error) {
    case ENETUNREACH:
    case EHOSTUNREACH:
    case EACCES: // a prohibit route
    case EINVAL: // a blackhole route
    case EAFNOSUPPORT:
        return Route();
    default:
        return std::nullopt;
    }
}

bool isModem(std::string_view name)
{
    for (const std::string_view prefix : {"wwan", "rmnet", "ccmni"}) {
        if (name.starts_with(prefix))
            return true;
    }
    std::ifstream facts("/sys/class/net/" + std::string(name) + "/uevent");
    for (std::string line; std::getline(facts, line);) {
        if (line == "DEVTYPE=wwan")
            return true;
    }
    return false;
}

std::optional<std::uint32_t> flagsForRoute(int family, const void* address, std::size_t addressSize)
{
    const auto route = routeTo(family, address, addressSize);
    if (!route)
        return std::nullopt;
    if (!route->exists)
        return 0;
    if (route->local)
        return NetworkFlagReachable | NetworkFlagIsLocalAddress;

    // By ioctl, which needs no lock: a netlink request for a link waits while another process configures one.
    const Descriptor socket(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    ifreq link{};
    link.ifr_ifindex = route->link;
    if (::ioctl(socket, SIOCGIFNAME, &link) < 0)
        return 0;
    const std::string name(link.ifr_name, ::strnlen(link.ifr_name, sizeof link.ifr_name));
    if (::ioctl(socket, SIOCGIFFLAGS, &link) < 0 || (link.ifr_flags & IFF_RUNNING) == 0)
        return 0; // no carrier, as with an unplugged cable

    std::uint32_t flags = NetworkFlagReachable;
    if (route->direct)
        flags |= NetworkFlagIsDirect;
    if ((link.ifr_flags & IFF_POINTOPOINT) != 0)
        flags |= NetworkFlagTransientConnection;
    if (isModem(name))
        flags |= NetworkFlagIsWWAN;
    return flags;
}

std::optional<std::uint32_t> flagsForAddress4(std::uint32_t address)
{
    const in_addr network{htonl(address)};
    return flagsForRoute(AF_INET, &network, sizeof network);
}

std::optional<std::uint32_t> flagsForInternet()
{
    const auto flags = flagsForAddress4(publicAddress);
    if ((flags.value_or(0) & NetworkFlagReachable) != 0)
        return flags;
    const auto flags6 = flagsForRoute(AF_INET6, &publicAddress6, sizeof publicAddress6);
    return flags6 ? flags6 : flags;
}

/// Whether this machine is on a local network. Linux has no route to the link-local network by default,
/// though every such link reaches its neighbours.
bool hasLocalNetwork()
{
    ifaddrs* first = nullptr;
    if (::getifaddrs(&first) != 0)
        return false;
    bool found = false;
    for (const ifaddrs* entry = first; entry != nullptr && !found; entry = entry->ifa_next) {
        constexpr unsigned needed = IFF_UP | IFF_RUNNING | IFF_BROADCAST;
        found = entry->ifa_addr != nullptr && entry->ifa_addr->sa_family == AF_INET &&
                (entry->ifa_flags & needed) == needed && !isModem(entry->ifa_name);
    }
    ::freeifaddrs(first);
    return found;
}
} // namespace

std::optional<std::uint32_t> KernelNetworkFlags::flagsForAddress(std::uint32_t address) const
{
    if (address == INADDR_ANY)
        return flagsForInternet();
    const auto flags = flagsForAddress4(address);
    const bool linkLocal = (address >> 16) == 0xA9FE; // 169.254.0.0/16
    if (linkLocal && flags && (*flags & (NetworkFlagIsDirect | NetworkFlagIsLocalAddress)) == 0 &&
        hasLocalNetwork())
        return NetworkFlagReachable | NetworkFlagIsDirect;
    return flags;
}

std::optional<std::uint32_t> KernelNetworkFlags::flagsForHost(const std::string& name) const
{
    in_addr address{};
    if (::inet_pton(AF_INET, name.c_str(), &address) == 1)
        return flagsForAddress(ntohl(address.s_addr));
    if (name == "localhost" || name.ends_with(".localhost") || name == "::1" || name == "[::1]")
        return flagsForAddress(INADDR_LOOPBACK);
    return flagsForInternet();
}

std::unique_ptr<NetworkFlagsSource::Watch> KernelNetworkFlags::watch(std::function<void()> changed)
{
    return NetlinkWatch::start(std::move(changed));
}

} // namespace virlo
