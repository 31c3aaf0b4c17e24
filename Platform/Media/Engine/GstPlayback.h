#pragma once

#include "MediaEngine.h"

#include <memory>

namespace virlo
{

class PlaybackThread;

/// The handle by which a clip's thread is told what to do; letting go of it ends the thread.
class GstPlayback : public MediaPlayback
{
public:
    GstPlayback(const URL& url, bool muted, MediaEngine::Callbacks callbacks);
    ~GstPlayback() override;

    void setPlaying(bool playing) override;
    void setMuted(bool muted) override;
    [[nodiscard]] PlaybackFacts facts() const override;
    [[nodiscard]] Seconds currentTime() const override;
    [[nodiscard]] std::shared_ptr<const VideoFrame> takeFrame() override;
    [[nodiscard]] VideoFrameCounts frameCounts() const override;
    void notifyAt(Seconds time) override;

private:
    std::shared_ptr<PlaybackThread> m_thread;
};

} // namespace virlo
