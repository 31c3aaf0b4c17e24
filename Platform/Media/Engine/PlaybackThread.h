#pragma once

#include "GstPipeline.h"
#include "MediaEngine.h"
#include "PlaybackWatch.h"

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

/// One clip and the thread that drives it: everything of GStreamer that may block happens there, from setting
/// it up to tearing the pipeline down. It sleeps while the clip rests, wakes ten times a second while it
/// plays or loads, and ends with the clip or with `close`, whichever comes first. The public operations are
/// for any thread and wait for nothing.
class PlaybackThread : public std::enable_shared_from_this<PlaybackThread>
{
public:
    PlaybackThread(URL url, bool muted, MediaEngine::Callbacks callbacks);
    ~PlaybackThread();

    void start();
    /// The thread ends soon; no picture is kept, no callback begins any more but one under way.
    void close();
    [[nodiscard]] bool isClosed() const;

    void setPlaying(bool playing);
    void setMuted(bool muted);
    void notifyAt(Seconds time);
    [[nodiscard]] PlaybackFacts facts() const;
    [[nodiscard]] Seconds currentTime() const;

    [[nodiscard]] FrameStore& frames() const { return *m_frames; }

private:
    using Instant = PlaybackWatch::Instant;

    /// What is asked of the thread, under `m_mutex`.
    struct Wishes {
        bool playing = false;
        bool muted = false;
        std::optional<Seconds> mark;
    };

    /// The clip's time at a moment, under `m_mutex`.
    struct Time {
        Seconds position{0};
        Instant at;
        bool moves = false;
    };

    void run();
    void open();
    void reopenSoundless(const std::string& reason);
    [[nodiscard]] bool turn();
    void handle(GstMessage& message);
    void handleError(GstMessage& message);
    void handlePrerolled();
    void handleBuffering(int percent);
    void obey(const Wishes& wishes);
    void look();
    void end(PlaybackFacts::Phase phase);
    void fail(MediaEngine::ErrorCode code, const std::string& reason);
    void logTransfer();
    void publish();
    void callBack(const std::function<void()>& callback) const;
    [[nodiscard]] std::optional<Instant> nextLook() const;
    [[nodiscard]] static bool isFinal(PlaybackFacts::Phase phase);

    const URL m_url;
    const MediaEngine::Callbacks m_callbacks;
    const std::shared_ptr<FrameStore> m_frames;
    const std::shared_ptr<TransferMeter> m_meter;
    std::atomic<bool> m_closed = false;

    mutable std::mutex m_mutex;
    std::condition_variable m_wake;
    std::deque<GstMessagePointer> m_messages;
    Wishes m_wishes;
    bool m_wishesAreNew = false;
    PlaybackFacts m_facts;
    Time m_time;
    mutable Seconds m_told{0}; ///< the highest time ever told

    // The thread's own
    std::unique_ptr<GstPipeline> m_pipeline;
    PlaybackWatch m_watch;
    PlaybackFacts m_next; ///< the facts to be published
    Wishes m_obeyed;
    GstState m_state = GST_STATE_NULL;
    std::optional<Seconds> m_resumeAt;
    bool m_prerolled = false;
    bool m_buffering = false;
    bool m_stalled = false;
    bool m_throttleLogged = false;
    bool m_soundless = false;
};

} // namespace virlo
