#pragma once

#include "Clock.h"

#include <functional>

namespace virlo
{

/// The main thread's loop. A program with a loop of its own (Qt's) puts an adapter in force; a program
/// without one gets the built-in loop and drives it by `runUntil`. `post` may be called from any thread and
/// never runs its work on the caller's stack; work runs in the order posted.
class MainLoop
{
public:
    virtual ~MainLoop() = default;

    virtual void post(std::function<void()> work) = 0;
    /// Runs posted work until `done` answers true or `limit` of real time has passed; the answer is `done`'s
    /// last. It is asked at the start and after each piece of work, so what it looks at is best changed by
    /// posted work. Main thread.
    virtual bool runUntil(const std::function<bool()>& done, Seconds limit) = 0;

    [[nodiscard]] static MainLoop& shared();
    /// Puts `loop` in force, or the built-in one again for null. Work already posted stays with its loop. Not
    /// owned.
    static void setShared(MainLoop* loop);
    /// Whether the caller is on the main thread: the one that ran the process's static initialisers.
    [[nodiscard]] static bool isMainThread();
    /// At once when on the main thread, else posted.
    static void performOnMain(std::function<void()> work);
};

} // namespace virlo
