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
/// netlink; a host with knowledge of its own (a box whose app talks to loopback only) puts its own in force.
/// Any thread; no call waits for the network.
class VIRLO_EXPORT NetworkFlagsSource
{
public:
    /// Ends the watch with this object: its end waits for a call under way (unless it comes from inside that
    /// call), and none starts afterwards.
    class Watch
    {
    public:
        virtual ~Watch() = default;
    };

    virtual ~NetworkFlagsSource() = default;

    /// For an IPv4 address in host byte order; 0 (0.0.0.0) asks for the internet at large, that is for a
    /// default route. Nothing where the flags cannot be read.
    [[nodiscard]] virtual std::optional<std::uint32_t> flagsForAddress(std::uint32_t address) const = 0;
    /// For a host name. Names are not resolved here: a loopback name asks for the loopback, any other for the
    /// internet.
    [[nodiscard]] virtual std::optional<std::uint32_t> flagsForHost(const std::string& name) const = 0;
    /// Calls `changed` on a thread of the source's own whenever routes, addresses or links change (bursts are
    /// joined); null where that cannot be watched.
    [[nodiscard]] virtual std::unique_ptr<Watch> watch(std::function<void()> changed) = 0;

    [[nodiscard]] static NetworkFlagsSource& shared();
    /// Null puts the system's back. Not owned; set before the library starts. Workers may ask it after
    /// `main`, so it lives as long as the process.
    static void setShared(NetworkFlagsSource* source);
};

/// A source that always answers the same flags and never changes.
[[nodiscard]] VIRLO_EXPORT std::unique_ptr<NetworkFlagsSource> makeFixedNetworkFlags(std::uint32_t flags);

} // namespace virlo
