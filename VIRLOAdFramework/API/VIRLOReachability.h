#pragma once

#include "NetworkFlags.h"

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <variant>

struct sockaddr;

/// Posted with the reachability object as its sender and no user info.
inline constexpr const char* kVIRLOReachabilityChangedNotification =
    "kVIRLONetworkReachabilityChangedNotification";

/// Whether a destination is reachable over the network, and, while its notifier runs, notifications of
/// changes. Owned by its user. Each query reads the flags from `virlo::NetworkFlagsSource::shared()`, without
/// sending anything to the destination, and on success writes one line to the system log; any thread.
class VIRLOReachability : public std::enable_shared_from_this<VIRLOReachability>
{
public:
    enum NetworkStatus { NotReachable = 0, ReachableViaWiFi = 1, ReachableViaWWAN = 2 };

    /// Null for an empty name.
    [[nodiscard]] static std::shared_ptr<VIRLOReachability>
    reachabilityWithHostName(const std::string& hostName);
    /// Null for an address other than IPv4.
    [[nodiscard]] static std::shared_ptr<VIRLOReachability> reachabilityWithAddress(const sockaddr& address);
    [[nodiscard]] static std::shared_ptr<VIRLOReachability> reachabilityForInternetConnection();
    /// The link-local network 169.254.0.0, evaluated by `localWiFiStatusForFlags`.
    [[nodiscard]] static std::shared_ptr<VIRLOReachability> reachabilityForLocalWiFi();

    ~VIRLOReachability();
    VIRLOReachability(const VIRLOReachability&) = delete;
    VIRLOReachability& operator=(const VIRLOReachability&) = delete;

    /// From now on every change of the flags posts the notification on the main thread. False if the system
    /// cannot be watched. Starting twice is starting once.
    bool startNotifier();
    /// After it has returned on the main thread nothing is posted any more.
    void stopNotifier();

    /// `NotReachable` where the flags cannot be read.
    [[nodiscard]] NetworkStatus currentReachabilityStatus() const;
    [[nodiscard]] bool connectionRequired() const;

    [[nodiscard]] NetworkStatus networkStatusForFlags(std::uint32_t flags) const;
    [[nodiscard]] NetworkStatus localWiFiStatusForFlags(std::uint32_t flags) const;

    [[nodiscard]] bool alwaysReturnLocalWiFiStatus() const noexcept { return m_alwaysReturnLocalWiFiStatus; }

private:
    /// An IPv4 address in host byte order, or a host's name.
    using Destination = std::variant<std::uint32_t, std::string>;

    explicit VIRLOReachability(Destination destination);

    [[nodiscard]] std::optional<std::uint32_t> currentFlags() const;
    /// Whether they differ from those of the last notification.
    [[nodiscard]] bool updateNotifiedFlags();

    Destination m_reachabilityRef;
    bool m_alwaysReturnLocalWiFiStatus = false;
    mutable std::mutex m_mutex;
    std::optional<std::uint32_t> m_notifiedFlags;
    std::unique_ptr<virlo::NetworkFlagsSource::Watch> m_watch;
};
