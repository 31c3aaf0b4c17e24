#pragma once

#include <shared_mutex>

namespace virlo
{

/// A piece of work with Qt's classes on a thread other than the main one. Where a host calls exit() on its
/// main thread, the process's statics, Qt's among them, wait for the work under way, and none begins after.
/// Not to be nested.
class QtWork
{
public:
    QtWork();

    /// False once the process ends: leave the work.
    [[nodiscard]] bool mayBegin() const;

    /// Waits for what is under way and admits no more.
    static void end();

private:
    std::shared_lock<std::shared_mutex> m_underWay;
};

} // namespace virlo
