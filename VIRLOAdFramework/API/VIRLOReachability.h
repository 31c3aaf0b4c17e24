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

/// Whether a destination is usable over the network, and, while its notifier runs, announcements of changes.
/// Owned by whoever asks; the flags come from `virlo::NetworkFlagsSource::shared()` at the time of each
/// question. Questions are answered at once from what the system knows, on any thread, and each that could
/// read flags writes one line to the system's log. Nothing is sent to the destination.
class VIRLOReachability : public std::enable_shared_from_this<VIRLOReachability>
{
public:
    enum NetworkStatus { NotReachable = 0, ReachableViaWiFi = 1, ReachableViaWWAN = 2 };

    /// Nothing where the name is empty.
    [[nodiscard]] static std::shared_ptr<VIRLOReachability>
    reachabilityWithHostName(const std::string& hostName);
    /// Nothing where the address is none of IPv4.
    [[nodiscard]] static std::shared_ptr<VIRLOReachability> reachabilityWithAddress(const sockaddr& address);
    [[nodiscard]] static std::shared_ptr<VIRLOReachability> reachabilityForInternetConnection();
    /// Asks for the link-local network 169.254.0.0 and judges by `localWiFiStatusForFlags`.
    [[nodiscard]] static std::shared_ptr<VIRLOReachability> reachabilityForLocalWiFi();

    ~VIRLOReachability();
    VIRLOReachability(const VIRLOReachability&) = delete;
    VIRLOReachability& operator=(const VIRLOReachability&) = delete;

    /// From here on every change of this destination's flags posts the notification on the main thread, by
    /// the main loop, the only run loop there is. False where the system cannot be watched. A second start is
    /// no second watch.
    bool startNotifier();
    /// Once it has returned on the main thread nothing is posted any more.
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
