#pragma once

#include "NetworkFlags.h"

namespace virlo
{

/// Flags from the kernel's route to a destination: reachable where the route's link has a carrier, direct
/// where it needs no gateway, local where it stays on this machine, WWAN where it leaves over a modem. The
/// internet is reachable where IPv4 or IPv6 has a route to a public address. Nothing is sent, and no lock of
/// the kernel's network configuration is waited for.
class KernelNetworkFlags : public NetworkFlagsSource
{
public:
    [[nodiscard]] std::optional<std::uint32_t> flagsForAddress(std::uint32_t address) const override;
    /// A name that is an IPv4 address counts as one.
    [[nodiscard]] std::optional<std::uint32_t> flagsForHost(const std::string& name) const override;
    [[nodiscard]] std::unique_ptr<Watch> watch(std::function<void()> changed) override;
};

} // namespace virlo
