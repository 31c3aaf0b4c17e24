#pragma once

#include "Clock.h"
#include "Export.h"

#include <functional>

namespace virlo
{

/// The main thread's loop, on which the session's timers run. A program with another loop (Qt's) sets an
/// adapter; any other gets the built-in loop and drives it by `runUntil`, which may also be the wait between
/// two frames of its own loop. `post` may be called from any thread and never runs its work on the
/// caller's stack; work runs in the order posted.
class VIRLO_EXPORT MainLoop
{
public:
    virtual ~MainLoop() = default;

    virtual void post(std::function<void()> work) = 0;
    /// Runs posted work until `done` returns true or `limit` of real time has passed; returns the last result
    /// of `done`, which is called at the start and after each posted function. Main thread.
    virtual bool runUntil(const std::function<bool()>& done, Seconds limit) = 0;

    [[nodiscard]] static MainLoop& shared();
    /// Null restores the built-in one. Work already posted stays with its loop. Not owned.
    static void setShared(MainLoop* loop);
    /// Whether the caller is on the main thread: the one that ran the process's static initialisers.
    [[nodiscard]] static bool isMainThread();
    /// At once when on the main thread, else posted.
    static void performOnMain(std::function<void()> work);
};

} // namespace virlo
