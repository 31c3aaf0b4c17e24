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

/// GStreamer in this process: initialised for the first video, and stopped before static objects are
/// destroyed, since the libraries that decode and decrypt destroy theirs then. The one instance is never
/// destroyed. Any thread.
class MediaRuntime
{
public:
    [[nodiscard]] static MediaRuntime& shared();

    /// Initialises GStreamer, unless stopped; takes some tens of milliseconds at the first call of a process,
    /// and seconds at the first on a device, where it scans its plug-ins. Never on the main thread.
    /// Returns what is wrong, or nothing: also with so few free file descriptors that GLib, which aborts the
    /// process when it gets none, might run out of them during playback.
    [[nodiscard]] std::string prepare();

    /// False once stopped: the thread must not start.
    [[nodiscard]] bool enter(const std::shared_ptr<GstPlayback>& thread);
    void leave(const GstPlayback& thread);

    /// Waits until no closed playback is left and GStreamer is not being initialised, at most `limit`.
    bool drain(Seconds limit);

    /// Closes every playback for good and waits for them, at most some seconds.
    void stop();

private:
    MediaRuntime() = default;
    void initialise();

    std::once_flag m_once;
    std::string m_failure;
    std::mutex m_mutex;
    std::condition_variable m_left;
    std::vector<std::shared_ptr<GstPlayback>> m_threads;
    int m_preparing = 0;
    bool m_ended = false;
};

} // namespace virlo
