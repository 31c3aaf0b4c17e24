#pragma once

#include "MediaEngine.h"

#include <map>
#include <string>

namespace virlo::test
{

/// Plays nothing: the test sets each video's state, by its URL. In use while it exists.
class FakeMediaEngine : public MediaEngine
{
public:
    FakeMediaEngine() { MediaEngine::setShared(this); }

    ~FakeMediaEngine() override { MediaEngine::setShared(nullptr); }

    FakeMediaEngine(const FakeMediaEngine&) = delete;
    FakeMediaEngine& operator=(const FakeMediaEngine&) = delete;

    struct Clip {
        PlaybackFacts facts;
        Seconds time{0};
        std::optional<Seconds> mark;
        bool isLoaded = false;
        bool isPlaying = false;
        bool isMuted = false;
        Callbacks callbacks;
    };

    [[nodiscard]] std::shared_ptr<MediaPlayback> playbackOfURL(const URL& url, bool muted,
                                                               Callbacks callbacks) override
    {
        Clip& clip = at(url.absoluteString());
        clip.isLoaded = true;
        clip.isMuted = muted;
        clip.callbacks = std::move(callbacks);
        return std::make_shared<Playback>(clip);
    }

    [[nodiscard]] Clip& at(const std::string& url) { return m_clips[url]; }

    /// Sets a video's state.
    void set(const std::string& url, PlaybackFacts facts)
    {
        Clip& clip = at(url);
        facts.accessLog = clip.facts.accessLog;
        clip.facts = std::move(facts);
        changed(clip);
    }

    /// The first frame is ready.
    void ready(const std::string& url, Seconds duration, bool transferred = false)
    {
        set(url, {.phase = PlaybackFacts::Phase::Ready,
                  .likelyToKeepUp = true,
                  .transferred = transferred,
                  .duration = duration});
    }

    void end(const std::string& url, PlaybackFacts::Phase phase = PlaybackFacts::Phase::Ended)
    {
        set(url, {.phase = phase, .duration = at(url).facts.duration});
    }

    void log(const std::string& url, PlayerAccessLogEvent event)
    {
        at(url).facts.accessLog.push_back(event);
        changed(at(url));
    }

    void moveTo(const std::string& url, Seconds time)
    {
        Clip& clip = at(url);
        clip.time = time;
        if (clip.mark && time >= *clip.mark)
            changed(clip);
    }

private:
    class Playback : public MediaPlayback
    {
    public:
        explicit Playback(Clip& clip) : m_clip(clip) {}

        ~Playback() override { m_clip.isLoaded = false; }

        void setPlaying(bool playing) override { m_clip.isPlaying = playing; }

        void setMuted(bool muted) override { m_clip.isMuted = muted; }

        [[nodiscard]] PlaybackFacts facts() const override { return m_clip.facts; }

        [[nodiscard]] Seconds currentTime() const override { return m_clip.time; }

        [[nodiscard]] std::shared_ptr<const VideoFrame> takeFrame() override { return nullptr; }

        [[nodiscard]] VideoFrameCounts frameCounts() const override { return {}; }

        void notifyAt(Seconds time) override { m_clip.mark = time; }

    private:
        Clip& m_clip;
    };

    static void changed(const Clip& clip)
    {
        if (clip.callbacks.changed)
            clip.callbacks.changed();
    }

    std::map<std::string, Clip> m_clips;
};

} // namespace virlo::test
