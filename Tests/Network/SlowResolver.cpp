#include "SlowResolver.h"

#include <dlfcn.h>
#include <netdb.h>

#include <condition_variable>
#include <cstring>
#include <mutex>

namespace
{
std::mutex mutex;
std::condition_variable changed;
bool held = false;
int asked = 0;
int waiting = 0;
} // namespace

extern "C" __attribute__((visibility("default"))) int getaddrinfo(const char* node, const char* service,
                                                                  const addrinfo* hints, addrinfo** result)
{
    if (node != nullptr && std::strcmp(node, "slow.invalid") == 0) {
        std::unique_lock lock(mutex);
        ++asked;
        ++waiting;
        changed.wait(lock, [] { return !held; });
        --waiting;
        changed.notify_all();
        return EAI_AGAIN;
    }
    using Function = int (*)(const char*, const char*, const addrinfo*, addrinfo**);
    static const auto next = reinterpret_cast<Function>(::dlsym(RTLD_NEXT, "getaddrinfo"));
    return next(node, service, hints, result);
}

namespace virlo::test
{

SlowResolver::SlowResolver()
{
    const std::lock_guard lock(mutex);
    held = true;
    asked = 0;
}

SlowResolver::~SlowResolver()
{
    std::unique_lock lock(mutex);
    held = false;
    changed.notify_all();
    changed.wait(lock, [] { return waiting == 0; });
}

bool SlowResolver::wasAsked() const
{
    const std::lock_guard lock(mutex);
    return asked > 0;
}

} // namespace virlo::test
