#include "NetworkFlags.h"

#include "KernelNetworkFlags.h"

#include <atomic>

namespace virlo
{

namespace
{
std::atomic<NetworkFlagsSource*> currentSource{nullptr};

class FixedNetworkFlags : public NetworkFlagsSource
{
public:
    explicit FixedNetworkFlags(std::uint32_t flags) : m_flags(flags) {}

    std::optional<std::uint32_t> flagsForAddress(std::uint32_t) const override { return m_flags; }

    std::optional<std::uint32_t> flagsForHost(const std::string&) const override { return m_flags; }

    std::unique_ptr<Watch> watch(std::function<void()>) override { return std::make_unique<Watch>(); }

private:
    std::uint32_t m_flags;
};
} // namespace

NetworkFlagsSource& NetworkFlagsSource::shared()
{
    if (NetworkFlagsSource* source = currentSource)
        return *source;
    static auto* const kernel = new KernelNetworkFlags; // outlives every static object that may call it
    return *kernel;
}

void NetworkFlagsSource::setShared(NetworkFlagsSource* source)
{
    currentSource = source;
}

std::unique_ptr<NetworkFlagsSource> makeFixedNetworkFlags(std::uint32_t flags)
{
    return std::make_unique<FixedNetworkFlags>(flags);
}

} // namespace virlo
