#pragma once

#include "MediaEngine.h"
#include "PlaybackLimits.h"

namespace virlo
{

/// Plays http and https videos by GStreamer, which is initialised off the main thread with the first one. TLS
/// trusts what `URLSessionConfiguration::defaultConfiguration` trusts at the time. Hardware decoders are used
/// where GStreamer ranks them first. Without a sound device a video plays without sound.
class GstMediaEngine : public MediaEngine
{
public:
    explicit GstMediaEngine(const PlaybackLimits& limits = {}) : m_limits(limits) {}

    void prepare() override;
    [[nodiscard]] std::shared_ptr<MediaPlayback> playbackOfURL(const URL& url, bool muted,
                                                               Callbacks callbacks) override;

    void stop() override;

    /// Waits until every closed playback is torn down, at most `limit`; true where that is so. For the
    /// process's end and for tests.
    static bool drain(Seconds limit);

private:
    const PlaybackLimits m_limits;
};

} // namespace virlo
