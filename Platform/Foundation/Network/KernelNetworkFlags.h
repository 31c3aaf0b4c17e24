#pragma once

#include "NetworkFlags.h"

namespace virlo
{

/// Flags from the kernel's own answer to "by which way would a packet go there": reachable where there is a
/// route over a link that carries, direct where it needs no gateway, local where it stays on this machine,
/// WWAN where it leaves over a modem. The internet at large is reachable where IPv4 or IPv6 has a way to a
/// public address. Nothing is sent, and no lock of the kernel's network configuration is waited for.
class KernelNetworkFlags : public NetworkFlagsSource
{
public:
    [[nodiscard]] std::optional<std::uint32_t> flagsForAddress(std::uint32_t address) const override;
    /// A name that is an IPv4 address is asked for as such.
    [[nodiscard]] std::optional<std::uint32_t> flagsForHost(const std::string& name) const override;
    [[nodiscard]] std::unique_ptr<Watch> watch(std::function<void()> changed) override;
};

} // namespace virlo
