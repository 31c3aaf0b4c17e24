#include "DetachedThread.h"

#include <csignal>
#include <pthread.h>
#include <system_error>
#include <thread>
#include <utility>

namespace virlo
{

bool startDetachedThread(const char* name, std::function<void()> body)
{
    // The mask is inherited. Set before the thread is made, it leaves no moment in which the new thread could
    // receive a signal.
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    bool started = true;
    try {
        std::thread thread(std::move(body));
        pthread_setname_np(thread.native_handle(), name);
        thread.detach();
    } catch (const std::system_error&) {
        started = false;
    }
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    return started;
}

} // namespace virlo
