#pragma once

#include <functional>
#include <memory>

namespace virlo
{

/// Reads the device's fonts once, off the main thread: the first text of a program waits for that, five to
/// twenty milliseconds, or hundreds where fontconfig has no cache yet. Qt's font lock is held meanwhile, so
/// text is created after `done` (ViewController::prepareView). Main thread.
class FontWarmUp
{
public:
    FontWarmUp();
    /// Waits for reading that is in progress, and prevents one that has not begun: Qt's fonts end with the
    /// application.
    ~FontWarmUp();

    /// Starts it, the first time; `done` is called on the main thread, in a later turn of its loop.
    void start(std::function<void()> done);

private:
    class State;
    std::shared_ptr<State> m_state;
};

} // namespace virlo
