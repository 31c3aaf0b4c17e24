#pragma once

#include <shared_mutex>

namespace virlo
{

/// A task that uses Qt's classes on a thread other than the main one. When the process exits, the shutdown
/// waits for running tasks before Qt's static objects are destroyed, and none begins after. Not to be nested.
class QtWork
{
public:
    QtWork();

    /// False once the process exits: do nothing then.
    [[nodiscard]] bool mayBegin() const;

    /// Waits for running tasks and lets no more begin.
    static void end();

private:
    std::shared_lock<std::shared_mutex> m_running;
};

} // namespace virlo
