#pragma once

#include "Export.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace virlo
{

/// How a destination can be reached, as bits.
enum NetworkFlag : std::uint32_t {
    NetworkFlagTransientConnection = 0x1,
    NetworkFlagReachable = 0x2,
    NetworkFlagConnectionRequired = 0x4,
    NetworkFlagConnectionOnTraffic = 0x8,
    NetworkFlagInterventionRequired = 0x10,
    NetworkFlagConnectionOnDemand = 0x20,
    NetworkFlagIsLocalAddress = 0x10000,
    NetworkFlagIsDirect = 0x20000,
    NetworkFlagIsWWAN = 0x40000,
};

/// Where reachability flags come from. The system's source reads the kernel's routes and links and listens to
/// netlink; a host that knows better (a device whose app uses the loopback only) sets its own. Any thread; no
/// call waits for the network.
class VIRLO_EXPORT NetworkFlagsSource
{
public:
    /// The watch ends with this object: the destructor waits for a running call, unless it is inside that
    /// call, and no call starts afterwards.
    class Watch
    {
    public:
        virtual ~Watch() = default;
    };

    virtual ~NetworkFlagsSource() = default;

    /// For an IPv4 address in host byte order; 0 (0.0.0.0) means the internet, that is a default route.
    /// Nothing where the flags cannot be read.
    [[nodiscard]] virtual std::optional<std::uint32_t> flagsForAddress(std::uint32_t address) const = 0;
    /// For a host name. Names are not resolved: a loopback name means the loopback, any other the internet.
    [[nodiscard]] virtual std::optional<std::uint32_t> flagsForHost(const std::string& name) const = 0;
    /// Calls `changed` on the source's own thread whenever routes, addresses or links change; one change may
    /// cause several calls. Null where that cannot be watched.
    [[nodiscard]] virtual std::unique_ptr<Watch> watch(std::function<void()> changed) = 0;

    [[nodiscard]] static NetworkFlagsSource& shared();
    /// Null restores the system's. Not owned; set before the library starts. Workers may call it after
    /// `main`, so it must live as long as the process.
    static void setShared(NetworkFlagsSource* source);
};

/// A source whose flags never change.
[[nodiscard]] VIRLO_EXPORT std::unique_ptr<NetworkFlagsSource> makeFixedNetworkFlags(std::uint32_t flags);

} // namespace virlo
