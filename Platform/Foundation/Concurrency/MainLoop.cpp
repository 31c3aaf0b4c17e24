#include "MainLoop.h"

#include "BuiltInMainLoop.h"

#include <atomic>
#include <thread>
#include <utility>

namespace virlo
{

namespace
{

constinit std::atomic<MainLoop*> currentLoop = nullptr;
const std::thread::id mainThread = std::this_thread::get_id();

} // namespace

MainLoop& MainLoop::shared()
{
    if (MainLoop* const loop = currentLoop.load(std::memory_order_acquire))
        return *loop;
    return BuiltInMainLoop::shared();
}

void MainLoop::setShared(MainLoop* loop)
{
    currentLoop.store(loop, std::memory_order_release);
}

bool MainLoop::isMainThread()
{
    // `mainThread` is still empty while static initialisers run, and those run on the main thread.
    return mainThread == std::this_thread::get_id() || mainThread == std::thread::id();
}

void MainLoop::performOnMain(std::function<void()> work)
{
    if (isMainThread())
        work();
    else
        shared().post(std::move(work));
}

} // namespace virlo
