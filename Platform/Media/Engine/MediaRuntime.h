#pragma once

#include "Clock.h"

#include <condition_variable>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace virlo
{

class GstPlayback;

/// GStreamer in this process: set up with the first clip, and stopped before the process's statics go, since
/// the libraries that decode and decrypt tear their own down then. The one instance is never destroyed. Any
/// thread.
class MediaRuntime
{
public:
    [[nodiscard]] static MediaRuntime& shared();

    /// Sets GStreamer up, unless the process ends; takes some tens of milliseconds at the first call of a
    /// process, and seconds at the first on a device, where it scans its plug-ins. Never on the main thread.
    /// Returns what is wrong, or nothing: also with so few free file descriptors that GLib, which aborts the
    /// process when it gets none, might run out of them during playback.
    [[nodiscard]] std::string prepare();

    /// False once the process ends: the thread must not start.
    [[nodiscard]] bool enter(const std::shared_ptr<GstPlayback>& thread);
    void leave(const GstPlayback& thread);

    /// Waits until no thread is on its way out, nor GStreamer being set up, at most `limit`.
    bool drain(Seconds limit);

private:
    MediaRuntime() = default;
    [[nodiscard]] static bool registerShutdown();
    void initialise();
    void halt();

    std::once_flag m_once;
    std::string m_failure;
    std::mutex m_mutex;
    std::condition_variable m_left;
    std::vector<std::shared_ptr<GstPlayback>> m_threads;
    int m_preparing = 0;
    bool m_ended = false;
};

} // namespace virlo
