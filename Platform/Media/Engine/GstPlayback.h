#pragma once

#include "GstPipeline.h"
#include "MediaEngine.h"
#include "PlaybackMonitor.h"

#include <atomic>
#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>

namespace virlo
{

class FrameStore;
class TransferMeter;

/// The playback of one video by GStreamer, with a thread of its own for everything of GStreamer that may
/// block, from initialising it to tearing the pipeline down. The thread sleeps while the video is paused,
/// wakes ten times a second while it plays or loads, and ends with the video or with `close`, whichever comes
/// first.
class GstPlayback : public MediaPlayback, public std::enable_shared_from_this<GstPlayback>
{
public:
    /// Released, it is closed.
    [[nodiscard]] static std::shared_ptr<MediaPlayback>
    start(const URL& url, bool muted, MediaEngine::Callbacks callbacks, const PlaybackLimits& limits);
    ~GstPlayback() override;

    /// The thread ends soon; no frame is kept, and no callback begins except one that is just being made.
    void close();
    [[nodiscard]] bool isClosed() const;

    void setPlaying(bool playing) override;
    void setMuted(bool muted) override;
    void notifyAt(Seconds time) override;
    [[nodiscard]] PlaybackFacts facts() const override;
    [[nodiscard]] Seconds currentTime() const override;
    [[nodiscard]] std::shared_ptr<const VideoFrame> takeFrame() override;
    [[nodiscard]] VideoFrameCounts frameCounts() const override;

private:
    using Instant = PlaybackMonitor::Instant;

    /// What the caller asked for, under `m_mutex`.
    struct Requests {
        bool playing = false;
        bool muted = false;
        std::optional<Seconds> notifyAt;
    };

    /// The video's time at a moment, under `m_mutex`.
    struct Time {
        Seconds position{0};
        Instant at;
        bool moves = false;
    };

    GstPlayback(URL url, bool muted, MediaEngine::Callbacks callbacks, const PlaybackLimits& limits);

    void run();
    void open();
    [[nodiscard]] bool turn();
    void handle(GstMessage& message);
    void handleError(GstMessage& message);
    void handlePrerolled();
    void handleBuffering(int percent);
    void apply(const Requests& requests);
    void checkProgress();
    /// True where the time that was to be notified has been reached.
    [[nodiscard]] bool updateTime(PlaybackMonitor::Sample& sample);
    void end(PlaybackFacts::Phase phase);
    void fail(MediaEngine::ErrorCode code, const std::string& reason);
    void logTransfer();
    void publish();
    void callBack(const std::function<void()>& callback) const;
    [[nodiscard]] std::optional<Instant> nextWake() const;
    [[nodiscard]] bool isNearEnd(Seconds position) const;
    [[nodiscard]] static bool isFinal(PlaybackFacts::Phase phase);

    const URL m_url;
    const MediaEngine::Callbacks m_callbacks;
    const PlaybackLimits m_limits;
    const std::shared_ptr<FrameStore> m_frames;
    const std::shared_ptr<TransferMeter> m_meter;
    std::atomic<bool> m_closed = false;

    mutable std::mutex m_mutex;
    std::condition_variable m_wake;
    std::deque<GstMessagePointer> m_messages;
    Requests m_requests;
    bool m_hasNewRequests = false;
    PlaybackFacts m_facts;
    Time m_time;
    mutable Seconds m_highestTime{0}; ///< ever returned

    // Used on the thread alone
    std::unique_ptr<GstPipeline> m_pipeline;
    PlaybackMonitor m_monitor;
    PlaybackFacts m_next; ///< the facts to be published
    Requests m_applied;
    GstState m_state = GST_STATE_NULL;
    bool m_prerolled = false;
    bool m_buffering = false;
    bool m_stalled = false;
    bool m_throttleLogged = false;
};

} // namespace virlo
