#include "QtWork.h"

#include <mutex>

namespace virlo
{

namespace
{

struct State {
    std::shared_mutex underWay;
    bool ended = false; ///< under `underWay`
};

/// Never destroyed: workers ask also while the process's statics go.
State& state()
{
    static auto* const shared = new State;
    return *shared;
}

} // namespace

QtWork::QtWork() : m_underWay(state().underWay) {}

bool QtWork::mayBegin() const
{
    return !state().ended;
}

void QtWork::end()
{
    const std::unique_lock all(state().underWay);
    state().ended = true;
}

} // namespace virlo
