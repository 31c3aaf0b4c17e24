#pragma once

#include <functional>
#include <memory>

namespace virlo
{

/// Has the device's fonts looked through once, off the main thread: the first text of a program waits for
/// that, some five to twenty milliseconds. Main thread.
class FontWarmUp
{
public:
    FontWarmUp();
    /// Waits for a look-through under way (one that has not begun never does): Qt's fonts end with the
    /// application.
    ~FontWarmUp();

    /// Starts it, the first time; `done` is called on the main thread, in a later turn of its loop.
    void start(std::function<void()> done);

private:
    class State;
    std::shared_ptr<State> m_state;
};

} // namespace virlo
