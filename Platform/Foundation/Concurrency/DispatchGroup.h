#pragma once

#include "GlobalQueue.h"

#include <functional>
#include <memory>

namespace virlo
{

/// Counts unfinished tasks and notifies when none is left. Copies share one count. Any thread.
class DispatchGroup
{
public:
    DispatchGroup();

    void enter();
    void leave();
    /// Calls `work` once on `queue` when the count is, or becomes, zero.
    void notify(GlobalQueue& queue, std::function<void()> work);

private:
    class State;
    std::shared_ptr<State> m_state;
};

} // namespace virlo
