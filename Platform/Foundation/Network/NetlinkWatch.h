#pragma once

#include "NetworkFlags.h"

#include <functional>
#include <memory>

namespace virlo
{

/// Listens for the kernel's messages about changed links, addresses and routes on its own thread, which
/// sleeps between them.
class NetlinkWatch : public NetworkFlagsSource::Watch
{
public:
    /// Null where the kernel or the system's limits refuse.
    [[nodiscard]] static std::unique_ptr<NetlinkWatch> start(std::function<void()> changed);

    ~NetlinkWatch() override;
    NetlinkWatch(const NetlinkWatch&) = delete;
    NetlinkWatch& operator=(const NetlinkWatch&) = delete;

private:
    class State;

    explicit NetlinkWatch(std::shared_ptr<State> state);

    std::shared_ptr<State> m_state;
};

} // namespace virlo
