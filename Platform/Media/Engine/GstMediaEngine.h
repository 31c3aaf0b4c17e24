#pragma once

#include "MediaEngine.h"

namespace virlo
{

/// Plays by GStreamer, which is set up off the main thread with the first clip. http and https clips come
/// over the network, TLS trusting what `URLSessionConfiguration::defaultConfiguration` trusts at the time;
/// file clips come from the disk. Hardware decoders are taken where GStreamer ranks them first. Where no
/// device takes the sound, the clip plays without.
class GstMediaEngine : public MediaEngine
{
public:
    void prepare() override;
    [[nodiscard]] std::shared_ptr<MediaPlayback> playbackOfURL(const URL& url, bool muted,
                                                               Callbacks callbacks) override;

    /// Waits until every playback that was let go of is torn down, at most `limit`; the answer tells whether
    /// that came about. For a process's end and for tests.
    static bool drain(Seconds limit);
};

} // namespace virlo
