#include "VIRLOReachability.h"

#include "MainLoop.h"
#include "NotificationCenter.h"
#include "StringFormat.h"
#include "SystemLog.h"

#include <netinet/in.h>

#include <cstring>
#include <utility>

using virlo::NetworkFlagsSource;

namespace
{
constexpr std::uint32_t linkLocalNetwork = 0xA9FE0000; // 169.254.0.0

// Deliberate: printed at every status query, whatever the logger's level.
void printReachabilityFlags(std::uint32_t flags, const char* caller)
{
    const auto mark = [flags](virlo::NetworkFlag flag, char letter) {
        return (flags & flag) != 0 ? letter : '-';
    };
    virlo::systemLog(virlo::format(
        "Reachability Flag Status: %c%c %c%c%c%c%c%c%c %s\n", mark(virlo::NetworkFlagIsWWAN, 'W'),
        mark(virlo::NetworkFlagReachable, 'R'), mark(virlo::NetworkFlagTransientConnection, 't'),
        mark(virlo::NetworkFlagConnectionRequired, 'c'), mark(virlo::NetworkFlagConnectionOnTraffic, 'C'),
        mark(virlo::NetworkFlagInterventionRequired, 'i'), mark(virlo::NetworkFlagConnectionOnDemand, 'D'),
        mark(virlo::NetworkFlagIsLocalAddress, 'l'), mark(virlo::NetworkFlagIsDirect, 'd'), caller));
}
} // namespace

VIRLOReachability::VIRLOReachability(Destination destination) : m_reachabilityRef(std::move(destination)) {}

VIRLOReachability::~VIRLOReachability()
{
    stopNotifier();
}

std::shared_ptr<VIRLOReachability> VIRLOReachability::reachabilityWithHostName(const std::string& hostName)
{
    if (hostName.empty())
        return nullptr;
    return std::shared_ptr<VIRLOReachability>(new VIRLOReachability(hostName));
}

std::shared_ptr<VIRLOReachability> VIRLOReachability::reachabilityWithAddress(const sockaddr& address)
{
    if (address.sa_family != AF_INET)
        return nullptr;
    sockaddr_in internet{};
    std::memcpy(&internet, &address, sizeof internet);
    return std::shared_ptr<VIRLOReachability>(new VIRLOReachability(ntohl(internet.sin_addr.s_addr)));
}

std::shared_ptr<VIRLOReachability> VIRLOReachability::reachabilityForInternetConnection()
{
    return std::shared_ptr<VIRLOReachability>(new VIRLOReachability(std::uint32_t{INADDR_ANY}));
}

std::shared_ptr<VIRLOReachability> VIRLOReachability::reachabilityForLocalWiFi()
{
    std::shared_ptr<VIRLOReachability> reachability(new VIRLOReachability(linkLocalNetwork));
    reachability->m_alwaysReturnLocalWiFiStatus = true;
    return reachability;
}

bool VIRLOReachability::startNotifier()
{
    const std::lock_guard lock(m_mutex);
    if (m_watch)
        return true;
    m_notifiedFlags = currentFlags();
    m_watch = NetworkFlagsSource::shared().watch([weakSelf = weak_from_this()] {
        // Many announcements of the system do not concern this destination.
        if (const auto changed = weakSelf.lock(); !changed || !changed->updateNotifiedFlags())
            return;
        virlo::MainLoop::shared().post([weakSelf] {
            const auto self = weakSelf.lock();
            if (!self)
                return;
            {
                const std::lock_guard selfLock(self->m_mutex);
                if (!self->m_watch)
                    return;
            }
            virlo::NotificationCenter::defaultCenter().post(kVIRLOReachabilityChangedNotification,
                                                            self.get());
        });
    });
    return m_watch != nullptr;
}

bool VIRLOReachability::updateNotifiedFlags()
{
    const auto flags = currentFlags();
    const std::lock_guard lock(m_mutex);
    return std::exchange(m_notifiedFlags, flags) != flags;
}

void VIRLOReachability::stopNotifier()
{
    std::unique_ptr<NetworkFlagsSource::Watch> ended;
    const std::lock_guard lock(m_mutex);
    ended.swap(m_watch);
}

VIRLOReachability::NetworkStatus VIRLOReachability::currentReachabilityStatus() const
{
    const auto flags = currentFlags();
    if (!flags)
        return NotReachable;
    return m_alwaysReturnLocalWiFiStatus ? localWiFiStatusForFlags(*flags) : networkStatusForFlags(*flags);
}

bool VIRLOReachability::connectionRequired() const
{
    return (currentFlags().value_or(0) & virlo::NetworkFlagConnectionRequired) != 0;
}

VIRLOReachability::NetworkStatus VIRLOReachability::networkStatusForFlags(std::uint32_t flags) const
{
    printReachabilityFlags(flags, "networkStatusForFlags");
    if ((flags & virlo::NetworkFlagReachable) == 0)
        return NotReachable;
    if ((flags & virlo::NetworkFlagIsWWAN) != 0)
        return ReachableViaWWAN;
    const bool connectsByItself =
        (flags & (virlo::NetworkFlagConnectionOnTraffic | virlo::NetworkFlagConnectionOnDemand)) != 0;
    if (connectsByItself && (flags & virlo::NetworkFlagInterventionRequired) == 0)
        return ReachableViaWiFi;
    return (flags & virlo::NetworkFlagConnectionRequired) == 0 ? ReachableViaWiFi : NotReachable;
}

VIRLOReachability::NetworkStatus VIRLOReachability::localWiFiStatusForFlags(std::uint32_t flags) const
{
    printReachabilityFlags(flags, "localWiFiStatusForFlags");
    constexpr std::uint32_t local = virlo::NetworkFlagReachable | virlo::NetworkFlagIsDirect;
    return (flags & local) == local ? ReachableViaWiFi : NotReachable;
}

std::optional<std::uint32_t> VIRLOReachability::currentFlags() const
{
    const NetworkFlagsSource& source = NetworkFlagsSource::shared();
    if (const auto* name = std::get_if<std::string>(&m_reachabilityRef))
        return source.flagsForHost(*name);
    return source.flagsForAddress(std::get<std::uint32_t>(m_reachabilityRef));
}
