#include "MediaRuntime.h"

#include "GstPlayback.h"
#include "GstVideoSource.h"

#include <gst/gst.h>

#include <algorithm>
#include <dirent.h>
#include <limits>
#include <sys/resource.h>

namespace virlo
{

namespace
{

/// Code that is loaded while the process tears its libraries down sets those up again that it needs, and they
/// abort. Only what waits for a sound device can take so long.
constexpr Seconds longestStop{5};

/// A pipeline opens about 20, its sound device a few more, and the transfer, the host and a second pipeline
/// open theirs meanwhile.
constexpr long neededDescriptors = 64;

long freeDescriptors()
{
    rlimit limit{};
    DIR* const folder = ::opendir("/proc/self/fd");
    if (folder == nullptr || ::getrlimit(RLIMIT_NOFILE, &limit) != 0)
        return 0;
    long open = 0;
    while (::readdir(folder) != nullptr)
        ++open;
    ::closedir(folder);
    return static_cast<long>(std::min<rlim_t>(limit.rlim_cur, std::numeric_limits<int>::max())) - open;
}

} // namespace

MediaRuntime& MediaRuntime::shared()
{
    static auto* const runtime = new MediaRuntime;
    return *runtime;
}

std::string MediaRuntime::prepare()
{
    {
        const std::lock_guard lock(m_mutex);
        if (m_ended)
            return "The process is exiting";
        ++m_preparing;
    }
    std::string failure;
    if (freeDescriptors() < neededDescriptors)
        failure = "Too few file descriptors are free";
    else
        std::call_once(m_once, [this] { initialise(); });
    const std::lock_guard lock(m_mutex);
    --m_preparing;
    m_left.notify_all();
    return failure.empty() ? m_failure : failure;
}

void MediaRuntime::initialise()
{
    GError* error = nullptr;
    if (gst_init_check(nullptr, nullptr, &error) == FALSE)
        m_failure = error != nullptr ? error->message : "GStreamer cannot be initialised";
    else
        GstVideoSource::registerElement();
    g_clear_error(&error);
}

bool MediaRuntime::enter(const std::shared_ptr<GstPlayback>& thread)
{
    const std::lock_guard lock(m_mutex);
    if (m_ended)
        return false;
    m_threads.push_back(thread);
    return true;
}

void MediaRuntime::leave(const GstPlayback& thread)
{
    std::shared_ptr<GstPlayback> left; // goes without the lock
    const std::lock_guard lock(m_mutex);
    const auto found = std::find_if(m_threads.begin(), m_threads.end(),
                                    [&](const auto& one) { return one.get() == &thread; });
    if (found != m_threads.end()) {
        left = std::move(*found);
        m_threads.erase(found);
    }
    m_left.notify_all();
}

bool MediaRuntime::drain(Seconds limit)
{
    std::unique_lock lock(m_mutex);
    return m_left.wait_for(lock, limit, [this] {
        return m_preparing == 0 && std::none_of(m_threads.begin(), m_threads.end(),
                                                [](const auto& thread) { return thread->isClosed(); });
    });
}

void MediaRuntime::stop()
{
    {
        const std::lock_guard lock(m_mutex);
        m_ended = true;
        for (const auto& thread : m_threads)
            thread->close();
    }
    static_cast<void>(drain(longestStop));
}

} // namespace virlo
