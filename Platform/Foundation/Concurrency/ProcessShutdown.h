#pragma once

namespace virlo
{

/// Stops the library's threads when the process exits, in one order, while the static objects and libraries
/// that those threads use still exist. Runs once: on the main thread before any `atexit` handler and static
/// destructor, or, where `exit` is called on another thread, as an `atexit` handler.
class ProcessShutdown
{
public:
    /// In the order in which they stop: screens use the video player, the player reads from the network.
    enum class Stage { Screens, Media, Network };

    /// Registers what stops a stage. Each component registers once, when its first thread or library object
    /// is about to be made. False once the process is exiting, or where the system refuses: make nothing.
    /// Any thread.
    [[nodiscard]] static bool add(Stage stage, void (*stop)());

private:
    class MainThreadEnd;

    static void run();
};

} // namespace virlo
