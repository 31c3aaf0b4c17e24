#include "ProcessShutdown.h"

#include "MainLoop.h"

#include <cstdlib>
#include <map>
#include <mutex>

namespace virlo
{

namespace
{

struct Steps {
    std::mutex mutex;
    std::map<ProcessShutdown::Stage, void (*)()> byStage;
    bool exiting = false;
};

/// Never destroyed: other threads may register until the process is gone.
Steps& steps()
{
    static auto* const shared = new Steps;
    return *shared;
}

} // namespace

/// `exit` destroys the calling thread's `thread_local` objects before everything else.
class ProcessShutdown::MainThreadEnd
{
public:
    MainThreadEnd() = default;

    ~MainThreadEnd() { run(); }

    MainThreadEnd(const MainThreadEnd&) = delete;
    MainThreadEnd& operator=(const MainThreadEnd&) = delete;
};

bool ProcessShutdown::add(Stage stage, void (*stop)())
{
    if (MainLoop::isMainThread())
        thread_local const MainThreadEnd mainThreadEnd;
    const std::lock_guard lock(steps().mutex);
    // Each step anew: the handlers that a library registered before this step then run after it.
    if (steps().exiting || std::atexit(&ProcessShutdown::run) != 0)
        return false;
    steps().byStage[stage] = stop;
    return true;
}

void ProcessShutdown::run()
{
    std::map<Stage, void (*)()> due;
    {
        const std::lock_guard lock(steps().mutex);
        steps().exiting = true;
        due.swap(steps().byStage);
    }
    for (const auto& [stage, stop] : due)
        stop();
}

} // namespace virlo
