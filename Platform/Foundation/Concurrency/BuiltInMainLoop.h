#pragma once

#include "MainLoop.h"

#include <condition_variable>
#include <deque>
#include <mutex>

namespace virlo
{

/// The main loop of a program that has no other. It sleeps while nothing is posted. The one instance is never
/// destroyed: workers may post to it until the process is gone.
class BuiltInMainLoop : public MainLoop
{
public:
    [[nodiscard]] static BuiltInMainLoop& shared();

    void post(std::function<void()> work) override;
    bool runUntil(const std::function<bool()>& done, Seconds limit) override;

private:
    BuiltInMainLoop() = default;

    std::mutex m_mutex;
    std::condition_variable m_posted;
    std::deque<std::function<void()>> m_waiting;
};

} // namespace virlo
