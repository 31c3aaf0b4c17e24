#include "QtWork.h"

#include <mutex>

namespace virlo
{

namespace
{

struct State {
    std::shared_mutex running;
    bool ended = false; ///< under `running`
};

/// Never destroyed: workers may ask during static destruction.
State& state()
{
    static auto* const shared = new State;
    return *shared;
}

} // namespace

QtWork::QtWork() : m_running(state().running) {}

bool QtWork::mayBegin() const
{
    return !state().ended;
}

void QtWork::end()
{
    const std::unique_lock all(state().running);
    state().ended = true;
}

} // namespace virlo
